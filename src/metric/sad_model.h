// Sum over rows y and columns x of |a(y, x) - b(y, x)|. Reads the blocks alone.
#ifndef TAVU_METRIC_SAD_MODEL_H
#define TAVU_METRIC_SAD_MODEL_H

#include "metric/metric.h"

namespace tavu {
namespace {

inline int32_t sad_row(int32_t columns, const BlockPair &at) {
    int32_t sum = 0;
    for (int32_t x = 0; x < columns; x++) {
        const int32_t d = at.a[x] - at.b[x];
        sum += d < 0 ? -d : d;
    }
    return sum;
}

template <int Columns>
int32_t sad_rows(int32_t rows, BlockPair at) {
    int32_t sum = 0;
    for (; rows > 0; rows--, at.next_row()) sum += sad_row(Columns, at);
    return sum;
}

template <int Columns, int Rows>
int32_t sad(const BlockPair &at) {
    return sad_rows<Columns>(Rows, at);
}

// Every width but 8 is taken as 16; callers rely on it.
inline int32_t sad_area(int32_t width, int32_t height, const BlockPair &at) {
    return width == 8 ? sad_rows<8>(height, at) : sad_rows<16>(height, at);
}

// Steps of four columns, as words are compared. At least one row is summed, whatever the threshold.
inline int32_t sad_eskip(int32_t width, int32_t height, BlockPair at, int32_t threshold) {
    int32_t sum = 0;
    for (; height > 0; height--, at.next_row()) {
        sum += sad_row(width & ~3, at);
        if (sum > threshold) break;
    }
    return sum;
}

}  // namespace
}  // namespace tavu

#endif
