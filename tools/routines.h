/** Lookup of the library's conversion routines by source and target colour-space code. */
#ifndef TAVU_TOOLS_ROUTINES_H
#define TAVU_TOOLS_ROUTINES_H

#include "tavu.h"

/** The result of the library's lookup for equal sizes or, if `resizing`, different ones. */
tavu_fn_csc_t offered_routine(int32_t from, int32_t to, bool resizing);

/** Code of the layout that the offered same-size routine actually writes. */
int32_t written_code(int32_t from, int32_t to);

/**
 * The routine that actually writes `to`, including the two codes that the lookup does not support;
 * null if there is none.
 */
tavu_fn_csc_t find_routine(int32_t from, int32_t to, bool resizing);

#endif
