#include "metric/sad_model.h"

using namespace tavu;

TAVU_METRIC_BLOCK(tavu_sad2x2, sad<2, 2>)
TAVU_METRIC_BLOCK(tavu_sad2x4, sad<2, 4>)
TAVU_METRIC_BLOCK(tavu_sad4x2, sad<4, 2>)
TAVU_METRIC_BLOCK(tavu_sad4x4, sad<4, 4>)
TAVU_METRIC_BLOCK(tavu_sad4x8, sad<4, 8>)
TAVU_METRIC_BLOCK(tavu_sad8x4, sad<8, 4>)
TAVU_METRIC_BLOCK(tavu_sad8x8, sad<8, 8>)
TAVU_METRIC_BLOCK(tavu_sad8x16, sad<8, 16>)
TAVU_METRIC_BLOCK(tavu_sad16x8, sad<16, 8>)
TAVU_METRIC_BLOCK(tavu_sad16x16, sad<16, 16>)
TAVU_METRIC_BLOCK(tavu_sad16x32, sad<16, 32>)
TAVU_METRIC_BLOCK(tavu_sad32x16, sad<32, 16>)
TAVU_METRIC_BLOCK(tavu_sad32x32, sad<32, 32>)
TAVU_METRIC_BLOCK(tavu_sad64x32, sad<64, 32>)
TAVU_METRIC_BLOCK(tavu_sad32x64, sad<32, 64>)
TAVU_METRIC_BLOCK(tavu_sad64x64, sad<64, 64>)
TAVU_METRIC_AREA(tavu_sad, sad_area)

int32_t tavu_sad_eskip(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                       int32_t stride_a, int32_t stride_b, int32_t threshold) {
    return sad_eskip(width, height, {a, b, stride_a, stride_b}, threshold);
}
