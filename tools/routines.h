/** The library's conversion routines by their pair of colour-space codes. */
#ifndef TAVU_TOOLS_ROUTINES_H
#define TAVU_TOOLS_ROUTINES_H

#include "tavu.h"

/** What the library's lookup gives for pictures of one size or, if `resizing`, of two. */
tavu_fn_csc_t offered_routine(int32_t from, int32_t to, bool resizing);

/** Code of the layout that the same-size routine offered for a pair writes. */
int32_t written_code(int32_t from, int32_t to);

/**
 * The routine that truly writes `to`, also for the two codes that the lookup does not know; null if
 * there is none.
 */
tavu_fn_csc_t find_routine(int32_t from, int32_t to, bool resizing);

#endif
