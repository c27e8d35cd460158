// Residuals, a register of columns at a time. Reads and writes no byte outside the blocks.
#include "metric/diff_model.h"
#include "simd/block.h"

namespace tavu {
namespace {

#if TAVU_VEC

// As many of a row as fill registers of N bytes.
template <int N>
TAVU_VEC_INLINE void store_differences(int32_t *x, int32_t width, const Blocks &at, int16_t *diff) {
#pragma GCC unroll 8
    for (; *x + N / 2 <= width; *x += N / 2) {
        store_difference<N>(at.a + *x, at.b + *x, diff + *x);
    }
}

#endif

TAVU_VEC_INLINE void best_diff(int32_t width, int32_t height, Blocks at, int32_t stride_diff,
                               int16_t *diff) {
#if TAVU_VEC
    for (; height > 0; height--, at.next_row(), diff += stride_diff) {
        int32_t x = 0;
        if constexpr (WIDEST >= 64) store_differences<64>(&x, width, at, diff);
        if constexpr (WIDEST >= 32) store_differences<32>(&x, width, at, diff);
        store_differences<16>(&x, width, at, diff);
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
