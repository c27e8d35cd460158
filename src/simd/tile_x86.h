// Operations on blocks for x86-64: v2 (SSE4.1), v3 (AVX2) and v4 (AVX-512). They are told in tile.h.
#ifndef TAVU_SIMD_TILE_X86_H
#define TAVU_SIMD_TILE_X86_H

#include <cstddef>
#include <cstring>

#include "simd/isa_x86.h"

namespace tavu {

// Defined in a file of its own, so that they are read from memory: compilers would rather move such
// constants through general registers, which takes longer than a whole block of 4x4.
struct TileConstants {
    alignas(64) int8_t sums[64];         // 1, 1: weights of even and odd bytes
    alignas(64) int8_t differences[64];  // 1, -1
    alignas(64) int8_t both[64];         // sums in even 16 bytes, differences in odd ones
    alignas(64) int16_t ones[32];
    alignas(64) int32_t even_ones[16];  // 1 in the even lanes of 16 bits
    alignas(64) int32_t twos[16];
};
// Hidden, so that they are read without a detour through the table of addresses.
extern const TileConstants TILE_CONSTANTS __attribute__((visibility("hidden")));

namespace {

template <int N>
TAVU_VEC_INLINE Bytes<N> load(const uint8_t *p) {
    Bytes<N> v;
    memcpy(&v, p, sizeof v);
    return v;
}

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
TAVU_VEC_INLINE Bytes<N> load_rows(const uint8_t *&p, ptrdiff_t stride) {
    const uint8_t *const at = p;
    p += N / W * stride;
#if defined(__AVX2__)
    if constexpr (N == 32 && W < N) {
        const uint8_t *below = at;
        const __m128i low = load_rows<16, W>(below, stride);
        const __m128i high = load_rows<16, W>(below, stride);
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
TAVU_VEC_INLINE Bytes<N> load_next(const uint8_t *&p) {
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
#if defined(__AVX2__)
TAVU_VEC_INLINE __m128i fold(__m256i v) {
    return _mm_add_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
}
#endif
#if defined(__AVX512BW__)
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

    TAVU_VEC_INLINE void add(Bytes<N> a, Bytes<N> b) {
        sum_ = Isa<N>::add_epi32(sum_, Isa<N>::sad_epu8(a, b));
    }
    TAVU_VEC_INLINE void add(const AbsSum &other) { sum_ = Isa<N>::add_epi32(sum_, other.sum_); }
    TAVU_VEC_INLINE __m128i pair() const { return fold(sum_); }
    TAVU_VEC_INLINE int32_t total() const { return sum_pair(pair()); }

  private:
    Bytes<N> sum_{};  // in each 16 bytes two 64-bit sums
};

TAVU_VEC_INLINE __m128i join_pairs(__m128i a, __m128i b) {
    return _mm_add_epi32(_mm_unpacklo_epi64(a, b), _mm_unpackhi_epi64(a, b));
}

template <int N>
TAVU_VEC_INLINE void running_totals(const AbsSum<N> (&sums)[4], int32_t *totals) {
    const __m128 low = _mm_castsi128_ps(join_pairs(sums[0].pair(), sums[1].pair()));
    const __m128 high = _mm_castsi128_ps(join_pairs(sums[2].pair(), sums[3].pair()));
    __m128i v = _mm_castps_si128(_mm_shuffle_ps(low, high, 0x88));
    v = _mm_add_epi32(v, _mm_slli_si128(v, 4));
    v = _mm_add_epi32(v, _mm_slli_si128(v, 8));
    store_register(totals, v);
}

template <class R>
TAVU_VEC_INLINE R constant(const void *values) {
    return *static_cast<const R *>(values);
}

template <class R>
TAVU_VEC_INLINE R sum_columns(R v) {
    return Of<R>::maddubs_epi16(v, constant<R>(TILE_CONSTANTS.sums));
}

template <class R>
TAVU_VEC_INLINE R subtract_columns(R v) {
    return Of<R>::maddubs_epi16(v, constant<R>(TILE_CONSTANTS.differences));
}

template <int N>
class SquareSum {
  public:
    static constexpr int WIDTH = N;
    static TAVU_VEC_INLINE SquareSum zero() { return {}; }
    static constexpr int MAX_BYTES = INT32_MAX;

    TAVU_VEC_INLINE void add(Bytes<N> a, Bytes<N> b) {
        const Bytes<N> lo = subtract_columns(Isa<N>::unpacklo_epi8(a, b));
        const Bytes<N> hi = subtract_columns(Isa<N>::unpackhi_epi8(a, b));
        sum_ = Isa<N>::add_epi32(sum_, Isa<N>::madd_epi16(lo, lo));
        sum_ = Isa<N>::add_epi32(sum_, Isa<N>::madd_epi16(hi, hi));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(fold(sum_)); }

  private:
    Bytes<N> sum_{};
};

// N / 2 bytes, zero-extended.
template <int N>
TAVU_VEC_INLINE Words<N> load_wide(const uint8_t *p) {
#if defined(__AVX512BW__)
    if constexpr (N == 64) return _mm512_cvtepu8_epi16(load<32>(p));
#endif
#if defined(__AVX2__)
    if constexpr (N == 32) return _mm256_cvtepu8_epi16(load<16>(p));
#endif
    if constexpr (N == 16) return _mm_cvtepu8_epi16(load8(p));
}

template <int N>
TAVU_VEC_INLINE Words<N> load_difference(const uint8_t *a, const uint8_t *b) {
    return Isa<N>::sub_epi16(load_wide<N>(a), load_wide<N>(b));
}

template <int N>
TAVU_VEC_INLINE void store_difference(const uint8_t *a, const uint8_t *b, int16_t *out) {
    const Words<N> d = load_difference<N>(a, b);
    memcpy(out, &d, sizeof d);
}

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

// As zip(), but of the two halves of each 16 bytes.
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
