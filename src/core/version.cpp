#include <cstdio>

#include "tavu.h"

const char *tavu_version(void) {
    static char text[64];
    snprintf(text, sizeof text, "%s %s\n", "Dec 27 2013", "13:23:55");
    return text;
}
