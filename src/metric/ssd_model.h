// Sum over rows y and columns x of (a(y, x) - b(y, x))^2. Reads the blocks alone.
#ifndef TAVU_METRIC_SSD_MODEL_H
#define TAVU_METRIC_SSD_MODEL_H

#include "metric/metric.h"

namespace tavu {
namespace {

template <int Columns>
int32_t ssd_columns(int32_t rows, BlockPair at) {
    uint32_t sum = 0;  // wraps instead of overflowing in blocks of more than 66,051 samples
    for (; rows > 0; rows--, at.next_row()) {
        for (int x = 0; x < Columns; x++) {
            const int32_t d = at.a[x] - at.b[x];
            sum += static_cast<uint32_t>(d * d);
        }
    }
    return static_cast<int32_t>(sum);
}

// Every width without a path of its own is taken as 64; callers rely on it.
inline int32_t ssd_area(int32_t width, int32_t height, const BlockPair &at) {
    switch (width) {
        case 4: return ssd_columns<4>(height, at);
        case 8: return ssd_columns<8>(height, at);
        case 16: return ssd_columns<16>(height, at);
        case 32: return ssd_columns<32>(height, at);
        default: return ssd_columns<64>(height, at);
    }
}

}  // namespace
}  // namespace tavu

#endif
