// The resize kernels of pixels of 1, 3 and 4 bytes. Rows that the vector form does not take are
// left to the scalar fallback.
#include <cstring>

#include "imgp/resize_engine.h"
#include "imgp/resize_model.h"

namespace tavu {
namespace {

#if TAVU_VEC

struct BytePixels {
    static constexpr int PLANES = 1, BYTES = 1;
    TAVU_VEC_INLINE static void write_next(uint8_t *&out, const UWide *sums) {
        store_next(out, narrow6(sums[0]));
    }
};

// The vertical fraction of a row of weights in eighths, -1 if the weights are not bilinear.
int32_t fraction_of(const uint8_t *weights) {
    const int32_t b = weights[2] / 8 & 7;
    for (int a = 0; a < 8; a++) {
        if (memcmp(weights + 32 * a, tavu_tbl_bilinear_rszw + 32 * a + 4 * b, 4) != 0) return -1;
    }
    return b;
}

// One copy for all pixel sizes. With step 0 or a single pixel only the first group of weights needs
// to be readable.
__attribute__((noinline)) bool resize_line(const Columns &columns, const uint8_t *const rows[2],
                                           const uint8_t *weights, uint8_t *out) {
    if (columns.step.step == 0 || columns.width <= 1) return false;
    const int32_t b = fraction_of(weights);
    const auto distance =
        reinterpret_cast<uintptr_t>(rows[1]) - reinterpret_cast<uintptr_t>(rows[0]);
    const Plane source{rows[0], static_cast<ptrdiff_t>(distance)};
    return b >= 0 && resize_vec(OUTPUT<BytePixels>, columns,
                                {{source}, {1, 0}, b * (1 << (POSITION_BITS - 3)), 1, out, 0});
}

__attribute__((noinline)) void resize_full(int32_t bytes, const Image &image,
                                           const uint8_t *weights) {
    const Plane source{image.src, image.src_line};
    const bool done =
        memcmp(weights, tavu_tbl_bilinear_rszw, 256) == 0 &&
        resize_vec(OUTPUT<BytePixels>, {bytes, image.x, 1 << image.x.shift, image.dst_w},
                   {{source}, image.y, 0, image.dst_h, image.dst, image.dst_line});
    if (!done) resize_full_scalar(bytes, image, weights);
}

template <int N>
struct Resize {
    static constexpr int LINE_UNIT = 1;

    // One copy for the kernel and the driver.
    __attribute__((noinline)) static void line(const uint8_t *const rows[2], const uint8_t *weights,
                                               int32_t dst_w, int32_t shift_x, int32_t next_x,
                                               int32_t step_x, uint8_t *out) {
        if (!resize_line({N, {step_x, shift_x}, next_x, dst_w}, rows, weights, out)) {
            resize_line_scalar(N, rows, weights, dst_w, shift_x, next_x, step_x, out);
        }
    }

    static void full(const Image &image, const uint8_t *weights) { resize_full(N, image, weights); }
};

#else

template <int N>
using Resize = ModelResize<Packed8<N> >;

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_IRSZ(tavu_irsz8b, Resize<1>, Resize<1>)
TAVU_IRSZ(tavu_irsz8b8b8b, Resize<3>, Resize<3>)
TAVU_IRSZ(tavu_irsz8b8b8b8b, Resize<4>, Resize<4>)
