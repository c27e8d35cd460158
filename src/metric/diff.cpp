#include "metric/diff_model.h"

using namespace tavu;

#define TAVU_DIFF_BLOCK(name, ...)                                                       \
    TAVU_KERNEL(void, name,                                                              \
                (const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, \
                 int32_t stride_diff, int16_t *diff)) {                                  \
        __VA_ARGS__(Blocks{a, b, stride_a, stride_b}, stride_diff, diff);                \
    }

TAVU_DIFF_BLOCK(tavu_diff2x2, diff_block<2>)
TAVU_DIFF_BLOCK(tavu_diff4x4, diff_block<4>)
TAVU_DIFF_BLOCK(tavu_diff8x8, diff_block<8>)
TAVU_DIFF_BLOCK(tavu_diff16x16, diff_block<16>)
TAVU_DIFF_BLOCK(tavu_diff32x32, diff_block<32>)
TAVU_DIFF_BLOCK(tavu_diff64x64, diff_block<64>)

void tavu_diff(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, int32_t stride_a,
               int32_t stride_b, int32_t stride_diff, int16_t *diff) {
    diff_area(width, height, {a, b, stride_a, stride_b}, stride_diff, diff);
}
