// Sums of the magnitudes of the two-dimensional Hadamard transform of a residual. They do not depend
// on the order of the basis functions. A coefficient is at most 64 * 255 = 16320. Reads the blocks
// alone.
#ifndef TAVU_METRIC_SATD_MODEL_H
#define TAVU_METRIC_SATD_MODEL_H

#include "metric/metric.h"

namespace tavu {
namespace {

template <int Size>
struct Transform {
    int16_t at[size_t{Size}][size_t{Size}];  // at[vertical][horizontal]

    void rows() {
        for (int y = 0; y < Size; y++) butterflies(&at[y][0], 1);
    }
    void columns() {
        for (int x = 0; x < Size; x++) butterflies(&at[0][x], Size);
    }
    // Sum of the magnitudes of one horizontal frequency.
    int32_t magnitudes(int x) const {
        int32_t sum = 0;
        for (int y = 0; y < Size; y++) sum += at[y][x] < 0 ? -at[y][x] : at[y][x];
        return sum;
    }

  private:
    static void butterflies(int16_t *v, int step) {
        for (int half = Size / 2; half > 0; half /= 2) {
            for (int i = 0; i < Size; i++) {
                if ((i & half) != 0) continue;
                const int p = v[i * step], q = v[(i + half) * step];
                v[i * step] = static_cast<int16_t>(p + q);
                v[(i + half) * step] = static_cast<int16_t>(p - q);
            }
        }
    }
};

template <int Size>
Transform<Size> residual(BlockPair at) {
    Transform<Size> t;
    for (int y = 0; y < Size; y++, at.next_row()) {
        for (int x = 0; x < Size; x++) t.at[y][x] = static_cast<int16_t>(at.a[x] - at.b[x]);
    }
    return t;
}

inline int32_t hadamard4x4(Transform<4> t) {
    t.rows();
    t.columns();
    int32_t sum = 0;
    for (int x = 0; x < 4; x++) sum += t.magnitudes(x);
    return sum >> 1;
}

inline int32_t satd4x4(const BlockPair &at) { return hadamard4x4(residual<4>(at)); }

inline int32_t satd8x8(const BlockPair &at) {
    Transform<8> t = residual<8>(at);
    t.rows();
    t.columns();
    int32_t sum = 0;
    // The sum of each frequency wraps in 16 signed bits; callers rely on it. At most one of them does:
    // eight magnitudes of a sum above 32767 have squares of 2^27 or more, and all 64 squares sum to at
    // most 64^2 * 255^2 < 2^28. So the result is -8192 or more.
    for (int x = 0; x < 8; x++) sum += static_cast<int16_t>(t.magnitudes(x));
    return (sum + 2) >> 2;
}

template <int Size>
int32_t tiles(int32_t width, int32_t height, const BlockPair &at,
              int32_t (*satd)(const BlockPair &)) {
    int32_t sum = 0;
    for (int32_t y = 0; y < height; y += Size) {
        for (int32_t x = 0; x < width; x += Size) {
            // Wraps instead of overflowing in areas of more than 4,210,752 samples.
            sum = static_cast<int32_t>(static_cast<uint32_t>(sum) +
                                       static_cast<uint32_t>(satd(at.tile(x, y))));
        }
    }
    return sum;
}

inline int32_t satd4x4_area(int32_t width, int32_t height, const BlockPair &at) {
    return tiles<4>(width, height, at, satd4x4);
}

inline int32_t satd8x8_area(int32_t width, int32_t height, const BlockPair &at) {
    return tiles<8>(width, height, at, satd8x8);
}

}  // namespace
}  // namespace tavu

#endif
