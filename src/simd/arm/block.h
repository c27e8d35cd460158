// Operations on blocks for NEON, 32-bit and 64-bit. block.h documents them.
#ifndef TAVU_SIMD_ARM_BLOCK_H
#define TAVU_SIMD_ARM_BLOCK_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "simd/arm/vec.h"

namespace tavu {
namespace {

template <int N>
using VecU8 = U8;
template <int N>
using VecI16 = I16;

#if defined(__arm__)

// The argument is passed on the stack, and is loaded when a register is free.
TAVU_VEC_INLINE void keep_in_memory(int32_t &argument) { __asm__("" : "+m"(argument)); }

// In assembly, because compilers do not use the loads that advance by a stride.

TAVU_VEC_INLINE U8 load_next_row16(const uint8_t *&p, ptrdiff_t stride) {
    U8 v;
    __asm__("vld1.8 {%e0, %f0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[16]>(p)));
    return v;
}

// The even bytes in the lower half, the odd ones in the upper one.
TAVU_VEC_INLINE U8 load_next_even_odd(const uint8_t *&p, ptrdiff_t stride) {
    U8 v;
    __asm__("vld2.8 {%e0, %f0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[16]>(p)));
    return v;
}

TAVU_VEC_INLINE uint8x8_t load_next_row8(const uint8_t *&p, ptrdiff_t stride) {
    uint8x8_t v;
    __asm__("vld1.8 {%P0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[8]>(p)));
    return v;
}

// The distance of the rows is unknown, so the operand is all memory from p on.
TAVU_VEC_INLINE U8 load_next_rows8(const uint8_t *&p, ptrdiff_t stride) {
    U8 v;
    __asm__("vld1.8 {%e0}, [%1], %2\n\tvld1.8 {%f0}, [%1], %2"
            : "=w"(v), "+r"(p)
            : "r"(stride), "m"(*reinterpret_cast<const uint8_t(*)[PTRDIFF_MAX]>(p)));
    return v;
}

TAVU_VEC_INLINE U8 load_next_rows4(const uint8_t *&p, ptrdiff_t stride) {
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

TAVU_VEC_INLINE U8 load_next_row16(const uint8_t *&p, ptrdiff_t stride) {
    const U8 v = vld1q_u8(p);
    p += stride;
    return v;
}

TAVU_VEC_INLINE U8 load_next_even_odd(const uint8_t *&p, ptrdiff_t stride) {
    const uint8x8x2_t v = vld2_u8(p);
    p += stride;
    return vcombine_u8(v.val[0], v.val[1]);
}

TAVU_VEC_INLINE uint8x8_t load_next_row8(const uint8_t *&p, ptrdiff_t stride) {
    const uint8x8_t v = vld1_u8(p);
    p += stride;
    return v;
}

TAVU_VEC_INLINE U8 load_next_rows8(const uint8_t *&p, ptrdiff_t stride) {
    const U8 v = vcombine_u8(vld1_u8(p), vld1_u8(p + stride));
    p += 2 * stride;
    return v;
}

TAVU_VEC_INLINE U8 load_next_rows4(const uint8_t *&p, ptrdiff_t stride) {
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
    return load_next(p);
}

template <int N, int W>
TAVU_VEC_INLINE U8 load_next_rows(const uint8_t *&p, ptrdiff_t stride) {
    if constexpr (W == 4) return load_next_rows4(p, stride);
    if constexpr (W == 8) return load_next_rows8(p, stride);
    if constexpr (W == 16) return load_next_row16(p, stride);
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

// Each of the eight 16-bit lanes sums every eighth byte. The first addition needs no zeros.
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
TAVU_VEC_INLINE I16 load_next_difference(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                         ptrdiff_t stride_b) {
    const uint8x8_t va = load_next_row8(a, stride_a);
    return as_signed(vsubl_u8(va, load_next_row8(b, stride_b)));
}

template <int N>
TAVU_VEC_INLINE void store_difference(const uint8_t *a, const uint8_t *b, int16_t *out) {
    vst1q_s16(out, as_signed(vsubl_u8(vld1_u8(a), vld1_u8(b))));
}

}  // namespace
}  // namespace tavu

#endif
