// Residuals, a register of columns at a time. Reads and writes no byte outside the blocks.
#include "metric/diff_model.h"
#include "simd/block.h"

namespace tavu {
namespace {

#if TAVU_VEC

// The columns from `x` on that fill registers of N bytes.
template <int N>
TAVU_VEC_INLINE void store_differences(int32_t *x, int32_t width, const BlockPair &at,
                                       int16_t *diff) {
#pragma GCC unroll 8
    for (; *x + N / 2 <= width; *x += N / 2) {
        store_difference<N>(at.a + *x, at.b + *x, diff + *x);
    }
}

#endif

TAVU_VEC_INLINE void diff_kernel(int32_t width, int32_t height, BlockPair at, int32_t stride_diff,
                                 int16_t *diff) {
#if TAVU_VEC
    for (; height > 0; height--, at.next_row(), diff += stride_diff) {
        int32_t x = 0;
        if constexpr (LANES >= 64) store_differences<64>(&x, width, at, diff);
        if constexpr (LANES >= 32) store_differences<32>(&x, width, at, diff);
        store_differences<16>(&x, width, at, diff);
        for (; x < width; x++) diff[x] = static_cast<int16_t>(at.a[x] - at.b[x]);
    }
#else
    diff_area(width, height, at, stride_diff, diff);
#endif
}

template <int Size>
TAVU_VEC_INLINE void diff_block_kernel(const BlockPair &at, int32_t stride_diff, int16_t *diff) {
    diff_kernel(Size, Size, at, stride_diff, diff);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

#define TAVU_DIFF_BLOCK(name, ...)                                                       \
    TAVU_KERNEL(void, name,                                                              \
                (const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, \
                 int32_t stride_diff, int16_t *diff)) {                                  \
        __VA_ARGS__(BlockPair{a, b, stride_a, stride_b}, stride_diff, diff);             \
    }

TAVU_DIFF_BLOCK(tavu_diff2x2, diff_block_kernel<2>)
TAVU_DIFF_BLOCK(tavu_diff4x4, diff_block_kernel<4>)
TAVU_DIFF_BLOCK(tavu_diff8x8, diff_block_kernel<8>)
TAVU_DIFF_BLOCK(tavu_diff16x16, diff_block_kernel<16>)
TAVU_DIFF_BLOCK(tavu_diff32x32, diff_block_kernel<32>)
TAVU_DIFF_BLOCK(tavu_diff64x64, diff_block_kernel<64>)

TAVU_KERNEL(void, tavu_diff,
            (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, int32_t stride_a,
             int32_t stride_b, int32_t stride_diff, int16_t *diff)) {
    diff_kernel(width, height, {a, b, stride_a, stride_b}, stride_diff, diff);
}
