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
    u -= 128;
    v -= 128;
    *r = y + multiply_round15(v + v, 22976);
    *b = y + multiply_round15(u + u, 29056);
    *g = y - v - round_shift8(u * 88 - v * 73);
}

TAVU_VEC_INLINE RgbBlock block_to_rgb(FromYuv, U8 y8, U8 u8, U8 v8) {
    const Wide y = widen(y8), u = widen(u8), v = widen(v8);
    Wide r, g, b;
    lanes_to_rgb(y.lo, u.lo, v.lo, &r.lo, &g.lo, &b.lo);
    lanes_to_rgb(y.hi, u.hi, v.hi, &r.hi, &g.hi, &b.hi);
    return {narrow(r), narrow(g), narrow(b)};
}

template <class Format, bool Bgr>
TAVU_VEC_INLINE void convert_block(const uint8_t *const c[4], int32_t x, uint8_t *out) {
    const RgbBlock p =
        block_to_rgb(typename Format::Space{}, load(c[0] + x), load(c[1] + x), load(c[2] + x));
    const U8 first = Bgr ? p.b : p.r, third = Bgr ? p.r : p.b;
    if constexpr (Format::BYTES == 3) {
        store_interleaved(out + 3 * x, first, p.g, third);
    } else {
        const U8 alpha = Format::ALPHA_PLANE ? load(c[3] + x) : splat(255);
        store_interleaved(out + 4 * x, first, p.g, third, alpha);
    }
}

template <class Format, bool Bgr>
struct BestRow {
    static void convert(const uint8_t *const c[4], uint8_t *out, int32_t width) {
        if (width < LANES) return ModelRow<Format, Bgr>::convert(c, out, width);
        for (int32_t x = 0; x <= width - LANES; x += LANES) convert_block<Format, Bgr>(c, x, out);
        if (width % LANES != 0) convert_block<Format, Bgr>(c, width - LANES, out);
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
