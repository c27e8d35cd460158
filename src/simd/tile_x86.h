// Operations on blocks for x86-64: v2 (SSE4.1) and v3 (AVX2). They are told in tile.h.
#ifndef TAVU_SIMD_TILE_X86_H
#define TAVU_SIMD_TILE_X86_H

#include <cstring>

#include "simd/vec_x86.h"

#if defined(__AVX2__)
#define TAVU_MM(op) _mm256_##op
#else
#define TAVU_MM(op) _mm_##op
#endif

namespace tavu {
namespace {

TAVU_VEC_INLINE int32_t load4(const uint8_t *p) {
    int32_t v;
    memcpy(&v, p, 4);
    return v;
}

TAVU_VEC_INLINE __m128i load_low(const uint8_t *p) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p));
}

// 16 / W rows, `stride` apart.
template <int W>
TAVU_VEC_INLINE __m128i load_half(const uint8_t *p, ptrdiff_t stride) {
    if constexpr (W == 16) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
    } else if constexpr (W == 8) {
        return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(load_low(p)),
                                             reinterpret_cast<const __m64 *>(p + stride)));
    } else {
        __m128i rows = _mm_cvtsi32_si128(load4(p));
        rows = _mm_insert_epi32(rows, load4(p + stride), 1);
        rows = _mm_insert_epi32(rows, load4(p + 2 * stride), 2);
        return _mm_insert_epi32(rows, load4(p + 3 * stride), 3);
    }
}

template <int W>
TAVU_VEC_INLINE U8 load_rows(const uint8_t *&p, ptrdiff_t stride) {
    const uint8_t *const at = p;
    p += ROWS<W> * stride;
    if constexpr (W == LANES) return as<U8>(load_register(at));
#if defined(__AVX2__)
    const __m128i low = load_half<W>(at, stride);
    if constexpr (W == 4) return as<U8>(_mm256_zextsi128_si256(low));
    const __m128i high = load_half<W>(at + 16 / W * stride, stride);
    return as<U8>(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1));
#else
    return as<U8>(load_half<W>(at, stride));
#endif
}

template <int W>
TAVU_VEC_INLINE U8 load_start(const uint8_t *p) {
    __m128i v;
    if constexpr (W == 16) v = load_half<16>(p, 0);
    if constexpr (W == 8) v = load_low(p);
    if constexpr (W == 4) v = _mm_cvtsi32_si128(load4(p));
#if defined(__AVX2__)
    return as<U8>(_mm256_zextsi128_si256(v));
#else
    return as<U8>(v);
#endif
}

TAVU_VEC_INLINE __m128i fold(Register v) {
#if defined(__AVX2__)
    return _mm_add_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
#else
    return v;
#endif
}

TAVU_VEC_INLINE int32_t sum_lanes(__m128i v) {
    v = _mm_add_epi32(v, _mm_unpackhi_epi64(v, v));
    return _mm_cvtsi128_si32(_mm_add_epi32(v, _mm_shuffle_epi32(v, 1)));
}

class AbsSum {
  public:
    static TAVU_VEC_INLINE AbsSum zero() { return {}; }
    static constexpr int MAX_BYTES = INT32_MAX;

    TAVU_VEC_INLINE void add(U8 a, U8 b) {
        sum_ = TAVU_MM(add_epi32)(sum_, TAVU_MM(sad_epu8)(as<Register>(a), as<Register>(b)));
    }
    TAVU_VEC_INLINE __m128i pair() const { return fold(sum_); }
    TAVU_VEC_INLINE int32_t total() const {
        const __m128i halves = pair();
        return _mm_cvtsi128_si32(_mm_add_epi32(halves, _mm_unpackhi_epi64(halves, halves)));
    }

  private:
    Register sum_{};  // in each half of 16 bytes two 64-bit sums
};

TAVU_VEC_INLINE __m128i join_pairs(__m128i a, __m128i b) {
    return _mm_add_epi32(_mm_unpacklo_epi64(a, b), _mm_unpackhi_epi64(a, b));
}

TAVU_VEC_INLINE void running_totals(const AbsSum (&sums)[4], int32_t *totals) {
    const __m128 low = _mm_castsi128_ps(join_pairs(sums[0].pair(), sums[1].pair()));
    const __m128 high = _mm_castsi128_ps(join_pairs(sums[2].pair(), sums[3].pair()));
    __m128i v = _mm_castps_si128(_mm_shuffle_ps(low, high, 0x88));
    v = _mm_add_epi32(v, _mm_slli_si128(v, 4));
    v = _mm_add_epi32(v, _mm_slli_si128(v, 8));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(totals), v);
}

// Squares of absolute differences, in pairs.
class SquareSum {
  public:
    static TAVU_VEC_INLINE SquareSum zero() { return {}; }
    static constexpr int MAX_BYTES = INT32_MAX;

    TAVU_VEC_INLINE void add(U8 a, U8 b) {
        sum_ = TAVU_MM(add_epi32)(sum_, squares(as<Register>(a), as<Register>(b)));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(fold(sum_)); }

  private:
    static TAVU_VEC_INLINE Register squares(Register a, Register b) {
        const Register zero{};
        const Register d = TAVU_MM(subs_epu8)(a, b) | TAVU_MM(subs_epu8)(b, a);
        const Register lo = TAVU_MM(unpacklo_epi8)(d, zero), hi = TAVU_MM(unpackhi_epi8)(d, zero);
        return TAVU_MM(add_epi32)(TAVU_MM(madd_epi16)(lo, lo), TAVU_MM(madd_epi16)(hi, hi));
    }

    Register sum_{};
};

// LANES / 2 bytes, zero-extended.
TAVU_VEC_INLINE I16 load_wide(const uint8_t *p) {
#if defined(__AVX2__)
    return as<I16>(_mm256_cvtepu8_epi16(load_half<16>(p, 0)));
#else
    return as<I16>(_mm_cvtepu8_epi16(load_low(p)));
#endif
}

template <int N>
TAVU_VEC_INLINE void store_difference(const uint8_t *a, const uint8_t *b, int16_t *out) {
    if constexpr (N == LANES / 2) {
        const I16 d = load_wide(a) - load_wide(b);
        memcpy(out, &d, sizeof d);
    } else {
        const __m128i d =
            _mm_sub_epi16(_mm_cvtepu8_epi16(load_low(a)), _mm_cvtepu8_epi16(load_low(b)));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), d);
    }
}

TAVU_VEC_INLINE I16 load_difference(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                    ptrdiff_t stride_b) {
    const I16 d = load_wide(a) - load_wide(b);
    a += stride_a;
    b += stride_b;
    return d;
}

constexpr int STACKED_REGISTERS = 128 / LANES;

TAVU_VEC_INLINE I16 load_stacked(const uint8_t *p, ptrdiff_t stride) {
#if defined(__AVX2__)
    return as<I16>(_mm256_cvtepu8_epi16(load_half<8>(p, 4 * stride)));
#else
    (void)stride;
    return load_wide(p);
#endif
}

TAVU_VEC_INLINE I16 load_stacked_difference(const uint8_t *&a, ptrdiff_t stride_a,
                                            const uint8_t *&b, ptrdiff_t stride_b) {
    const I16 d = load_stacked(a, stride_a) - load_stacked(b, stride_b);
    a += stride_a;
    b += stride_b;
    return d;
}

TAVU_VEC_INLINE void zip(I16 &a, I16 &b) {
    const Register ra = as<Register>(a), rb = as<Register>(b);
    a = as<I16>(TAVU_MM(unpacklo_epi16)(ra, rb));
    b = as<I16>(TAVU_MM(unpackhi_epi16)(ra, rb));
}

// Sums of pairs of bytes with these weights.
TAVU_VEC_INLINE I16 weigh_pairs(U8 v, int8_t even, int8_t odd) {
    const auto weights = static_cast<int16_t>((even & 0xFF) | odd * 256);
    return as<I16>(TAVU_MM(maddubs_epi16)(as<Register>(v), as<Register>(I16{} + weights)));
}

TAVU_VEC_INLINE void butterfly_difference(U8 a, U8 b, I16 *p, I16 *q) {
    *p = weigh_pairs(a, 1, 1) - weigh_pairs(b, 1, 1);
    *q = weigh_pairs(a, 1, -1) - weigh_pairs(b, 1, -1);
}

#if defined(__AVX2__)

// Sums in the first half, differences in the second.
constexpr int COLUMN_REGISTERS = 1;

TAVU_VEC_INLINE I16 load_butterfly(const uint8_t *p) {
    const Register weights = _mm256_setr_m128i(_mm_set1_epi8(1), _mm_set1_epi16(1 - 256));
    return as<I16>(_mm256_maddubs_epi16(_mm256_broadcastsi128_si256(load_half<16>(p, 0)), weights));
}

#else

constexpr int COLUMN_REGISTERS = 2;

#endif

TAVU_VEC_INLINE void load_butterflies(const uint8_t *&a, ptrdiff_t stride_a, const uint8_t *&b,
                                      ptrdiff_t stride_b, I16 *v) {
#if defined(__AVX2__)
    v[0] = load_butterfly(a) - load_butterfly(b);
#else
    butterfly_difference(as<U8>(load_register(a)), as<U8>(load_register(b)), &v[0], &v[1]);
#endif
    a += stride_a;
    b += stride_b;
}

TAVU_VEC_INLINE Register magnitude(I16 v) { return TAVU_MM(abs_epi16)(as<Register>(v)); }

TAVU_VEC_INLINE I16 abs_max(I16 a, I16 b) {
    return as<I16>(TAVU_MM(max_epi16)(magnitude(a), magnitude(b)));
}

#if defined(__AVX2__)
// The same of both halves of a register.
TAVU_VEC_INLINE I16 abs_max_of_halves(I16 v) {
    const Register m = magnitude(v);
    return as<I16>(_mm256_max_epi16(m, _mm256_permute4x64_epi64(m, 0x4E)));
}
#endif

TAVU_VEC_INLINE Register sum_pairs(I16 v) {
    return TAVU_MM(madd_epi16)(as<Register>(v), as<Register>(I16{} + 1));
}

class MagnitudeSum {
  public:
    static TAVU_VEC_INLINE MagnitudeSum zero() { return {}; }
    TAVU_VEC_INLINE void add(I16 v) { sum_ = TAVU_MM(add_epi32)(sum_, sum_pairs(v)); }
    // The maxima gather in the even lanes, of which alone the sum is taken.
    template <int N>
    TAVU_VEC_INLINE void add_pairs(const I16 (&v)[N]) {
        Register maxima{};
#pragma GCC unroll 8
        for (int i = 0; i < N; i++) {
            const Register m = magnitude(v[i]);
            const Register pair = TAVU_MM(max_epi16)(m, TAVU_MM(srli_epi32)(m, 16));
            maxima = i == 0 ? pair : TAVU_MM(add_epi16)(maxima, pair);
        }
        sum_ = TAVU_MM(add_epi32)(sum_, TAVU_MM(madd_epi16)(maxima, TAVU_MM(set1_epi32)(1)));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_lanes(fold(sum_)); }

  private:
    Register sum_{};
};

// Adds (s + 2) >> 2 for each transform, where s sums 2 m over its eight horizontal frequencies: m is
// the sum of two lanes, v[i] and v[i + 4] of `a` and of `b`, and 2 m wraps in 16 signed bits. A v3
// register holds two transforms.
class RoundedSum {
  public:
    static TAVU_VEC_INLINE RoundedSum zero() { return {}; }
    TAVU_VEC_INLINE void add(I16 a, I16 b) {
        const Register ra = as<Register>(a), rb = as<Register>(b);
        const U16 m =
            as<U16>(TAVU_MM(unpacklo_epi64)(ra, rb)) + as<U16>(TAVU_MM(unpackhi_epi64)(ra, rb));
        Register s = sum_pairs(as<I16>(m + m));
        s = TAVU_MM(add_epi32)(s, TAVU_MM(shuffle_epi32)(s, 0x4E));
        s = TAVU_MM(add_epi32)(s, TAVU_MM(shuffle_epi32)(s, 0xB1));
        s = TAVU_MM(add_epi32)(s, TAVU_MM(set1_epi32)(2));
        sum_ = TAVU_MM(add_epi32)(sum_, TAVU_MM(srai_epi32)(s, 2));
    }
    TAVU_VEC_INLINE int32_t total() const { return _mm_cvtsi128_si32(fold(sum_)); }
    // Of one transform, whose rows are stacked.
    TAVU_VEC_INLINE int32_t total_of_stacked() const {
#if defined(__AVX2__)
        return _mm_cvtsi128_si32(_mm256_castsi256_si128(sum_));
#else
        return total();
#endif
    }

  private:
    Register sum_{};
};

#undef TAVU_MM

}  // namespace
}  // namespace tavu

#endif
