// A row in blocks of LANES pixels.
#ifndef TAVU_SIMD_BLOCKS_H
#define TAVU_SIMD_BLOCKS_H

#include "simd/vec.h"

#if TAVU_VEC

namespace tavu {
namespace {

// Calls convert_block(at), which converts LANES pixels and moves the cursor on, for a row of at least
// LANES pixels. The last block is anchored at the row's end, where at.move(pixels) takes the cursor,
// and rewrites equal bytes: nothing outside the row is read or written.
template <class Cursor, class Convert>
TAVU_VEC_INLINE void for_each_block(Cursor at, int32_t width, Convert convert_block) {
    for (int32_t n = width / LANES; n > 0; n--) convert_block(at);
    if (width % LANES == 0) return;
    at.move(width % LANES - LANES);
    convert_block(at);
}

}  // namespace
}  // namespace tavu

#endif

#endif
