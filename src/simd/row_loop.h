// A row in blocks of LANES pixels.
#ifndef TAVU_SIMD_ROW_LOOP_H
#define TAVU_SIMD_ROW_LOOP_H

#include "simd/vec.h"

#if TAVU_VEC

namespace tavu {
namespace {

// Calls convert_block(at), which converts LANES pixels and advances the cursor, for each block of a row. A
// last block that is not full is anchored at the row's end: at.move(pixels) moves the cursor back, and the
// block writes equal bytes again. A row narrower than LANES needs as many pixels in front of it.
template <class Cursor, class Convert>
TAVU_VEC_INLINE void for_each_block(Cursor at, int32_t width, Convert convert_block) {
    if constexpr (TAVU_LEVEL == 1) {
        // Blocks are short on NEON, and counting them in pairs saves a sixth.
        for (int32_t n = width / (2 * LANES); n > 0; n--) {
            convert_block(at);
            convert_block(at);
        }
        if (width & LANES) convert_block(at);
        if (width % LANES == 0) return;
        at.move(width % LANES - LANES);
        convert_block(at);
    } else {
        const int32_t blocks = (width + LANES - 1) / LANES;
        for (int32_t n = blocks; n > 0; n--) {
            if (n == 1) at.move(width - blocks * LANES);
            convert_block(at);
        }
    }
}

}  // namespace
}  // namespace tavu

#endif

#endif
