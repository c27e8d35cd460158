// Planes to packed 8-bit RGB, LANES pixels at a time.
//
// With u = U - 128 and v = V - 128, all in 16-bit lanes and equal to the scalar form on every
// input:
//
//     R = Y + ((2v * 22976 + 2^14) >> 15)        = Y + ((359 v + 128) >> 8)
//     B = Y + ((2u * 29056 + 2^14) >> 15)        = Y + ((454 u + 128) >> 8)
//     G = Y - v - ((88 u - 73 v + 128) >> 8)     = Y - ((183 v + 88 u + 128) >> 8)
//
// The rounding high multiply does not wrap: its factors are below 2^8 and 2^15. In G only the part
// of 183 = 256 - 73 below 256 is multiplied: |88 u - 73 v| + 128 <= 161 * 128 + 128 < 2^15.
//
// Reads and writes no byte outside the rows: the last block of a row is anchored at its end and
// rewrites equal bytes; rows narrower than a block take the scalar form.
#include "imgp/csc_to_packed_model.h"
#include "simd/vec.h"

namespace tavu {
namespace {

#if TAVU_VEC

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

// A place in a row of the planes and of the target.
struct Cursor {
    const uint8_t *c0, *c1, *c2, *c3;
    uint8_t *out;
};

// Converts LANES pixels and moves on.
template <class Format, bool Bgr>
TAVU_VEC_INLINE void convert_block(Cursor &at) {
    const U8 c0 = load(at.c0), c1 = load(at.c1), c2 = load(at.c2);
    const RgbBlock p = block_to_rgb(typename Format::Space{}, c0, c1, c2);
    const U8 first = Bgr ? p.b : p.r, third = Bgr ? p.r : p.b;
    if constexpr (Format::BYTES == 3) {
        store_interleaved(at.out, first, p.g, third);
    } else if constexpr (Format::ALPHA_PLANE) {
        store_interleaved(at.out, first, p.g, third, load(at.c3));
    } else {
        store_interleaved(at.out, first, p.g, third, splat(255));
    }
}

template <class Format, bool Bgr>
struct BestRow {
    static void convert(const uint8_t *const c[4], uint8_t *out, int32_t width) {
        if (width < LANES) return ModelRow<Format, Bgr>::convert(c, out, width);
        Cursor at = {c[0], c[1], c[2], c[3], out};
        for (int32_t n = width / LANES; n > 0; n--) convert_block<Format, Bgr>(at);
        if (width % LANES == 0) return;
        const int32_t back = LANES - width % LANES;
        at = {at.c0 - back, at.c1 - back, at.c2 - back,
              Format::ALPHA_PLANE ? at.c3 - back : nullptr, at.out - back * Format::BYTES};
        convert_block<Format, Bgr>(at);
    }
};

#else

template <class Format, bool Bgr>
using BestRow = ModelRow<Format, Bgr>;

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_yuv444_to_rgb888, to_packed<Packed<FromYuv, 3>, BestRow>)
TAVU_CSC(tavu_csc_yuv444_to_rgba8888, to_packed<Packed<FromYuv, 4>, BestRow>)
TAVU_CSC(tavu_csc_yuv444a8_to_rgba8888, to_packed<Packed<FromYuv, 4, true>, BestRow>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgb888, to_packed<Packed<FromRgb, 3>, BestRow>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgba8888, to_packed<Packed<FromRgb, 4>, BestRow>)
TAVU_CSC(tavu_csc_r8g8b8a8_to_rgba8888, to_packed<Packed<FromRgb, 4, true>, BestRow>)
