// Packed RGB to planar YUV, LANES pixels at a time.
//
// Packed rows in R, G, B(, A) or B, G, R(, A) order take the vector form; other layouts and narrow
// rows take the scalar one. Reads and writes no byte outside the rows.
#include <cstring>

#include "imgp/csc_fallback.h"
#include "simd/row_loop.h"

namespace tavu {
namespace {

#if TAVU_VEC

// Pointers into a packed row and into rows of the target planes, of which the fourth may be missing.
template <int Step>
struct PackedCursor {
    const uint8_t *in;
    uint8_t *y, *u, *v, *a;

    TAVU_VEC_INLINE void move(int32_t pixels) {
        in += pixels * Step;
        y += pixels;
        u += pixels;
        v += pixels;
        if (Step == 4) a += pixels;
    }
};

template <int Step, class Choice>
TAVU_VEC_INLINE void convert_block(PackedCursor<Step> &at, Choice bgr) {
    U8 c[4];
    if constexpr (Step == 3) {
        load_next_interleaved(at.in, &c[0], &c[1], &c[2]);
    } else {
        load_next_interleaved(at.in, &c[0], &c[1], &c[2], &c[3]);
        store_next(at.a, c[3]);
    }
    U8 y, u, v;
    rgb_to_yuv(pick(bgr, c[2], c[0]), c[1], pick(bgr, c[0], c[2]), &y, &u, &v);
    store_next(at.y, y);
    store_next(at.u, u);
    store_next(at.v, v);
}

template <int Step>
TAVU_ONE_COPY void convert_row(const YuvLine &at, bool bgr, int32_t width) {
    using Cursor = PackedCursor<Step>;
    const Cursor start = {at.in[bgr ? 2 : 0], at.out[0], at.out[1], at.out[2], at.out[3]};
    choose(bgr, [&](auto swapped) {
        for_each_block(start, width, [=](Cursor &cursor) __attribute__((always_inline)) {
            convert_block<Step>(cursor, swapped);
        });
    });
}

// Whether the channels are adjacent, in order from `first` on.
template <int Step>
bool is_packed(const YuvLine &at, int first) {
    return at.in[1] == at.in[first] + 1 && at.in[2 - first] == at.in[first] + 2 &&
           (Step == 3 || at.in[3] == at.in[first] + 3);
}

template <int Step>
struct YuvRow {
    static void convert(const YuvLine &at, int32_t width) {
        const bool rgb = is_packed<Step>(at, 0);
        if (width < LANES || !(rgb || is_packed<Step>(at, 2)))
            return yuv_row_scalar(Step, at, width);
        convert_row<Step>(at, !rgb, width);
    }
};

#else

template <int Step>
using YuvRow = ModelYuvRow<Step>;

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC_FALLBACK(NARROW, tavu_csc_r8g8b8_to_yuv444, to_yuv<3, YuvRow>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_r8g8b8a8_to_yuv444a8, to_yuv<4, YuvRow>)
