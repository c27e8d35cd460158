// Bilinear resampling on NEON, 32-bit and 64-bit. resample.h documents the operations.
#ifndef TAVU_SIMD_ARM_RESAMPLE_H
#define TAVU_SIMD_ARM_RESAMPLE_H

#include <arm_neon.h>

#include <cstddef>
#include <type_traits>

#include "simd/vec.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

constexpr int OUTPUTS = LANES / 2;
constexpr int WINDOW = 16;
using I32x4 = int32_t __attribute__((vector_size(16)));
using U16x8 = uint16_t __attribute__((vector_size(16)));

TAVU_VEC_INLINE U16x8 narrow32(I32x4 x, I32x4 y) {
    return vreinterpretq_u16_s16(vcombine_s16(vmovn_s32(x), vmovn_s32(y)));
}

TAVU_VEC_INLINE void store_halves(uint8_t *p, U16x8 low, U16x8 high) {
    vst1_u8(p, vmovn_u16(low));
    vst1_u8(p + 8, vmovn_u16(high));
}

// Left samples and weights are in the lower half of a register, right ones in the upper. A table
// look-up reaches two windows and yields 0 for an index beyond them.
template <int Windows>
struct Gather {
    static constexpr int LOOKUPS = (Windows + 1) / 2;
    uint8_t index[size_t{LOOKUPS}][LANES];
    uint8_t weight[LANES];
    int32_t offset[1];
};

template <int Windows>
TAVU_VEC_INLINE void set_positions(Gather<Windows> &gather, int, U16x8 left, U16x8 right) {
    for (int n = 0; n < Gather<Windows>::LOOKUPS; n++) {
        const auto first = static_cast<uint16_t>(2 * WINDOW * n);
        store_halves(gather.index[n], left - first, right - first);
    }
}

TAVU_VEC_INLINE void set_weights(uint8_t *p, U16x8 a) { store_halves(p, 8 - a, a); }

// Of the first and the second 8 squares. With weights times 4, sums of lerp_row_2x2() are at most
// 256 * 255 and their upper bytes are the outputs.
struct Weights2x2 {
    U16 upper[2], lower[2];
};
constexpr int ROW_SCALE_2X2 = 4;

#if defined(__arm__)

// In assembly, because compilers copy the halves of registers.

TAVU_VEC_INLINE U8 load_at(const uint8_t *p) {
    U8 v;
    __asm__("vld1.8 {%e0, %f0}, [%1]"
            : "=w"(v)
            : "r"(p), "m"(*reinterpret_cast<const uint8_t(*)[LANES]>(p)));
    return v;
}

TAVU_VEC_INLINE U8 look_up(const uint8_t *p, U8 index, std::integral_constant<int, 1>) {
    const U8 window = load_at(p);
    U8 v;
    __asm__("vtbl.8 %e0, {%e1, %f1}, %e2\n\tvtbl.8 %f0, {%e1, %f1}, %f2"
            : "=&w"(v)
            : "w"(window), "w"(index));
    return v;
}

TAVU_VEC_INLINE U8 look_up(const uint8_t *p, U8 index, std::integral_constant<int, 2>) {
    U8 v;
    __asm__(
        "vld1.8 {d0, d1, d2, d3}, [%1]\n\t"
        "vtbl.8 %e0, {d0, d1, d2, d3}, %e2\n\tvtbl.8 %f0, {d0, d1, d2, d3}, %f2"
        : "=&w"(v)
        : "r"(p), "w"(index), "m"(*reinterpret_cast<const uint8_t(*)[2 * LANES]>(p))
        : "q0", "q1");
    return v;
}

TAVU_VEC_INLINE UWide lerp_next_2x2(const uint8_t *&upper, const uint8_t *&lower,
                                    const Weights2x2 &w) {
    UWide sums;
    __asm__(
        "vld2.8 {d0, d1, d2, d3}, [%2]!\n\tvld2.8 {d4, d5, d6, d7}, [%3]!\n\t"
        "vmull.u8 %q0, d0, %e4\n\tvmull.u8 %q1, d1, %e5\n\t"
        "vmlal.u8 %q0, d2, %f4\n\tvmlal.u8 %q1, d3, %f5\n\t"
        "vmlal.u8 %q0, d4, %e6\n\tvmlal.u8 %q1, d5, %e7\n\t"
        "vmlal.u8 %q0, d6, %f6\n\tvmlal.u8 %q1, d7, %f7"
        : "=&w"(sums.lo), "=&w"(sums.hi), "+r"(upper), "+r"(lower)
        : "w"(w.upper[0]), "w"(w.upper[1]), "w"(w.lower[0]), "w"(w.lower[1]),
          "m"(*reinterpret_cast<const uint8_t(*)[2 * LANES]>(upper)),
          "m"(*reinterpret_cast<const uint8_t(*)[2 * LANES]>(lower))
        : "q0", "q1", "q2", "q3");
    return sums;
}

TAVU_VEC_INLINE U8 narrow6(UWide w) {
    U8 v;
    __asm__("vshrn.i16 %e0, %q1, #6\n\tvshrn.i16 %f0, %q2, #6" : "=&w"(v) : "w"(w.lo), "w"(w.hi));
    return v;
}

#else

TAVU_VEC_INLINE U8 load_at(const uint8_t *p) { return vld1q_u8(p); }

TAVU_VEC_INLINE U8 look_up(const uint8_t *p, U8 index, std::integral_constant<int, 1>) {
    return vqtbl1q_u8(vld1q_u8(p), index);
}

TAVU_VEC_INLINE U8 look_up(const uint8_t *p, U8 index, std::integral_constant<int, 2>) {
    return vqtbl2q_u8(uint8x16x2_t{{vld1q_u8(p), vld1q_u8(p + 16)}}, index);
}

TAVU_VEC_INLINE UWide lerp_next_2x2(const uint8_t *&upper, const uint8_t *&lower,
                                    const Weights2x2 &w) {
    const uint8x16x2_t u = vld2q_u8(upper), l = vld2q_u8(lower);
    const auto add = [](U16 sum, uint8x8_t left, uint8x8_t right, U16 weights) {
        const U8 bytes = vreinterpretq_u8_u16(weights);
        return vmlal_u8(vmlal_u8(sum, left, vget_low_u8(bytes)), right, vget_high_u8(bytes));
    };
    const auto sum = [&](int n, auto half) {
        const U16 upper_sum = add(vdupq_n_u16(0), half(u.val[0]), half(u.val[1]), w.upper[n]);
        return add(upper_sum, half(l.val[0]), half(l.val[1]), w.lower[n]);
    };
    upper += 2 * LANES;
    lower += 2 * LANES;
    const auto low = [](U8 v) { return vget_low_u8(v); };
    const auto high = [](U8 v) { return vget_high_u8(v); };
    return {sum(0, low), sum(1, high)};
}

TAVU_VEC_INLINE U8 narrow6(UWide w) { return vshrn_high_n_u16(vshrn_n_u16(w.lo, 6), w.hi, 6); }

#endif

template <int Windows>
struct LoadedGather {
    U8 index[Gather<Windows>::LOOKUPS], weight;
    int32_t offset;
};

template <int Windows>
TAVU_VEC_INLINE LoadedGather<Windows> load_gather(const Gather<Windows> &gather) {
    LoadedGather<Windows> loaded;
    for (int n = 0; n < Gather<Windows>::LOOKUPS; n++) loaded.index[n] = load_at(gather.index[n]);
    loaded.weight = load_at(gather.weight);
    loaded.offset = gather.offset[0];
    return loaded;
}

template <int Windows>
TAVU_VEC_INLINE U16 lerp_columns(const uint8_t *row, const LoadedGather<Windows> &gather) {
    constexpr std::integral_constant<int, (Windows < 2 ? 1 : 2)> each;
    const uint8_t *p = row + gather.offset;
    U8 pairs = look_up(p, gather.index[0], each);
    if constexpr (Windows > 2) pairs |= look_up(p + 2 * WINDOW, gather.index[1], each);
    return vmlal_u8(vmull_u8(vget_low_u8(pairs), vget_low_u8(gather.weight)), vget_high_u8(pairs),
                    vget_high_u8(gather.weight));
}

TAVU_VEC_INLINE U16 lerp_rows(U16 upper, U16 lower, uint16_t b) {
    const U16 upper_sum = vmulq_u16(upper, vdupq_n_u16(static_cast<uint16_t>(8 - b)));
    return vmlaq_u16(upper_sum, lower, vdupq_n_u16(b));
}

#if defined(__arm__)

// Compilers derive the distance of branches from the lines of assembly: no .rept.
#define TAVU_LERP_BLOCK_2X2                                                        \
    "vld2.8 {d0, d1, d2, d3}, [%0]!\n\tvld2.8 {d4, d5, d6, d7}, [%1]!\n\t"         \
    "vld1.8 {d16, d17, d18, d19}, [%4]!\n\tvld1.8 {d20, d21, d22, d23}, [%4]!\n\t" \
    "vmull.u8 q12, d0, d16\n\tvmull.u8 q13, d1, d18\n\t"                           \
    "vmlal.u8 q12, d2, d17\n\tvmlal.u8 q13, d3, d19\n\t"                           \
    "vmlal.u8 q12, d4, d20\n\tvmlal.u8 q13, d5, d22\n\t"                           \
    "vmlal.u8 q12, d6, d21\n\tvmlal.u8 q13, d7, d23\n\t"                           \
    "vuzp.8 q12, q13\n\t"                                                          \
    "vst1.8 {d26, d27}, [%3]!\n"

// The whole loop, two blocks per turn. An odd number of blocks enters it in the middle.
TAVU_VEC_INLINE void lerp_row_2x2(const uint8_t *upper, const uint8_t *lower,
                                  const Weights2x2 *weights, int32_t blocks, ptrdiff_t,
                                  uint8_t *out) {
    __asm__ volatile(
        "tst %2, #1\n\t"
        "bne 1f\n"
        "0:\n\t" TAVU_LERP_BLOCK_2X2 "1:\n\t" TAVU_LERP_BLOCK_2X2
        "subs %2, #2\n\t"
        "bgt 0b"
        : "+r"(upper), "+r"(lower), "+r"(blocks), "+r"(out), "+r"(weights)
        :
        : "q0", "q1", "q2", "q3", "q8", "q9", "q10", "q11", "q12", "q13", "cc", "memory");
}

#undef TAVU_LERP_BLOCK_2X2

#else

TAVU_VEC_INLINE void lerp_row_2x2(const uint8_t *upper, const uint8_t *lower,
                                  const Weights2x2 *weights, int32_t blocks, ptrdiff_t,
                                  uint8_t *out) {
    for (; blocks > 0; blocks--, weights++) {
        const UWide sums = lerp_next_2x2(upper, lower, *weights);
        store_next(out, vuzp2q_u8(vreinterpretq_u8_u16(sums.lo), vreinterpretq_u8_u16(sums.hi)));
    }
}

#endif

// The hardware prefetches rows by itself.
TAVU_VEC_INLINE void prefetch(const uint8_t *) {}

TAVU_VEC_INLINE I16 round_shift8(I16 v) { return vrshrq_n_s16(v, 8); }

TAVU_VEC_INLINE U16 load16(const uint16_t *p) {
    return vreinterpretq_u16_u8(load_at(reinterpret_cast<const uint8_t *>(p)));
}

TAVU_VEC_INLINE void store16(uint16_t *p, U16 v) {
    vst1q_u8(reinterpret_cast<uint8_t *>(p), vreinterpretq_u8_u16(v));
}

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif
