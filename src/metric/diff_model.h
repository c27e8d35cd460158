// Residual: diff(y, x) = a(y, x) - b(y, x). Reads and writes the blocks alone.
#ifndef TAVU_METRIC_DIFF_MODEL_H
#define TAVU_METRIC_DIFF_MODEL_H

#include "metric/metric.h"

namespace tavu {
namespace {

inline void diff_area(int32_t width, int32_t height, BlockPair at, int32_t stride_diff,
                      int16_t *diff) {
    for (; height > 0; height--, at.next_row(), diff += stride_diff) {
        for (int32_t x = 0; x < width; x++) diff[x] = static_cast<int16_t>(at.a[x] - at.b[x]);
    }
}

template <int Size>
void diff_block(const BlockPair &at, int32_t stride_diff, int16_t *diff) {
    diff_area(Size, Size, at, stride_diff, diff);
}

}  // namespace
}  // namespace tavu

#endif
