// A row in blocks of LANES pixels.
#ifndef TAVU_SIMD_BLOCKS_H
#define TAVU_SIMD_BLOCKS_H

#include "simd/vec.h"

#if TAVU_VEC

namespace tavu {
namespace {

// Calls convert_block(at), which converts LANES pixels and moves the cursor on, for each block of a
// row. A last block that is not full is anchored at the row's end, where at.move(pixels) takes the
// cursor, and rewrites equal bytes; a row narrower than LANES must have room before it. There is one
// copy of convert_block, which is large.
template <class Cursor, class Convert>
TAVU_VEC_INLINE void for_each_block(Cursor at, int32_t width, Convert convert_block) {
    const int32_t blocks = (width + LANES - 1) / LANES;
    for (int32_t n = blocks; n > 0; n--) {
        if (n == 1) at.move(width - blocks * LANES);
        convert_block(at);
    }
}

}  // namespace
}  // namespace tavu

#endif

#endif
