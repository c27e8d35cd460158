// Colour arithmetic of LANES pixels, equal to the scalar form on every input.
#ifndef TAVU_IMGP_COLOR_VEC_H
#define TAVU_IMGP_COLOR_VEC_H

#include "imgp/color.h"
#include "simd/vec.h"

#if TAVU_VEC

namespace tavu {
namespace {

struct RgbBlock {
    U8 r, g, b;
};

TAVU_VEC_INLINE RgbBlock block_to_rgb(FromRgb, U8 r, U8 g, U8 b) { return {r, g, b}; }

TAVU_VEC_INLINE RgbBlock block_to_rgb(FromYuv, U8 y8, U8 u, U8 v) {
    const Wide y = widen(y8);
    const ChromaTerms t = chroma_terms(u, v);
    return {narrow({y.lo + t.r.lo, y.hi + t.r.hi}), narrow({y.lo - t.g.lo, y.hi - t.g.hi}),
            narrow({y.lo + t.b.lo, y.hi + t.b.hi})};
}

// A place in a row of the source planes and of the target; each pointer stands in a row, used or not.
struct Cursor {
    const uint8_t *c0, *c1, *c2, *c3;
    uint8_t *out;
};

// LANES pixels of the first three planes.
template <class Space>
TAVU_VEC_INLINE RgbBlock load_rgb(Cursor &at) {
    const U8 c0 = load(at.c0), c1 = load(at.c1), c2 = load(at.c2);
    return block_to_rgb(Space{}, c0, c1, c2);
}

// Calls convert_block, which converts LANES pixels of Bytes bytes and moves the cursor on, for a
// row of at least LANES pixels. The last block is anchored at the row's end and rewrites equal
// bytes, so that nothing outside the row is read or written.
template <int Bytes, class Convert>
TAVU_VEC_INLINE void for_each_block(Cursor at, int32_t width, Convert convert_block) {
    for (int32_t n = width / LANES; n > 0; n--) convert_block(at);
    if (width % LANES == 0) return;
    const int32_t back = LANES - width % LANES;
    at = {at.c0 - back, at.c1 - back, at.c2 - back, at.c3 - back, at.out - back * Bytes};
    convert_block(at);
}

}  // namespace
}  // namespace tavu

#endif

#endif
