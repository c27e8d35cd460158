// The vector layer on x86-64: v2 (SSE4.1) and v3 (AVX2). The operations are told in vec.h.
//
// A v3 register is two halves of 16 bytes that most instructions treat alike and apart. The layer
// keeps to that: only store_interleaved() crosses halves.
#ifndef TAVU_SIMD_VEC_X86_H
#define TAVU_SIMD_VEC_X86_H

#include <immintrin.h>

namespace tavu {
namespace {

#if defined(__AVX2__)
constexpr int LANES = 32;
using Register = __m256i;
#define TAVU_MM(op) _mm256_##op
#else
constexpr int LANES = 16;
using Register = __m128i;
#define TAVU_MM(op) _mm_##op
#endif

using U8 = uint8_t __attribute__((vector_size(LANES)));
using I16 = int16_t __attribute__((vector_size(LANES)));
struct Wide {
    I16 lo, hi;
};

template <class To, class From>
TAVU_VEC_INLINE To as(From v) {
    return reinterpret_cast<To>(v);
}

#if defined(__AVX2__)
TAVU_VEC_INLINE Register load_register(const uint8_t *p) {
    return _mm256_loadu_si256(reinterpret_cast<const Register *>(p));
}
TAVU_VEC_INLINE void store_register(uint8_t *p, Register v) {
    _mm256_storeu_si256(reinterpret_cast<Register *>(p), v);
}
#else
TAVU_VEC_INLINE Register load_register(const uint8_t *p) {
    return _mm_loadu_si128(reinterpret_cast<const Register *>(p));
}
TAVU_VEC_INLINE void store_register(uint8_t *p, Register v) {
    _mm_storeu_si128(reinterpret_cast<Register *>(p), v);
}
#endif

TAVU_VEC_INLINE U8 load(const uint8_t *&p) {
    const U8 v = as<U8>(load_register(p));
    p += LANES;
    return v;
}

TAVU_VEC_INLINE U8 splat(uint8_t x) { return U8{} + x; }

TAVU_VEC_INLINE Wide widen(U8 v) {
    const Register zero{}, r = as<Register>(v);
    return {as<I16>(TAVU_MM(unpacklo_epi8)(r, zero)), as<I16>(TAVU_MM(unpackhi_epi8)(r, zero))};
}

TAVU_VEC_INLINE Wide widen_minus(U8 v, uint8_t x) {
    const Wide w = widen(v);
    return {w.lo - x, w.hi - x};
}

TAVU_VEC_INLINE U8 narrow(Wide w) {
    return as<U8>(TAVU_MM(packus_epi16)(as<Register>(w.lo), as<Register>(w.hi)));
}

TAVU_VEC_INLINE I16 multiply_round15(I16 a, int16_t k) {
    return as<I16>(TAVU_MM(mulhrs_epi16)(as<Register>(a), as<Register>(I16{} + k)));
}

TAVU_VEC_INLINE I16 round_shift8(I16 a) { return (a + 128) >> 8; }

TAVU_VEC_INLINE void store_interleaved(uint8_t *&p, U8 a, U8 b) {
    const Register ra = as<Register>(a), rb = as<Register>(b);
    const Register v0 = TAVU_MM(unpacklo_epi8)(ra, rb), v1 = TAVU_MM(unpackhi_epi8)(ra, rb);
#if defined(__AVX2__)
    store_register(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store_register(p + 32, _mm256_permute2x128_si256(v0, v1, 0x31));
#else
    store_register(p, v0);
    store_register(p + 16, v1);
#endif
    p += 2 * LANES;
}

// Of 16 pixels of 3 bytes, byte j of output register k holds channel (j + k) % 3 of pixel
// (16 k + j) / 3: each position takes each channel once, so one shuffle a channel serves all three.
struct Shuffle {
    alignas(32) uint8_t bytes[32];
};

constexpr Shuffle interleave3_shuffle(int channel) {
    Shuffle s{};
    for (int j = 0; j < 32; j++) {
        const int k = (channel + 48 - j % 16) % 3;
        s.bytes[j] = static_cast<uint8_t>((16 * k + j % 16) / 3);
    }
    return s;
}

constexpr Shuffle interleave3_mask(int remainder) {
    Shuffle s{};
    for (int j = 0; j < 32; j++) s.bytes[j] = j % 16 % 3 == remainder ? 0xFF : 0;
    return s;
}

alignas(32) constexpr Shuffle INTERLEAVE3[3] = {interleave3_shuffle(0), interleave3_shuffle(1),
                                                interleave3_shuffle(2)};
constexpr Shuffle EVERY_THIRD_1 = interleave3_mask(1), EVERY_THIRD_2 = interleave3_mask(2);

TAVU_VEC_INLINE Register shuffle(U8 v, const Shuffle &s) {
    return TAVU_MM(shuffle_epi8)(as<Register>(v), load_register(s.bytes));
}

// The lanes of x, y and z at positions whose remainder by 3 is 0, 1 and 2.
TAVU_VEC_INLINE Register every_third(Register x, Register y, Register z) {
    x = TAVU_MM(blendv_epi8)(x, y, load_register(EVERY_THIRD_1.bytes));
    return TAVU_MM(blendv_epi8)(x, z, load_register(EVERY_THIRD_2.bytes));
}

TAVU_VEC_INLINE void store_interleaved(uint8_t *&p, U8 a, U8 b, U8 c) {
    const Register x = shuffle(a, INTERLEAVE3[0]), y = shuffle(b, INTERLEAVE3[1]),
                   z = shuffle(c, INTERLEAVE3[2]);
    const Register v0 = every_third(x, y, z), v1 = every_third(y, z, x), v2 = every_third(z, x, y);
#if defined(__AVX2__)
    store_register(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store_register(p + 32, _mm256_blend_epi32(v2, v0, 0xF0));
    store_register(p + 64, _mm256_permute2x128_si256(v1, v2, 0x31));
#else
    store_register(p, v0);
    store_register(p + 16, v1);
    store_register(p + 32, v2);
#endif
    p += 3 * LANES;
}

TAVU_VEC_INLINE void store_interleaved(uint8_t *&p, U8 a, U8 b, U8 c, U8 d) {
    const Register ra = as<Register>(a), rb = as<Register>(b), rc = as<Register>(c),
                   rd = as<Register>(d);
    const Register ab0 = TAVU_MM(unpacklo_epi8)(ra, rb), ab1 = TAVU_MM(unpackhi_epi8)(ra, rb);
    const Register cd0 = TAVU_MM(unpacklo_epi8)(rc, rd), cd1 = TAVU_MM(unpackhi_epi8)(rc, rd);
    const Register v0 = TAVU_MM(unpacklo_epi16)(ab0, cd0), v1 = TAVU_MM(unpackhi_epi16)(ab0, cd0);
    const Register v2 = TAVU_MM(unpacklo_epi16)(ab1, cd1), v3 = TAVU_MM(unpackhi_epi16)(ab1, cd1);
#if defined(__AVX2__)
    store_register(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store_register(p + 32, _mm256_permute2x128_si256(v2, v3, 0x20));
    store_register(p + 64, _mm256_permute2x128_si256(v0, v1, 0x31));
    store_register(p + 96, _mm256_permute2x128_si256(v2, v3, 0x31));
#else
    store_register(p, v0);
    store_register(p + 16, v1);
    store_register(p + 32, v2);
    store_register(p + 48, v3);
#endif
    p += 4 * LANES;
}

#undef TAVU_MM

}  // namespace
}  // namespace tavu

#endif
