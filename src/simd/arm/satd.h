// SATDs on NEON, 32-bit and 64-bit. satd.h documents them.
#ifndef TAVU_SIMD_ARM_SATD_H
#define TAVU_SIMD_ARM_SATD_H

#include "simd/hadamard.h"

namespace tavu {
namespace {

TAVU_VEC_INLINE int32_t vec_satd4x4(const BlockPair &at) { return satd4x4_of_rows(at); }

TAVU_VEC_INLINE int32_t vec_satd8x8(const BlockPair &at) { return satd8x8_of_rows(at); }

using Satd4x4Strip = Satd4x4Sum<16>;

// The horizontal transforms of a - b of one row of two blocks side by side. Lanes 0 to 3 of p and q are the
// frequencies of the left block.
TAVU_VEC_INLINE void load_next_row_transforms(BlockPair &at, I16 *p, I16 *q) {
    I16 v[2];
    load_next_butterflies<16>(at.a, at.stride_a, at.b, at.stride_b, v);
    const int16x8x2_t pairs = vtrnq_s16(v[0], v[1]);
    I16 even = pairs.val[0], odd = pairs.val[1];
    butterfly(even, odd);
    const int32x4x2_t fours = vtrnq_s32(vreinterpretq_s32_s16(even), vreinterpretq_s32_s16(odd));
    *p = vreinterpretq_s16_s32(fours.val[0]);
    *q = vreinterpretq_s16_s32(fours.val[1]);
    butterfly(*p, *q);
}

// The same of two transforms side by side, as .
class RoundedPairSum {
  public:
    static TAVU_VEC_INLINE RoundedPairSum zero() { return {}; }
    TAVU_VEC_INLINE void add(I16 a, I16 b) {
        const int32x4_t s = vpaddlq_s16(a + a) + vpaddlq_s16(b + b);
        sum_ = vrsra_n_s32(sum_, vpadd_s32(vget_low_s32(s), vget_high_s32(s)), 2);
    }
    TAVU_VEC_INLINE int32_t total() const { return vget_lane_s32(vpadd_s32(sum_, sum_), 0); }

  private:
    int32x2_t sum_ = int32x2_t{};
};

// Two blocks of 8x8 side by side.
class Satd8x8Strip {
  public:
    static constexpr int COLUMNS = 16, ROWS = 8;
    static TAVU_VEC_INLINE Satd8x8Strip zero() { return {RoundedPairSum::zero()}; }

    TAVU_VEC_INLINE void add_next(BlockPair &at) {
        I16 p[8], q[8];
        transform_wide_rows(at, p, q);
        transform_wide_rows(at, p + 4, q + 4);
        sum_.add(sum_of_larger(p), sum_of_larger(q));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_.total(); }

    RoundedPairSum sum_;

  private:
    // All stages of four rows of two blocks, except the last vertical one.
    static TAVU_VEC_INLINE void transform_wide_rows(BlockPair &at, I16 *p, I16 *q) {
#pragma GCC unroll 4
        for (int y = 0; y < 4; y++) {
            load_next_row_transforms(at, &p[y], &q[y]);
            if (y % 2 == 1) butterfly(p[y - 1], p[y]), butterfly(q[y - 1], q[y]);
        }
        butterfly_abs(p[0], p[2]), butterfly_abs(p[1], p[3]);
        butterfly_abs(q[0], q[2]), butterfly_abs(q[1], q[3]);
    }

    // The last stage.
    static TAVU_VEC_INLINE I16 sum_of_larger(const I16 *v) {
        return add(add(larger(v[0], v[4]), larger(v[1], v[5])),
                   add(larger(v[2], v[6]), larger(v[3], v[7])));
    }
};

// Splitting costs a small area more than its sum on 32-bit processors.
constexpr bool SPLIT_PICTURES = sizeof(void *) == 8;

}  // namespace
}  // namespace tavu

#endif
