// Bilinear sampling: fixed-point steps and weights.
//
// A position has 18 fraction bits and counts units of 1 << shift source pixels. Its upper three
// fraction bits choose the weights. The steps of an axis span source - 1 pixels, so the right-hand and
// lower neighbours of a sample are inside the source. A source of one pixel has step 0 and no
// neighbour: with step 0 a neighbour is read only if it has weight.
#ifndef TAVU_IMGP_BILINEAR_H
#define TAVU_IMGP_BILINEAR_H

#include "core/integer.h"
#include "simd/attributes.h"

namespace tavu {

constexpr int POSITION_BITS = 18;

// One axis of a resize.
struct Step {
    int32_t step;
    int32_t shift;  // log2 of the source pixels per unit

    TAVU_VEC_INLINE static Step unpack(int32_t packed) { return {packed >> 3, packed & 7}; }
    TAVU_VEC_INLINE int32_t pack() const { return wrap_shift_left(step, 3) | shift; }

    TAVU_VEC_INLINE int32_t sample(int32_t position) const {
        return (position >> POSITION_BITS) * (1 << shift);
    }
    // Distance to the neighbour; 0 with step 0, where it has no bilinear weight.
    TAVU_VEC_INLINE int32_t next() const { return step == 0 ? 0 : 1 << shift; }
};

namespace {

// A weight group is at 32 a + 4 b in its table: the parts for a horizontal and a vertical position.
inline int32_t weight_column(int32_t x) { return x >> (POSITION_BITS - 8) & 0xE0; }
inline int32_t weight_row(int32_t y) { return y >> (POSITION_BITS - 5) & 0x1C; }

// Whether any pixel of a target row gives the lower source row weight.
inline bool weighs_lower(const uint8_t *wrow, int32_t step_x, int32_t dst_w) {
    int32_t x = 0;
    for (int32_t i = 0; i < dst_w; i++, x = wrap_add(x, step_x)) {
        const uint8_t *weights = wrow + weight_column(x);
        if (weights[2] != 0 || weights[3] != 0) return true;
    }
    return false;
}

// floor(log2(ratio - 1)), at most 4.
inline int32_t decimation_shift(int32_t src, int32_t dst) {
    constexpr uint8_t SHIFTS[32] = {0, 0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3,
                                    3, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4};
    const int32_t ratio = divide(src, dst);
    return SHIFTS[ratio < 0 ? 0 : ratio > 31 ? 31 : ratio];
}

inline Step step_for(int32_t src, int32_t dst) {
    const int32_t shift = decimation_shift(src, dst);
    return {divide(wrap_shift_left((src - 1) >> shift, POSITION_BITS), dst), shift};
}

}  // namespace
}  // namespace tavu

#endif
