// The vector layer on x86-64: v2 (SSE4.1), v3 (AVX2) and v4 (AVX-512 with VBMI). The operations are
// told in vec.h.
//
// A register of v3 or v4 is two or four parts of 16 bytes that most instructions treat alike and apart.
// The layer keeps to that: only the interleaving loads and stores cross parts.
#ifndef TAVU_SIMD_X86_VEC_H
#define TAVU_SIMD_X86_VEC_H

#include <immintrin.h>

#include <cstring>

namespace tavu {
namespace {

#if defined(__AVX512VBMI__)
constexpr int LANES = 64;
using Register = __m512i;
#define TAVU_MM(op) _mm512_##op
#elif defined(__AVX2__)
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
using U16 = uint16_t __attribute__((vector_size(LANES)));
struct Wide {
    I16 lo, hi;
};
struct UWide {
    U16 lo, hi;
};

template <class To, class From>
TAVU_VEC_INLINE To as(From v) {
    return reinterpret_cast<To>(v);
}

// Registers from and to memory of any alignment.
template <class R = Register>
TAVU_VEC_INLINE R load_register(const void *p) {
    R v;
    memcpy(&v, p, sizeof v);
    return v;
}

template <class R>
TAVU_VEC_INLINE void store_register(void *p, R v) {
    memcpy(p, &v, sizeof v);
}

TAVU_VEC_INLINE U8 load_next(const uint8_t *&p) {
    const U8 v = as<U8>(load_register(p));
    p += LANES;
    return v;
}

TAVU_VEC_INLINE void store_next(uint8_t *&p, U8 v) {
    store_register(p, as<Register>(v));
    p += LANES;
}

TAVU_VEC_INLINE U8 splat(uint8_t x) { return U8{} + x; }

TAVU_VEC_INLINE U8 pick(U8 choice, U8 a, U8 b) { return choice ? a : b; }

template <class Use>
TAVU_VEC_INLINE void choose(bool first, Use use) {
    use(splat(first ? 0xFF : 0));
}

TAVU_VEC_INLINE Wide widen(U8 v) {
    const Register zero{}, r = as<Register>(v);
    return {as<I16>(TAVU_MM(unpacklo_epi8)(r, zero)), as<I16>(TAVU_MM(unpackhi_epi8)(r, zero))};
}

TAVU_VEC_INLINE U8 narrow(Wide w) {
    return as<U8>(TAVU_MM(packus_epi16)(as<Register>(w.lo), as<Register>(w.hi)));
}

// Sums of weighted pairs of bytes, of which the second ones stand in the upper halves of 16 bits.
TAVU_VEC_INLINE I16 weigh_pairs(Register pairs, int first, int second) {
    const auto weights = static_cast<int16_t>((first & 0xFF) | second * 256);
    return as<I16>(TAVU_MM(maddubs_epi16)(pairs, as<Register>(I16{} + weights)));
}

// `r` and `b` times 256 in each lane. The weight of G in Y is split, so that no sum of a pair exceeds
// 128 * 255; the rounding high multiply is (x + 128) >> 8 without wrapping.
TAVU_VEC_INLINE void yuv_lanes(Register rg, Register bg, Register r, Register b, I16 *y, I16 *u,
                               I16 *v) {
    const Register half = as<Register>(I16{} + 128);
    const U16 luma = as<U16>(weigh_pairs(rg, 77, 51)) + as<U16>(weigh_pairs(bg, 29, 99)) + 128;
    const I16 blue = weigh_pairs(rg, -43, -85) + as<I16>(as<U16>(b) >> 1);
    const I16 red = weigh_pairs(bg, -21, -107) + as<I16>(as<U16>(r) >> 1);
    *y = as<I16>(luma >> 8);
    *u = as<I16>(TAVU_MM(mulhrs_epi16)(as<Register>(blue), half));
    *v = as<I16>(TAVU_MM(mulhrs_epi16)(as<Register>(red), half));
}

TAVU_VEC_INLINE U8 chroma_bytes(Wide w) {
    return as<U8>(TAVU_MM(packs_epi16)(as<Register>(w.lo), as<Register>(w.hi))) ^ 0x80;
}

TAVU_VEC_INLINE void rgb_to_yuv(U8 r8, U8 g8, U8 b8, U8 *y8, U8 *u8, U8 *v8) {
    const Register zero{}, r = as<Register>(r8), g = as<Register>(g8), b = as<Register>(b8);
    Wide y, u, v;
    yuv_lanes(TAVU_MM(unpacklo_epi8)(r, g), TAVU_MM(unpacklo_epi8)(b, g),
              TAVU_MM(unpacklo_epi8)(zero, r), TAVU_MM(unpacklo_epi8)(zero, b), &y.lo, &u.lo,
              &v.lo);
    yuv_lanes(TAVU_MM(unpackhi_epi8)(r, g), TAVU_MM(unpackhi_epi8)(b, g),
              TAVU_MM(unpackhi_epi8)(zero, r), TAVU_MM(unpackhi_epi8)(zero, b), &y.hi, &u.hi,
              &v.hi);
    *y8 = narrow(y);
    *u8 = chroma_bytes(u);
    *v8 = chroma_bytes(v);
}

struct ChromaTerms {
    Wide r, g, b;
};

// From chroma less 128 in the upper bytes, and as pairs (u, -v - 1) of signed bytes. The rounding
// high multiply is (a * k + 2^14) >> 15 without wrapping: 128 v * 359, 256 u * 227. Of
// 183 = 256 - 73 only the part below 256 is multiplied, to stay within 16 bits:
// 88 u - 73 v = 88 u + 73 (-v - 1) + 73, at most 161 * 128.
TAVU_VEC_INLINE void chroma_lanes(Register u, Register v, Register pairs, I16 *r, I16 *g, I16 *b) {
    const Register weights = as<Register>(I16{} + (88 | 73 << 8));
    const I16 scaled = as<I16>(TAVU_MM(maddubs_epi16)(weights, pairs));
    const Register half_v = TAVU_MM(srai_epi16)(v, 1);
    *r = as<I16>(TAVU_MM(mulhrs_epi16)(half_v, as<Register>(I16{} + 359)));
    *g = (as<I16>(v) >> 8) + ((scaled + (73 + 128)) >> 8);
    *b = as<I16>(TAVU_MM(mulhrs_epi16)(u, as<Register>(I16{} + 227)));
}

TAVU_VEC_INLINE ChromaTerms chroma_terms(U8 u8, U8 v8) {
    const Register zero{}, u = as<Register>(u8 ^ 0x80), v = as<Register>(v8 ^ 0x80),
                           not_v = as<Register>(v8 ^ 0x7F);
    ChromaTerms t;
    chroma_lanes(TAVU_MM(unpacklo_epi8)(zero, u), TAVU_MM(unpacklo_epi8)(zero, v),
                 TAVU_MM(unpacklo_epi8)(u, not_v), &t.r.lo, &t.g.lo, &t.b.lo);
    chroma_lanes(TAVU_MM(unpackhi_epi8)(zero, u), TAVU_MM(unpackhi_epi8)(zero, v),
                 TAVU_MM(unpackhi_epi8)(u, not_v), &t.r.hi, &t.g.hi, &t.b.hi);
    return t;
}

}  // namespace
}  // namespace tavu

#if defined(__AVX512VBMI__)
#include "simd/x86/interleave_vbmi.h"
#else
#include "simd/x86/interleave.h"
#endif
#undef TAVU_MM

#endif
