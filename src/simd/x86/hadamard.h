// Operations of Hadamard transforms for x86-64: v2 (SSE4.1), v3 (AVX2) and v4 (AVX-512). hadamard.h
// documents them.
#ifndef TAVU_SIMD_X86_HADAMARD_H
#define TAVU_SIMD_X86_HADAMARD_H

#include "simd/x86/block.h"

namespace tavu {
namespace {

template <class R>
TAVU_VEC_INLINE R add(R a, R b) {
    return add_epi16(a, b);
}

template <class R>
TAVU_VEC_INLINE void butterfly(R &a, R &b) {
    const R sum = add_epi16(a, b);
    b = sub_epi16(a, b);
    a = sum;
}

template <class R>
TAVU_VEC_INLINE void butterfly_abs(R &a, R &b) {
    butterfly(a, b);
    a = abs_epi16(a);
    b = abs_epi16(b);
}

template <class R>
TAVU_VEC_INLINE R larger(R a, R b) {
    return max_epi16(a, b);
}

template <class R>
TAVU_VEC_INLINE void zip(R &a, R &b) {
    const R low = unpacklo_epi16(a, b);
    b = unpackhi_epi16(a, b);
    a = low;
}

template <class R>
TAVU_VEC_INLINE void butterfly_difference(R a, R b, R *p, R *q) {
    *p = sub_epi16(sum_columns(a), sum_columns(b));
    *q = sub_epi16(subtract_columns(a), subtract_columns(b));
}

// Two registers of 16 bytes hold sums and differences; one wider register holds both, side by side.
template <int N>
constexpr int COLUMN_REGISTERS = N == 16 ? 2 : 1;

// 16 columns, twice; with 64 bytes also the row 4 rows below, twice.
template <int N>
TAVU_VEC_INLINE VecU8<N> load_columns([[maybe_unused]] const uint8_t *p,
                                      [[maybe_unused]] ptrdiff_t stride) {
#if TAVU_LEVEL == 4
    if constexpr (N == 64) {
        const __m512i row = _mm512_broadcast_i32x4(load<16>(p));
        return _mm512_mask_broadcast_i32x4(row, 0xFF00, load<16>(p + 4 * stride));
    }
#endif
#if TAVU_LEVEL >= 3
    if constexpr (N == 32) return _mm256_broadcastsi128_si256(load<16>(p));
#endif
}

template <int N>
TAVU_VEC_INLINE void load_next_butterflies(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                           ptrdiff_t stride_b, VecI16<N> *v) {
    if constexpr (N == 16) {
        butterfly_difference(load<16>(a), load<16>(b), &v[0], &v[1]);
    } else {
        const VecU8<N> both = constant<VecU8<N>>(BLOCK_CONSTANTS.both);
        v[0] = sub_epi16(maddubs_epi16(load_columns<N>(a, stride_a), both),
                         maddubs_epi16(load_columns<N>(b, stride_b), both));
    }
    a += stride_a;
    b += stride_b;
}

template <int N>
class MagnitudeSum {
  public:
    static TAVU_VEC_INLINE MagnitudeSum zero() { return {}; }

    TAVU_VEC_INLINE void add(VecI16<N> v) {
        sum_ = add_epi32(sum_, madd_epi16(v, constant<VecI16<N>>(BLOCK_CONSTANTS.ones)));
    }
    // Eight registers at most: a maximum is at most 16 * 255, and 8 * 4080 fits 16 bits. The maxima
    // are in the even lanes; the weights of odd lanes are 0.
    template <size_t M>
    TAVU_VEC_INLINE void add_pairs(const VecI16<N> (&v)[M]) {
        VecI16<N> maxima{};
#pragma GCC unroll 8
        for (size_t i = 0; i < M; i++) {
            const VecI16<N> pair = max_epi16(v[i], srli_epi32<16>(v[i]));
            maxima = i == 0 ? pair : add_epi16(maxima, pair);
        }
        sum_ = add_epi32(sum_, madd_epi16(maxima, constant<VecI16<N>>(BLOCK_CONSTANTS.even_ones)));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(fold(sum_)); }

  private:
    VecI16<N> sum_{};
};

template <int N>
class RoundedSum {
  public:
    static TAVU_VEC_INLINE RoundedSum zero() { return {}; }

    TAVU_VEC_INLINE void add(VecI16<N> a, VecI16<N> b) {
        const VecI16<N> m = add_epi16(unpacklo_epi64(a, b), unpackhi_epi64(a, b));
        VecI16<N> s = madd_epi16(add_epi16(m, m), constant<VecI16<N>>(BLOCK_CONSTANTS.ones));
        s = add_epi32(s, shuffle_epi32<0x4E>(s));
        s = add_epi32(s, shuffle_epi32<0xB1>(s));
        s = add_epi32(s, constant<VecI16<N>>(BLOCK_CONSTANTS.twos));
        sum_ = add_epi32(sum_, srai_epi32<2>(s));
    }
    TAVU_VEC_INLINE int32_t total() const { return _mm_cvtsi128_si32(fold(sum_)); }

  private:
    VecI16<N> sum_{};
};

}  // namespace
}  // namespace tavu

#endif
