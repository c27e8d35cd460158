// Operations on blocks for NEON, 32-bit and 64-bit. They are told in tile.h.
#ifndef TAVU_SIMD_ARM_BLOCK_H
#define TAVU_SIMD_ARM_BLOCK_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "simd/arm/vec.h"

namespace tavu {
namespace {

constexpr int WIDEST = 16, STACKED = 16;
template <int N>
using Bytes = U8;
template <int N>
using Words = I16;

#if defined(__arm__)

// Such an argument comes on the stack; it is then loaded when registers are free for it.
TAVU_VEC_INLINE void keep_in_memory(int32_t &argument) { __asm__("" : "+m"(argument)); }

// In assembly, for compilers do not use the loads that move on by a stride.

TAVU_VEC_INLINE U8 load_row16(const uint8_t *&p, ptrdiff_t stride) {
    U8 v;
    __asm__("vld1.8 {%e0, %f0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[16]>(p)));
    return v;
}

TAVU_VEC_INLINE U8 load_next16(const uint8_t *&p) {
    U8 v;
    __asm__("vld1.8 {%e0, %f0}, [%1]!"
            : "=w"(v), "+r"(p)
            : "m"(*reinterpret_cast<const uint8_t(*)[16]>(p)));
    return v;
}

// The even bytes in the lower half, the odd ones in the upper one.
TAVU_VEC_INLINE U8 load_even_odd(const uint8_t *&p, ptrdiff_t stride) {
    U8 v;
    __asm__("vld2.8 {%e0, %f0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[16]>(p)));
    return v;
}

TAVU_VEC_INLINE uint8x8_t load_row8(const uint8_t *&p, ptrdiff_t stride) {
    uint8x8_t v;
    __asm__("vld1.8 {%P0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[8]>(p)));
    return v;
}

// Rows lie as far apart as the stride says: the operand is all of what follows.
TAVU_VEC_INLINE U8 load_rows8(const uint8_t *&p, ptrdiff_t stride) {
    U8 v;
    __asm__("vld1.8 {%e0}, [%1], %2\n\tvld1.8 {%f0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[PTRDIFF_MAX]>(p)));
    return v;
}

TAVU_VEC_INLINE U8 load_rows4(const uint8_t *&p, ptrdiff_t stride) {
    U8 v;
    __asm__(
        "vld1.32 {%e0[0]}, [%1], %2\n\tvld1.32 {%e0[1]}, [%1], %2\n\t"
        "vld1.32 {%f0[0]}, [%1], %2\n\tvld1.32 {%f0[1]}, [%1], %2"
        : "=w"(v), "+r"(p)
        : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[PTRDIFF_MAX]>(p)));
    return v;
}

#else

TAVU_VEC_INLINE void keep_in_memory(int32_t) {}

TAVU_VEC_INLINE U8 load_row16(const uint8_t *&p, ptrdiff_t stride) {
    const U8 v = vld1q_u8(p);
    p += stride;
    return v;
}

TAVU_VEC_INLINE U8 load_next16(const uint8_t *&p) { return load_row16(p, 16); }

TAVU_VEC_INLINE U8 load_even_odd(const uint8_t *&p, ptrdiff_t stride) {
    const uint8x8x2_t v = vld2_u8(p);
    p += stride;
    return vcombine_u8(v.val[0], v.val[1]);
}

TAVU_VEC_INLINE uint8x8_t load_row8(const uint8_t *&p, ptrdiff_t stride) {
    const uint8x8_t v = vld1_u8(p);
    p += stride;
    return v;
}

TAVU_VEC_INLINE U8 load_rows8(const uint8_t *&p, ptrdiff_t stride) {
    const U8 v = vcombine_u8(vld1_u8(p), vld1_u8(p + stride));
    p += 2 * static_cast<ptrdiff_t>(stride);
    return v;
}

TAVU_VEC_INLINE U8 load_rows4(const uint8_t *&p, ptrdiff_t stride) {
    uint32_t rows[4];
    for (uint32_t &row : rows) {
        memcpy(&row, p, 4);
        p += stride;
    }
    return vreinterpretq_u8_u32(vld1q_u32(rows));
}

#endif

template <int N>
TAVU_VEC_INLINE U8 load(const uint8_t *p) {
    return vld1q_u8(p);
}

template <int N>
TAVU_VEC_INLINE U8 load_next(const uint8_t *&p) {
    return load_next16(p);
}

template <int N, int W>
TAVU_VEC_INLINE U8 load_rows(const uint8_t *&p, ptrdiff_t stride) {
    if constexpr (W == 4) return load_rows4(p, stride);
    if constexpr (W == 8) return load_rows8(p, stride);
    if constexpr (W == 16) return load_row16(p, stride);
}

template <int W>
TAVU_VEC_INLINE U8 load_start(const uint8_t *p) {
    if constexpr (W == 16) return vld1q_u8(p);
    if constexpr (W == 8) return vcombine_u8(vld1_u8(p), vdup_n_u8(0));
    uint32_t word;
    memcpy(&word, p, 4);
    return vreinterpretq_u8_u32(vsetq_lane_u32(word, vdupq_n_u32(0), 0));
}

TAVU_VEC_INLINE int32_t sum_lanes(uint32x4_t v) {
    const uint32x2_t pair = vadd_u32(vget_low_u32(v), vget_high_u32(v));
    return static_cast<int32_t>(vget_lane_u32(vpadd_u32(pair, pair), 0));
}

// Eight 16-bit lanes, of which each takes every eighth byte. The first addition needs no zeros.
template <int N>
class AbsSum {
  public:
    static constexpr int WIDTH = N;
    static TAVU_VEC_INLINE AbsSum zero() { return AbsSum(false); }
    explicit AbsSum(bool empty = true) : empty_(empty) {}
    static constexpr int MAX_BYTES = 8 * 256;

    TAVU_VEC_INLINE void add(U8 a, U8 b) {
        const uint8x8_t a0 = vget_low_u8(a), b0 = vget_low_u8(b);
        sum_ = empty_ ? vabdl_u8(a0, b0) : vabal_u8(sum_, a0, b0);
        sum_ = vabal_u8(sum_, vget_high_u8(a), vget_high_u8(b));
        empty_ = false;
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(vpaddlq_u16(sum_)); }

  private:
    U16 sum_ = U16{};
    bool empty_;
};

// Squares of absolute differences fit unsigned 16-bit lanes.
template <int N>
class SquareSum {
  public:
    static constexpr int WIDTH = N;
    static TAVU_VEC_INLINE SquareSum zero() { return SquareSum(false); }
    explicit SquareSum(bool empty = true) : empty_(empty) {}
    static constexpr int MAX_BYTES = INT32_MAX;

    TAVU_VEC_INLINE void add(U8 a, U8 b) {
        const U8 d = vabdq_u8(a, b);
        const U16 lo = vmull_u8(vget_low_u8(d), vget_low_u8(d));
        sum_ = empty_ ? vpaddlq_u16(lo) : vpadalq_u16(sum_, lo);
        sum_ = vpadalq_u16(sum_, vmull_u8(vget_high_u8(d), vget_high_u8(d)));
        empty_ = false;
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(sum_); }

  private:
    uint32x4_t sum_ = uint32x4_t{};
    bool empty_;
};

TAVU_VEC_INLINE I16 as_signed(U16 v) { return vreinterpretq_s16_u16(v); }

template <int N>
TAVU_VEC_INLINE I16 load_difference(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                    ptrdiff_t stride_b) {
    const uint8x8_t va = load_row8(a, stride_a);
    return as_signed(vsubl_u8(va, load_row8(b, stride_b)));
}

template <int N>
TAVU_VEC_INLINE void store_difference(const uint8_t *a, const uint8_t *b, int16_t *out) {
    vst1q_s16(out, as_signed(vsubl_u8(vld1_u8(a), vld1_u8(b))));
}

TAVU_VEC_INLINE Wide difference(U8 a, U8 b) {
    return {as_signed(vsubl_u8(vget_low_u8(a), vget_low_u8(b))),
            as_signed(vsubl_u8(vget_high_u8(a), vget_high_u8(b)))};
}

TAVU_VEC_INLINE void butterfly(I16 &a, I16 &b) {
    const I16 sum = a + b;
    b = a - b;
    a = sum;
}

TAVU_VEC_INLINE I16 add(I16 a, I16 b) { return a + b; }

TAVU_VEC_INLINE void zip(I16 &a, I16 &b) {
    const int16x8x2_t v = vzipq_s16(a, b);
    a = v.val[0], b = v.val[1];
}

TAVU_VEC_INLINE I16 load_stacked_difference(const uint8_t *&a, ptrdiff_t stride_a,
                                            const uint8_t *&b, ptrdiff_t stride_b) {
    return load_difference<16>(a, stride_a, b, stride_b);
}

TAVU_VEC_INLINE void butterfly_difference(U8 a, U8 b, I16 *p, I16 *q) {
    const Wide w = difference(a, b);
    *p = w.lo + w.hi;
    *q = w.lo - w.hi;
}

template <int N>
constexpr int COLUMN_REGISTERS = 2;

template <int N>
TAVU_VEC_INLINE void load_butterflies(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                      ptrdiff_t stride_b, I16 *v) {
    const U8 va = load_even_odd(a, stride_a);
    butterfly_difference(va, load_even_odd(b, stride_b), &v[0], &v[1]);
}

TAVU_VEC_INLINE void butterfly_abs(I16 &a, I16 &b) {
    const I16 sum = vabsq_s16(a + b);
    b = vabdq_s16(a, b);
    a = sum;
}

TAVU_VEC_INLINE I16 larger(I16 a, I16 b) { return vmaxq_s16(a, b); }

// The horizontal transforms of a - b of two rows of eight columns, which lie side by side: lanes 0 to 3
// of p and q are the frequencies of the left one.
TAVU_VEC_INLINE void load_row_transforms(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                         ptrdiff_t stride_b, I16 *p, I16 *q) {
    I16 v[2];
    load_butterflies<16>(a, stride_a, b, stride_b, v);
    const int16x8x2_t pairs = vtrnq_s16(v[0], v[1]);
    I16 even = pairs.val[0], odd = pairs.val[1];
    butterfly(even, odd);
    const int32x4x2_t fours = vtrnq_s32(vreinterpretq_s32_s16(even), vreinterpretq_s32_s16(odd));
    *p = vreinterpretq_s16_s32(fours.val[0]);
    *q = vreinterpretq_s16_s32(fours.val[1]);
    butterfly(*p, *q);
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

// Adds (s + 2) >> 2 for each transform, where s sums 2 m over its eight horizontal frequencies: m is
// the sum of two lanes, v[i] and v[i + 4] of `a` and of `b`, and 2 m wraps in 16 signed bits.
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

// The same of two transforms side by side, as load_row_transforms() leaves their lanes.
class RoundedSums {
  public:
    static TAVU_VEC_INLINE RoundedSums zero() { return {}; }
    TAVU_VEC_INLINE void add(I16 a, I16 b) {
        const int32x4_t s = vpaddlq_s16(a + a) + vpaddlq_s16(b + b);
        sum_ = vrsra_n_s32(sum_, vpadd_s32(vget_low_s32(s), vget_high_s32(s)), 2);
    }
    TAVU_VEC_INLINE int32_t total() const { return vget_lane_s32(vpadd_s32(sum_, sum_), 0); }

  private:
    int32x2_t sum_ = int32x2_t{};
};

}  // namespace
}  // namespace tavu

#endif
