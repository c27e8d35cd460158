// A shared library of nothing but this.
int tavu_empty;
