// SATDs on x86-64: v2 (SSE4.1), v3 (AVX2) and v4 (AVX-512). satd.h documents them.
#ifndef TAVU_SIMD_X86_SATD_H
#define TAVU_SIMD_X86_SATD_H

#include "simd/hadamard.h"

namespace tavu {
namespace {

// For areas of any size. Satd4x4Sum<64> takes 8 rows at once, which not every area has.
constexpr int STRIP_BYTES = LANES < 32 ? LANES : 32;
using Satd4x4Strip = Satd4x4Sum<STRIP_BYTES>;
using Satd8x8Strip = Satd8x8Sum<STRIP_BYTES>;

#if TAVU_LEVEL == 2

TAVU_VEC_INLINE int32_t vec_satd4x4(const BlockPair &at) { return satd4x4_of_rows(at); }

#else

// As zip(), for the halves of each 16 bytes.
template <class R>
TAVU_VEC_INLINE void zip_halves(R &a, R &b) {
    const R low = unpacklo_epi64(a, b);
    b = unpackhi_epi64(a, b);
    a = low;
}

// Sums and differences of neighbouring columns of two rows of 4.
TAVU_VEC_INLINE __m128i load_row_butterflies(const uint8_t *p, ptrdiff_t stride) {
    const __m128i upper = _mm_set1_epi32(load4(p)), lower = _mm_set1_epi32(load4(p + stride));
    return maddubs_epi16(_mm_blend_epi32(upper, lower, 0b1100),
                         constant<__m128i>(BLOCK_CONSTANTS.both_of_four));
}

// The same of a - b.
TAVU_VEC_INLINE __m128i load_next_row_butterflies(BlockPair &at) {
    const __m128i a = load_row_butterflies(at.a, at.stride_a);
    const __m128i b = load_row_butterflies(at.b, at.stride_b);
    at = at.tile(0, 2);
    return sub_epi16(a, b);
}

TAVU_VEC_INLINE int32_t vec_satd4x4(BlockPair at) {
    __m128i v[2];
    v[0] = load_next_row_butterflies(at);
    v[1] = load_next_row_butterflies(at);
    butterfly(v[0], v[1]);
    zip_halves(v[0], v[1]);
    butterfly_abs(v[0], v[1]);
    MagnitudeSum<16> sum = MagnitudeSum<16>::zero();
    sum.add_pairs(v);
    return sum.total();
}

#endif

#if TAVU_LEVEL == 2

TAVU_VEC_INLINE int32_t vec_satd8x8(const BlockPair &at) { return satd8x8_of_rows(at); }

#elif TAVU_LEVEL == 3

// a - b of 8 columns of this row and of the row 4 rows below.
TAVU_VEC_INLINE __m256i load_next_stacked_difference(BlockPair &at) {
    const __m256i a = _mm256_cvtepu8_epi16(load8_twice(at.a, 4 * at.stride_a));
    const __m256i b = _mm256_cvtepu8_epi16(load8_twice(at.b, 4 * at.stride_b));
    at.next_row();
    return sub_epi16(a, b);
}

TAVU_VEC_INLINE __m128i larger_half(__m256i v) {
    return larger(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
}

TAVU_VEC_INLINE int32_t vec_satd8x8(BlockPair at) {
    __m256i v[4];
#pragma GCC unroll 4
    for (__m256i &row : v) row = load_next_stacked_difference(at);
    transform_rows(v);
    RoundedSum<16> sum;
    sum.add(add(larger_half(v[0]), larger_half(v[2])), add(larger_half(v[1]), larger_half(v[3])));
    return sum.total();
}

#else

// A block of 8x8.
TAVU_VEC_INLINE __m512i load_block(const uint8_t *p, ptrdiff_t stride) {
    const __m256i upper = load_next_rows<32, 8>(p, stride),
                  lower = load_next_rows<32, 8>(p, stride);
    return _mm512_inserti64x4(_mm512_castsi256_si512(upper), lower, 1);
}

// As zip(), for a bit of the row number; rows are 16 bytes each.
TAVU_VEC_INLINE void zip_rows(__m512i &a, __m512i &b) {
    const __m512i even = _mm512_shuffle_i64x2(a, b, 0x88);
    b = _mm512_shuffle_i64x2(a, b, 0xDD);
    a = even;
}

TAVU_VEC_INLINE __m256i add_halves(__m512i v) {
    return add_epi16(_mm512_castsi512_si256(v), _mm512_extracti64x4_epi64(v, 1));
}

// The total of twice the sums of neighbouring lanes; twice a sum wraps in 16 signed bits.
TAVU_VEC_INLINE int32_t sum_doubled_pairs(__m256i v) {
    const __m256i pairs = add_epi16(v, _mm256_slli_epi32(v, 16));
    return sum_lanes(fold(srai_epi32<16>(add_epi16(pairs, pairs))));
}

// The whole block is in two registers. The halves of the third stage leave one bit of the row number in
// neighbouring lanes, which are added; the last two stages are those of its other bits.
TAVU_VEC_INLINE int32_t vec_satd8x8(const BlockPair &at) {
    __m512i p, q;
    const __m512i a = load_block(at.a, at.stride_a);
    butterfly_difference(a, load_block(at.b, at.stride_b), &p, &q);
    zip(p, q);
    butterfly(p, q);
    zip(p, q);
    butterfly(p, q);
    zip_halves(p, q);
    butterfly(p, q);
    zip_rows(p, q);
    butterfly_abs(p, q);
    zip_rows(p, q);
    return (sum_doubled_pairs(add_halves(larger(p, q))) + 2) >> 2;
}

#endif

constexpr bool SPLIT_PICTURES = true;

}  // namespace
}  // namespace tavu

#endif
