// The resize kernels, one pair for each pixel format, and the drivers that use them. Pixels of 1, 3
// and 4 bytes take the vector form where their rows are wide enough.
#include <cstring>

#include "imgp/irsz_band.h"
#include "imgp/irsz_model.h"
#include "imgp/resize_vec.h"
#include "simd/kernel.h"

namespace tavu {
namespace {

template <class Pixel>
struct BestResize : ModelResize<Pixel> {};

#if TAVU_VEC

struct StoreBytes {
    static constexpr int PLANES = 1, BYTES = 1;
    TAVU_VEC_INLINE static void store(uint8_t *&out, const UWide *sums) {
        tavu::store(out, narrow6(sums[0]));
    }
};

// The vertical fraction of a row of weights, -1 if it is not of the bilinear table.
int32_t fraction_of(const uint8_t *weights) {
    const int32_t b = weights[2] / 8 & 7;
    for (int a = 0; a < 8; a++) {
        if (memcmp(weights + 32 * a, tavu_tbl_bilinear_rszw + 32 * a + 4 * b, 4) != 0) return -1;
    }
    return b;
}

template <int N>
struct BestResize<Bytes<N>> {
    static void line(const uint8_t *top, const uint8_t *bottom, const uint8_t *weights,
                     int32_t dst_w, Step step, int32_t next, uint8_t *out) {
        const int32_t b = fraction_of(weights);
        const auto distance =
            reinterpret_cast<uintptr_t>(bottom) - reinterpret_cast<uintptr_t>(top);
        const Plane rows{top, static_cast<ptrdiff_t>(distance)};
        const bool done =
            b >= 0 &&
            resize_vec<StoreBytes>(Columns<N>{step, next, dst_w},
                                   {{rows}, {1, 0}, b * (1 << (POSITION_BITS - 3)), 1, out, 0});
        if (!done) ModelResize<Bytes<N>>::line(top, bottom, weights, dst_w, step, next, out);
    }

    static void full(const Image &image, const uint8_t *weights) {
        const bool done =
            memcmp(weights, tavu_tbl_bilinear_rszw, 256) == 0 &&
            resize_vec<StoreBytes>(Columns<N>{image.x, 1 << image.x.shift, image.dst_w},
                                   {{{image.src, image.src_line}},
                                    image.y,
                                    0,
                                    image.dst_h,
                                    image.dst,
                                    image.dst_line});
        if (!done) ModelResize<Bytes<N>>::full(image, weights);
    }
};

#endif

// The driver algorithm of every format.
template <class FullPixel, class LinePixel>
int32_t drive(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows) {
    const auto *pixels = static_cast<const uint8_t *>(src);
    if (rsz->mode == TAVU_IRSZ_MODE_FULL) {
        // Steps go unpacked: packing would lose the upper bits of steps from 1024 pixels on.
        BestResize<FullPixel>::full({pixels,
                                     rsz->line_size,
                                     rsz->dst_w,
                                     rsz->dst_h,
                                     rsz->dst_line,
                                     rsz->dst,
                                     {rsz->step_x, rsz->shift_x},
                                     {rsz->step_y, rsz->shift_y}},
                                    tavu_irsz_tbl_rsz_weight);
    } else {
        Band<LinePixel, BestResize<LinePixel>>(rsz, pixels, first_row, rows).run();
    }
    return 0;
}

}  // namespace
}  // namespace tavu

#define TAVU_IRSZ_LINE(name, Pixel)                                                           \
    TAVU_KERNEL(void, name,                                                                   \
                (const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w,            \
                 int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out)) {            \
        tavu::BestResize<tavu::Pixel>::line(rows[0], rows[1], wrow, dst_w, {step_x, shift_x}, \
                                            next_x, out);                                     \
    }

#define TAVU_IRSZ_FULL(name, Pixel)                                                     \
    TAVU_KERNEL(void, name,                                                             \
                (const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h,    \
                 int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y)) { \
        tavu::BestResize<tavu::Pixel>::full(                                            \
            {src, src_line, dst_w, dst_h, dst_line, dst, tavu::Step::unpack(packed_x),  \
             tavu::Step::unpack(packed_y)},                                             \
            tavu_irsz_tbl_rsz_weight);                                                  \
    }

#define TAVU_IRSZ(name, FullPixel, LinePixel)                                            \
    TAVU_IRSZ_LINE(name##_line, LinePixel)                                               \
    TAVU_IRSZ_FULL(name##_full, FullPixel)                                               \
    TAVU_KERNEL(int32_t, name,                                                           \
                (tavu_irsz_t * rsz, const void *src, int32_t first_row, int32_t rows)) { \
        return tavu::drive<tavu::FullPixel, tavu::LinePixel>(rsz, src, first_row, rows); \
    }

TAVU_IRSZ(tavu_irsz8b, Bytes<1>, Bytes<1>)
TAVU_IRSZ(tavu_irsz8b8b8b, Bytes<3>, Bytes<3>)
TAVU_IRSZ(tavu_irsz8b8b8b8b, Bytes<4>, Bytes<4>)
TAVU_IRSZ(tavu_irsz8b8b8b_5b6b5b, PackFull, PackLine)
TAVU_IRSZ(tavu_irsz5b6b5b, Rgb565, Rgb565)
