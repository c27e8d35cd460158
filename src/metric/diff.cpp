// Residuals, a register of columns at a time. Reads and writes no byte outside the blocks.
#include "metric/diff_model.h"
#include "simd/tile.h"

namespace tavu {
namespace {

TAVU_VEC_INLINE void best_diff(int32_t width, int32_t height, Blocks at, int32_t stride_diff,
                               int16_t *diff) {
#if TAVU_VEC
    constexpr int N = LANES / 2;
    for (; height > 0; height--, at.next_row(), diff += stride_diff) {
        int32_t x = 0;
#pragma GCC unroll 8
        for (; x + N <= width; x += N) store_difference<N>(at.a + x, at.b + x, diff + x);
        for (; x + 8 <= width; x += 8) store_difference<8>(at.a + x, at.b + x, diff + x);
        for (; x < width; x++) diff[x] = static_cast<int16_t>(at.a[x] - at.b[x]);
    }
#else
    diff_area(width, height, at, stride_diff, diff);
#endif
}

template <int Size>
TAVU_VEC_INLINE void best_diff_block(const Blocks &at, int32_t stride_diff, int16_t *diff) {
    best_diff(Size, Size, at, stride_diff, diff);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

#define TAVU_DIFF_BLOCK(name, ...)                                                       \
    TAVU_KERNEL(void, name,                                                              \
                (const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, \
                 int32_t stride_diff, int16_t *diff)) {                                  \
        __VA_ARGS__(Blocks{a, b, stride_a, stride_b}, stride_diff, diff);                \
    }

TAVU_DIFF_BLOCK(tavu_diff2x2, best_diff_block<2>)
TAVU_DIFF_BLOCK(tavu_diff4x4, best_diff_block<4>)
TAVU_DIFF_BLOCK(tavu_diff8x8, best_diff_block<8>)
TAVU_DIFF_BLOCK(tavu_diff16x16, best_diff_block<16>)
TAVU_DIFF_BLOCK(tavu_diff32x32, best_diff_block<32>)
TAVU_DIFF_BLOCK(tavu_diff64x64, best_diff_block<64>)

TAVU_KERNEL(void, tavu_diff,
            (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, int32_t stride_a,
             int32_t stride_b, int32_t stride_diff, int16_t *diff)) {
    best_diff(width, height, {a, b, stride_a, stride_b}, stride_diff, diff);
}
