// Packed RGB to planar YUV, LANES pixels at a time.
//
// Channels that stand in R, G, B(, A) or B, G, R(, A) order in one packed row take the vector form,
// all others and narrow rows the scalar one. Reads and writes no byte outside the rows.
//
// In unsigned 16-bit lanes, with a narrowing that adds 128, shifts by 8 and saturates to 255:
//
//     Y = narrow(77 R + 150 G + 29 B)                        at most 256 * 255
//     U = narrow(32768 + 128 B - 43 R - 85 G)                between 128 and 65408
//     V = narrow(32768 + 128 R - 107 G - 21 B)
//
// Only 65408 + 128 exceeds 16 bits: the chroma of 256 that is stored as 255.
#include <cstring>

#include "imgp/csc_scalar.h"
#include "simd/blocks.h"

namespace tavu {
namespace {

#if TAVU_VEC

TAVU_VEC_INLINE void lanes_to_yuv(U16 r, U16 g, U16 b, U16 *y, U16 *u, U16 *v) {
    *y = r * 77 + g * 150 + b * 29;
    *u = 32768 + (b << 7) - r * 43 - g * 85;
    *v = 32768 + (r << 7) - g * 107 - b * 21;
}

// A place in a packed row and in rows of the target planes.
template <int Step>
struct PackedCursor {
    const uint8_t *in;
    uint8_t *out[4];

    TAVU_VEC_INLINE void move(int32_t pixels) {
        in += pixels * Step;
        for (int p = 0; p < Step; p++) out[p] += pixels;
    }
};

TAVU_VEC_INLINE void store_yuv(U8 r8, U8 g8, U8 b8, uint8_t *out[4]) {
    const UWide r = widen_unsigned(r8), g = widen_unsigned(g8), b = widen_unsigned(b8);
    UWide y, u, v;
    lanes_to_yuv(r.lo, g.lo, b.lo, &y.lo, &u.lo, &v.lo);
    lanes_to_yuv(r.hi, g.hi, b.hi, &y.hi, &u.hi, &v.hi);
    store(out[0], round_narrow8(y));
    store(out[1], round_narrow8(u));
    store(out[2], round_narrow8(v));
}

template <int Step, class Choice>
TAVU_VEC_INLINE void convert_block(PackedCursor<Step> &at, Choice bgr) {
    U8 c[4];
    if constexpr (Step == 3) {
        load_interleaved(at.in, &c[0], &c[1], &c[2]);
    } else {
        load_interleaved(at.in, &c[0], &c[1], &c[2], &c[3]);
        store(at.out[3], c[3]);
    }
    store_yuv(bgr ? c[2] : c[0], c[1], bgr ? c[0] : c[2], at.out);
}

template <int Step, class Choice>
TAVU_ONE_COPY void convert_row(const YuvLine &at, int first, int32_t width, Choice bgr) {
    using Place = PackedCursor<Step>;
    const Place start = {at.in[first], {at.out[0], at.out[1], at.out[2], at.out[3]}};
    for_each_block(
        start, width, [=](Place & place) __attribute__((always_inline)) {
            convert_block<Step>(place, bgr);
        });
}

// Whether the channels stand behind each other from `first` on.
template <int Step>
bool is_packed(const YuvLine &at, int first) {
    return at.in[1] == at.in[first] + 1 && at.in[2 - first] == at.in[first] + 2 &&
           (Step == 3 || at.in[3] == at.in[first] + 3);
}

template <int Step>
struct BestYuvRow {
    static void convert(const YuvLine &at, int32_t width) {
        const bool rgb = is_packed<Step>(at, 0);
        if (width < LANES || !(rgb || is_packed<Step>(at, 2)))
            return yuv_row_scalar(Step, at, width);
        choose(!rgb, [&](auto bgr) { convert_row<Step>(at, rgb ? 0 : 2, width, bgr); });
    }
};

#else

template <int Step>
using BestYuvRow = ModelYuvRow<Step>;

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC_LEAVE(NARROW, tavu_csc_r8g8b8_to_yuv444, to_yuv<3, BestYuvRow>)
TAVU_CSC_LEAVE(NARROW, tavu_csc_r8g8b8a8_to_yuv444a8, to_yuv<4, BestYuvRow>)
