// Operations of Hadamard transforms for x86-64: v2 (SSE4.1), v3 (AVX2) and v4 (AVX-512). They are told
// in tile.h.
#ifndef TAVU_SIMD_X86_HADAMARD_H
#define TAVU_SIMD_X86_HADAMARD_H

#include "simd/x86/block.h"

namespace tavu {
namespace {

template <class R>
TAVU_VEC_INLINE void butterfly(R &a, R &b) {
    const R sum = Of<R>::add_epi16(a, b);
    b = Of<R>::sub_epi16(a, b);
    a = sum;
}

template <class R>
TAVU_VEC_INLINE R add(R a, R b) {
    return Of<R>::add_epi16(a, b);
}

template <class R>
TAVU_VEC_INLINE void zip(R &a, R &b) {
    const R low = Of<R>::unpacklo_epi16(a, b);
    b = Of<R>::unpackhi_epi16(a, b);
    a = low;
}

template <class R>
TAVU_VEC_INLINE void butterfly_abs(R &a, R &b) {
    butterfly(a, b);
    a = Of<R>::abs_epi16(a);
    b = Of<R>::abs_epi16(b);
}

template <class R>
TAVU_VEC_INLINE R larger(R a, R b) {
    return Of<R>::max_epi16(a, b);
}

template <class R>
TAVU_VEC_INLINE void butterfly_difference(R a, R b, R *p, R *q) {
    *p = Of<R>::sub_epi16(sum_columns(a), sum_columns(b));
    *q = Of<R>::sub_epi16(subtract_columns(a), subtract_columns(b));
}

#if defined(__AVX2__)

// Two rows of 4 columns: of each the sums and the differences of neighbours.
TAVU_VEC_INLINE __m128i load_row_butterflies(const uint8_t *p, ptrdiff_t stride) {
    const __m128i upper = _mm_set1_epi32(load4(p)), lower = _mm_set1_epi32(load4(p + stride));
    return _mm_maddubs_epi16(_mm_blend_epi32(upper, lower, 0b1100),
                             constant<__m128i>(TILE_CONSTANTS.both_of_four));
}

TAVU_VEC_INLINE __m128i load_row_butterflies(const uint8_t *&a, ptrdiff_t stride_a,
                                             const uint8_t *&b, ptrdiff_t stride_b) {
    const __m128i rows_a = load_row_butterflies(a, stride_a);
    const __m128i rows_b = load_row_butterflies(b, stride_b);
    a += 2 * stride_a;
    b += 2 * stride_b;
    return _mm_sub_epi16(rows_a, rows_b);
}

// As zip(), but of the two halves of each 16 bytes.
TAVU_VEC_INLINE void zip_halves(__m128i &a, __m128i &b) {
    const __m128i low = _mm_unpacklo_epi64(a, b);
    b = _mm_unpackhi_epi64(a, b);
    a = low;
}

#endif

// Registers of 16 bytes hold sums and differences, wider ones sums beside differences.
template <int N>
constexpr int COLUMN_REGISTERS = N == 16 ? 2 : 1;

// 16 columns, twice; of 64 bytes also those 4 rows below.
template <int N>
TAVU_VEC_INLINE Bytes<N> load_columns([[maybe_unused]] const uint8_t *p,
                                      [[maybe_unused]] ptrdiff_t stride) {
#if defined(__AVX512BW__)
    if constexpr (N == 64) {
        const __m512i row = _mm512_broadcast_i32x4(load<16>(p));
        return _mm512_mask_broadcast_i32x4(row, 0xFF00, load<16>(p + 4 * stride));
    }
#endif
#if defined(__AVX2__)
    if constexpr (N == 32) return _mm256_broadcastsi128_si256(load<16>(p));
#endif
}

template <int N>
TAVU_VEC_INLINE Words<N> load_column_butterflies(const uint8_t *p, ptrdiff_t stride) {
    return Isa<N>::maddubs_epi16(load_columns<N>(p, stride),
                                 constant<Bytes<N>>(TILE_CONSTANTS.both));
}

template <int N>
TAVU_VEC_INLINE void load_butterflies(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                      ptrdiff_t stride_b, Words<N> *v) {
    if constexpr (N == 16) {
        butterfly_difference(load<16>(a), load<16>(b), &v[0], &v[1]);
    } else {
        v[0] = Isa<N>::sub_epi16(load_column_butterflies<N>(a, stride_a),
                                 load_column_butterflies<N>(b, stride_b));
    }
    a += stride_a;
    b += stride_b;
}

template <int N>
TAVU_VEC_INLINE Words<N> load_difference(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                         ptrdiff_t stride_b) {
    const Words<N> d = load_difference<N>(a, b);
    a += stride_a;
    b += stride_b;
    return d;
}

#if defined(__AVX512BW__)

// A block of 8x8.
TAVU_VEC_INLINE __m512i load_block(const uint8_t *p, ptrdiff_t stride) {
    const __m256i upper = load_rows<32, 8>(p, stride), lower = load_rows<32, 8>(p, stride);
    return _mm512_inserti64x4(_mm512_castsi256_si512(upper), lower, 1);
}

TAVU_VEC_INLINE void zip_halves(__m512i &a, __m512i &b) {
    const __m512i low = _mm512_unpacklo_epi64(a, b);
    b = _mm512_unpackhi_epi64(a, b);
    a = low;
}

// As zip(), but of a bit that tells rows apart, which are 16 bytes each.
TAVU_VEC_INLINE void zip_rows(__m512i &a, __m512i &b) {
    const __m512i even = _mm512_shuffle_i64x2(a, b, 0x88);
    b = _mm512_shuffle_i64x2(a, b, 0xDD);
    a = even;
}

TAVU_VEC_INLINE __m256i add_halves(__m512i v) {
    return _mm256_add_epi16(_mm512_castsi512_si256(v), _mm512_extracti64x4_epi64(v, 1));
}

// Doubled sums of neighbours, which wrap in 16 signed bits, all added.
TAVU_VEC_INLINE int32_t sum_doubled_pairs(__m256i v) {
    const __m256i pairs = _mm256_add_epi16(v, _mm256_slli_epi32(v, 16));
    return sum_lanes(fold(_mm256_srai_epi32(_mm256_add_epi16(pairs, pairs), 16)));
}

#elif defined(__AVX2__)

constexpr int STACKED = 32;

TAVU_VEC_INLINE __m256i load_stacked(const uint8_t *p, ptrdiff_t stride) {
    return _mm256_cvtepu8_epi16(load8_twice(p, 4 * stride));
}

TAVU_VEC_INLINE __m128i larger_half(__m256i v) {
    return _mm_max_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
}

#else

constexpr int STACKED = 16;

TAVU_VEC_INLINE __m128i load_stacked(const uint8_t *p, ptrdiff_t) { return load_wide<16>(p); }

#endif

#if !defined(__AVX512BW__)
TAVU_VEC_INLINE Words<STACKED> load_stacked_difference(const uint8_t *&a, ptrdiff_t stride_a,
                                                       const uint8_t *&b, ptrdiff_t stride_b) {
    const Words<STACKED> d =
        Isa<STACKED>::sub_epi16(load_stacked(a, stride_a), load_stacked(b, stride_b));
    a += stride_a;
    b += stride_b;
    return d;
}
#endif

template <int N>
class MagnitudeSum {
  public:
    static TAVU_VEC_INLINE MagnitudeSum zero() { return {}; }

    TAVU_VEC_INLINE void add(Words<N> v) {
        sum_ =
            Isa<N>::add_epi32(sum_, Isa<N>::madd_epi16(v, constant<Words<N>>(TILE_CONSTANTS.ones)));
    }
    // The maxima gather in the even lanes, of which alone the sum is taken.
    template <size_t M>
    TAVU_VEC_INLINE void add_pairs(const Words<N> (&v)[M]) {
        Words<N> maxima{};
#pragma GCC unroll 8
        for (size_t i = 0; i < M; i++) {
            const Words<N> pair = Isa<N>::max_epi16(v[i], Isa<N>::odd_to_even(v[i]));
            maxima = i == 0 ? pair : Isa<N>::add_epi16(maxima, pair);
        }
        sum_ = Isa<N>::add_epi32(
            sum_, Isa<N>::madd_epi16(maxima, constant<Words<N>>(TILE_CONSTANTS.even_ones)));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(fold(sum_)); }

  private:
    Words<N> sum_{};
};

// Adds (s + 2) >> 2 for each transform, where s sums 2 m over its eight horizontal frequencies: m is
// the sum of two lanes, v[i] and v[i + 4] of `a` and of `b`, and 2 m wraps in 16 signed bits. Each 16
// bytes are of one transform.
template <int N>
class RoundedSum {
  public:
    static TAVU_VEC_INLINE RoundedSum zero() { return {}; }

    TAVU_VEC_INLINE void add(Words<N> a, Words<N> b) {
        const Words<N> m =
            Isa<N>::add_epi16(Isa<N>::unpacklo_epi64(a, b), Isa<N>::unpackhi_epi64(a, b));
        Words<N> s =
            Isa<N>::madd_epi16(Isa<N>::add_epi16(m, m), constant<Words<N>>(TILE_CONSTANTS.ones));
        s = Isa<N>::add_epi32(s, Isa<N>::template shuffle_epi32<0x4E>(s));
        s = Isa<N>::add_epi32(s, Isa<N>::template shuffle_epi32<0xB1>(s));
        s = Isa<N>::add_epi32(s, constant<Words<N>>(TILE_CONSTANTS.twos));
        sum_ = Isa<N>::add_epi32(sum_, Isa<N>::quarter(s));
    }
    TAVU_VEC_INLINE int32_t total() const { return _mm_cvtsi128_si32(fold(sum_)); }

  private:
    Words<N> sum_{};
};

}  // namespace
}  // namespace tavu

#endif
