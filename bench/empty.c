// An empty shared library.
int tavu_empty;
