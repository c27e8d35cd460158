// Colour arithmetic of LANES pixels.
//
// With u = U - 128 and v = V - 128, all in 16-bit lanes and equal to the scalar form on every
// input:
//
//     R = Y + ((2v * 22976 + 2^14) >> 15)        = Y + ((359 v + 128) >> 8)
//     B = Y + ((2u * 29056 + 2^14) >> 15)        = Y + ((454 u + 128) >> 8)
//     G = Y - v - ((88 u - 73 v + 128) >> 8)     = Y - ((183 v + 88 u + 128) >> 8)
//
// The rounding high multiply does not wrap: its factors are below 2^9 and 2^15. In G only the part
// of 183 = 256 - 73 below 256 is multiplied: |88 u - 73 v| + 128 <= 161 * 128 + 128 < 2^15.
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

TAVU_VEC_INLINE void lanes_to_rgb(I16 y, I16 u, I16 v, I16 *r, I16 *g, I16 *b) {
    *r = y + multiply_round15(v + v, 22976);
    *b = y + multiply_round15(u + u, 29056);
    *g = y - v - round_shift8(u * 88 - v * 73);
}

TAVU_VEC_INLINE RgbBlock block_to_rgb(FromYuv, U8 y8, U8 u8, U8 v8) {
    const Wide y = widen(y8), u = widen_minus(u8, 128), v = widen_minus(v8, 128);
    Wide r, g, b;
    lanes_to_rgb(y.lo, u.lo, v.lo, &r.lo, &g.lo, &b.lo);
    lanes_to_rgb(y.hi, u.hi, v.hi, &r.hi, &g.hi, &b.hi);
    return {narrow(r), narrow(g), narrow(b)};
}

// A place in a row of the source planes and of the target.
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
    at = {at.c0 - back, at.c1 - back, at.c2 - back, at.c3 == nullptr ? nullptr : at.c3 - back,
          at.out - back * Bytes};
    convert_block(at);
}

}  // namespace
}  // namespace tavu

#endif

#endif
