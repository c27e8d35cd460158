// Operations of Hadamard transforms for NEON, 32-bit and 64-bit. hadamard.h documents them.
#ifndef TAVU_SIMD_ARM_HADAMARD_H
#define TAVU_SIMD_ARM_HADAMARD_H

#include "simd/arm/block.h"

namespace tavu {
namespace {

TAVU_VEC_INLINE I16 add(I16 a, I16 b) { return a + b; }

TAVU_VEC_INLINE void butterfly(I16 &a, I16 &b) {
    const I16 sum = a + b;
    b = a - b;
    a = sum;
}

TAVU_VEC_INLINE void butterfly_abs(I16 &a, I16 &b) {
    const I16 sum = vabsq_s16(a + b);
    b = vabdq_s16(a, b);
    a = sum;
}

TAVU_VEC_INLINE I16 larger(I16 a, I16 b) { return vmaxq_s16(a, b); }

TAVU_VEC_INLINE void zip(I16 &a, I16 &b) {
    const int16x8x2_t v = vzipq_s16(a, b);
    a = v.val[0], b = v.val[1];
}

TAVU_VEC_INLINE Wide difference(U8 a, U8 b) {
    return {as_signed(vsubl_u8(vget_low_u8(a), vget_low_u8(b))),
            as_signed(vsubl_u8(vget_high_u8(a), vget_high_u8(b)))};
}

TAVU_VEC_INLINE void butterfly_difference(U8 a, U8 b, I16 *p, I16 *q) {
    const Wide w = difference(a, b);
    *p = w.lo + w.hi;
    *q = w.lo - w.hi;
}

template <int N>
constexpr int COLUMN_REGISTERS = 2;

template <int N>
TAVU_VEC_INLINE void load_next_butterflies(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                           ptrdiff_t stride_b, I16 *v) {
    const U8 va = load_next_even_odd(a, stride_a);
    butterfly_difference(va, load_next_even_odd(b, stride_b), &v[0], &v[1]);
}

template <int N>
class MagnitudeSum {
  public:
    static TAVU_VEC_INLINE MagnitudeSum zero() { return MagnitudeSum(false); }
    explicit MagnitudeSum(bool empty = true) : empty_(empty) {}
    TAVU_VEC_INLINE void add(I16 v) {
        const U16 u = vreinterpretq_u16_s16(v);
        sum_ = empty_ ? vpaddlq_u16(u) : vpadalq_u16(sum_, u);
        empty_ = false;
    }
    template <size_t M>
    TAVU_VEC_INLINE void add_pairs(const I16 (&v)[M]) {
        I16 maxima = I16{};
#pragma GCC unroll 8
        for (size_t i = 0; i < M; i += 2) {
            const int16x8x2_t pairs = vtrnq_s16(v[i], v[i + 1]);
            const I16 m = larger(pairs.val[0], pairs.val[1]);
            maxima = i == 0 ? m : maxima + m;
        }
        add(maxima);
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(sum_); }

  private:
    uint32x4_t sum_ = uint32x4_t{};
    bool empty_;
};

template <int N>
class RoundedSum {
  public:
    static TAVU_VEC_INLINE RoundedSum zero() { return RoundedSum(false); }
    explicit RoundedSum(bool empty = true) : empty_(empty) {}
    TAVU_VEC_INLINE void add(I16 a, I16 b) {
        const U16 ua = vreinterpretq_u16_s16(a), ub = vreinterpretq_u16_s16(b);
        const U16 m = vcombine_u16(vadd_u16(vget_low_u16(ua), vget_high_u16(ua)),
                                   vadd_u16(vget_low_u16(ub), vget_high_u16(ub)));
        const int32x4_t pairs = vpaddlq_s16(as_signed(vshlq_n_u16(m, 1)));
        const int32x2_t two = vadd_s32(vget_low_s32(pairs), vget_high_s32(pairs));
        const int32x2_t sum = vpadd_s32(two, two);
        sum_ = empty_ ? vrshr_n_s32(sum, 2) : vrsra_n_s32(sum_, sum, 2);
        empty_ = false;
    }
    TAVU_VEC_INLINE int32_t total() const { return vget_lane_s32(sum_, 0); }

  private:
    int32x2_t sum_ = int32x2_t{};
    bool empty_;
};

}  // namespace
}  // namespace tavu

#endif
