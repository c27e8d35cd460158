// Colour arithmetic of LANES pixels, equal to the scalar form on every input.
#ifndef TAVU_IMGP_COLOR_VEC_H
#define TAVU_IMGP_COLOR_VEC_H

#include "imgp/color.h"
#include "simd/row_loop.h"

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

// Pointers into a row of the source planes, of which the fourth may be missing, and into a target row
// of Bytes bytes per pixel.
template <int Bytes, bool AlphaPlane = false>
struct Cursor {
    const uint8_t *c0, *c1, *c2, *c3;
    uint8_t *out;

    TAVU_VEC_INLINE void move(int32_t pixels) {
        c0 += pixels;
        c1 += pixels;
        c2 += pixels;
        if (AlphaPlane) c3 += pixels;
        out += pixels * Bytes;
    }
};

// LANES pixels of the first three planes; their pointers move on.
template <class Space, class Cursor>
TAVU_VEC_INLINE RgbBlock load_next_rgb(Cursor &at) {
    const U8 c0 = load_next(at.c0), c1 = load_next(at.c1), c2 = load_next(at.c2);
    return block_to_rgb(Space{}, c0, c1, c2);
}

}  // namespace
}  // namespace tavu

#endif

#endif
