// Operations on blocks for x86-64: v2 (SSE4.1), v3 (AVX2) and v4 (AVX-512). block.h documents them.
#ifndef TAVU_SIMD_X86_BLOCK_H
#define TAVU_SIMD_X86_BLOCK_H

#include <cstddef>

#include "simd/x86/vec.h"

namespace tavu {

// Defined in a file of its own, so that they are read from memory. Compilers would otherwise move such
// constants through general registers, which takes longer than a whole block of 4x4.
struct BlockConstants {
    alignas(64) int8_t sums[64];          // 1, 1: weights of even and odd bytes
    alignas(64) int8_t differences[64];   // 1, -1
    alignas(64) int8_t both[64];          // sums in even 16 bytes, differences in odd ones
    alignas(16) int8_t both_of_four[16];  // the same by 4 bytes
    alignas(64) int16_t ones[32];
    alignas(64) int32_t even_ones[16];  // 1 in the even lanes of 16 bits
    alignas(64) int32_t twos[16];
};
// Hidden, so that they are read without a detour through the table of addresses.
extern const BlockConstants BLOCK_CONSTANTS __attribute__((visibility("hidden")));

namespace {

template <int N>
using VecU8 = Register<N>;
template <int N>
using VecI16 = Register<N>;

TAVU_VEC_INLINE int32_t load4(const uint8_t *p) {
    int32_t v;
    memcpy(&v, p, 4);
    return v;
}

TAVU_VEC_INLINE __m128i load8(const uint8_t *p) { return _mm_loadu_si64(p); }

// Two rows of 8 bytes.
TAVU_VEC_INLINE __m128i load8_twice(const uint8_t *p, ptrdiff_t stride) {
    const void *below = p + stride;
    return _mm_castps_si128(
        _mm_loadh_pi(_mm_castsi128_ps(load8(p)), static_cast<const __m64 *>(below)));
}

template <int N, int W>
TAVU_VEC_INLINE VecU8<N> load_next_rows(const uint8_t *&p, ptrdiff_t stride) {
    const uint8_t *const at = p;
    p += N / W * stride;
#if TAVU_LEVEL >= 3
    if constexpr (N == 32 && W < N) {
        const uint8_t *below = at;
        const __m128i low = load_next_rows<16, W>(below, stride);
        const __m128i high = load_next_rows<16, W>(below, stride);
        return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
    }
#endif
    if constexpr (W == N) return load<N>(at);
    if constexpr (N == 16 && W == 8) return load8_twice(at, stride);
    if constexpr (N == 16 && W == 4) {
        __m128i rows = _mm_cvtsi32_si128(load4(at));
        rows = _mm_insert_epi32(rows, load4(at + stride), 1);
        rows = _mm_insert_epi32(rows, load4(at + 2 * stride), 2);
        return _mm_insert_epi32(rows, load4(at + 3 * stride), 3);
    }
}

template <int N>
TAVU_VEC_INLINE VecU8<N> load_next(const uint8_t *&p) {
    p += N;
    return load<N>(p - N);
}

// Arguments are in registers here.
TAVU_VEC_INLINE void keep_in_memory(int32_t) {}

template <int W>
TAVU_VEC_INLINE __m128i load_start(const uint8_t *p) {
    if constexpr (W == 16) return load<16>(p);
    if constexpr (W == 8) return load8(p);
    return _mm_cvtsi32_si128(load4(p));
}

// The 32-bit lanes of each 16 bytes, added.
TAVU_VEC_INLINE __m128i fold(__m128i v) { return v; }
#if TAVU_LEVEL >= 3
TAVU_VEC_INLINE __m128i fold(__m256i v) {
    return _mm_add_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
}
#endif
#if TAVU_LEVEL == 4
TAVU_VEC_INLINE __m128i fold(__m512i v) {
    return fold(_mm256_add_epi32(_mm512_castsi512_si256(v), _mm512_extracti64x4_epi64(v, 1)));
}
#endif

TAVU_VEC_INLINE int32_t sum_pair(__m128i v) {
    return _mm_cvtsi128_si32(_mm_add_epi32(v, _mm_unpackhi_epi64(v, v)));
}

TAVU_VEC_INLINE int32_t sum_lanes(__m128i v) {
    return sum_pair(_mm_add_epi32(v, _mm_shuffle_epi32(v, 0xB1)));
}

template <int N>
class AbsSum {
  public:
    static constexpr int WIDTH = N;
    static TAVU_VEC_INLINE AbsSum zero() { return {}; }
    static constexpr int MAX_BYTES = INT32_MAX;

    TAVU_VEC_INLINE void add(VecU8<N> a, VecU8<N> b) { sum_ = add_epi32(sum_, sad_epu8(a, b)); }
    TAVU_VEC_INLINE int32_t total() const { return sum_pair(fold(sum_)); }

  private:
    VecU8<N> sum_{};  // in each 16 bytes two 64-bit sums
};

template <class R>
TAVU_VEC_INLINE R constant(const void *values) {
    return *static_cast<const R *>(values);
}

template <class R>
TAVU_VEC_INLINE R sum_columns(R v) {
    return maddubs_epi16(v, constant<R>(BLOCK_CONSTANTS.sums));
}

template <class R>
TAVU_VEC_INLINE R subtract_columns(R v) {
    return maddubs_epi16(v, constant<R>(BLOCK_CONSTANTS.differences));
}

template <int N>
class SquareSum {
  public:
    static constexpr int WIDTH = N;
    static TAVU_VEC_INLINE SquareSum zero() { return {}; }
    static constexpr int MAX_BYTES = INT32_MAX;

    TAVU_VEC_INLINE void add(VecU8<N> a, VecU8<N> b) {
        const VecU8<N> lo = subtract_columns(unpacklo_epi8(a, b));
        const VecU8<N> hi = subtract_columns(unpackhi_epi8(a, b));
        sum_ = add_epi32(sum_, madd_epi16(lo, lo));
        sum_ = add_epi32(sum_, madd_epi16(hi, hi));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(fold(sum_)); }

  private:
    VecU8<N> sum_{};
};

// N / 2 bytes, zero-extended.
template <int N>
TAVU_VEC_INLINE VecI16<N> load_wide(const uint8_t *p) {
#if TAVU_LEVEL == 4
    if constexpr (N == 64) return _mm512_cvtepu8_epi16(load<32>(p));
#endif
#if TAVU_LEVEL >= 3
    if constexpr (N == 32) return _mm256_cvtepu8_epi16(load<16>(p));
#endif
    if constexpr (N == 16) return _mm_cvtepu8_epi16(load8(p));
}

template <int N>
TAVU_VEC_INLINE VecI16<N> load_difference(const uint8_t *a, const uint8_t *b) {
    return sub_epi16(load_wide<N>(a), load_wide<N>(b));
}

template <int N>
TAVU_VEC_INLINE void store_difference(const uint8_t *a, const uint8_t *b, int16_t *out) {
    store(out, load_difference<N>(a, b));
}

template <int N>
TAVU_VEC_INLINE VecI16<N> load_next_difference(const uint8_t *&a, ptrdiff_t stride_a,
                                               const uint8_t *&b, ptrdiff_t stride_b) {
    const VecI16<N> d = load_difference<N>(a, b);
    a += stride_a;
    b += stride_b;
    return d;
}

}  // namespace
}  // namespace tavu

#endif
