// The vector layer on x86-64: v2 (SSE4.1), v3 (AVX2) and v4 (AVX-512 with VBMI). vec.h documents the
// operations.
//
// A register of v3 or v4 is two or four parts of 16 bytes that most instructions treat alike and apart.
// The layer keeps to that: only the interleaving loads and stores cross parts.
#ifndef TAVU_SIMD_X86_VEC_H
#define TAVU_SIMD_X86_VEC_H

#include <cstdint>

#include "simd/x86/isa.h"

namespace tavu {
namespace {

constexpr int LANES = 8 << (TAVU_LEVEL - 1);
using Reg = Register<LANES>;

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

TAVU_VEC_INLINE U8 load_next(const uint8_t *&p) {
    const U8 v = as<U8>(load<LANES>(p));
    p += LANES;
    return v;
}

TAVU_VEC_INLINE void store_next(uint8_t *&p, U8 v) {
    store(p, as<Reg>(v));
    p += LANES;
}

TAVU_VEC_INLINE U8 splat(uint8_t x) { return U8{} + x; }

TAVU_VEC_INLINE U8 pick(U8 choice, U8 a, U8 b) { return choice ? a : b; }

template <class Use>
TAVU_VEC_INLINE void choose(bool first, Use use) {
    use(splat(first ? 0xFF : 0));
}

TAVU_VEC_INLINE Wide widen(U8 v) {
    const Reg zero{}, r = as<Reg>(v);
    return {as<I16>(unpacklo_epi8(r, zero)), as<I16>(unpackhi_epi8(r, zero))};
}

TAVU_VEC_INLINE U8 narrow(Wide w) { return as<U8>(packus_epi16(as<Reg>(w.lo), as<Reg>(w.hi))); }

// Weighted sums of pairs of bytes; the second byte of a pair is the upper half of a 16-bit lane.
TAVU_VEC_INLINE I16 weigh_pairs(Reg pairs, int first, int second) {
    const auto weights = static_cast<int16_t>((first & 0xFF) | second * 256);
    return as<I16>(maddubs_epi16(pairs, as<Reg>(I16{} + weights)));
}

// `r` and `b` times 256 in each lane. The weight of G in Y is split, so that no sum of a pair exceeds
// 128 * 255; the rounding high multiply is (x + 128) >> 8 without wrapping.
TAVU_VEC_INLINE void yuv_lanes(Reg rg, Reg bg, Reg r, Reg b, I16 *y, I16 *u, I16 *v) {
    const Reg half = as<Reg>(I16{} + 128);
    const U16 luma = as<U16>(weigh_pairs(rg, 77, 51)) + as<U16>(weigh_pairs(bg, 29, 99)) + 128;
    const I16 blue = weigh_pairs(rg, -43, -85) + as<I16>(as<U16>(b) >> 1);
    const I16 red = weigh_pairs(bg, -21, -107) + as<I16>(as<U16>(r) >> 1);
    *y = as<I16>(luma >> 8);
    *u = as<I16>(mulhrs_epi16(as<Reg>(blue), half));
    *v = as<I16>(mulhrs_epi16(as<Reg>(red), half));
}

TAVU_VEC_INLINE U8 chroma_bytes(Wide w) {
    return as<U8>(packs_epi16(as<Reg>(w.lo), as<Reg>(w.hi))) ^ 0x80;
}

TAVU_VEC_INLINE void rgb_to_yuv(U8 r8, U8 g8, U8 b8, U8 *y8, U8 *u8, U8 *v8) {
    const Reg zero{}, r = as<Reg>(r8), g = as<Reg>(g8), b = as<Reg>(b8);
    Wide y, u, v;
    yuv_lanes(unpacklo_epi8(r, g), unpacklo_epi8(b, g), unpacklo_epi8(zero, r),
              unpacklo_epi8(zero, b), &y.lo, &u.lo, &v.lo);
    yuv_lanes(unpackhi_epi8(r, g), unpackhi_epi8(b, g), unpackhi_epi8(zero, r),
              unpackhi_epi8(zero, b), &y.hi, &u.hi, &v.hi);
    *y8 = narrow(y);
    *u8 = chroma_bytes(u);
    *v8 = chroma_bytes(v);
}

struct ChromaTerms {
    Wide r, g, b;
};

// The arguments are chroma less 128, in the upper bytes, and pairs (u, -v - 1) of signed bytes. The
// rounding high multiply is (a * k + 2^14) >> 15 without wrapping: 128 v * 359, 256 u * 227. Since
// 183 = 256 - 73, only 73 v is multiplied, which keeps the sum within 16 bits:
// 88 u - 73 v = 88 u + 73 (-v - 1) + 73, at most 161 * 128.
TAVU_VEC_INLINE void chroma_lanes(Reg u, Reg v, Reg pairs, I16 *r, I16 *g, I16 *b) {
    const Reg weights = as<Reg>(I16{} + (88 | 73 << 8));
    const I16 scaled = as<I16>(maddubs_epi16(weights, pairs));
    const Reg half_v = srai_epi16<1>(v);
    *r = as<I16>(mulhrs_epi16(half_v, as<Reg>(I16{} + 359)));
    *g = (as<I16>(v) >> 8) + ((scaled + (73 + 128)) >> 8);
    *b = as<I16>(mulhrs_epi16(u, as<Reg>(I16{} + 227)));
}

TAVU_VEC_INLINE ChromaTerms chroma_terms(U8 u8, U8 v8) {
    const Reg zero{}, u = as<Reg>(u8 ^ 0x80), v = as<Reg>(v8 ^ 0x80), not_v = as<Reg>(v8 ^ 0x7F);
    ChromaTerms t;
    chroma_lanes(unpacklo_epi8(zero, u), unpacklo_epi8(zero, v), unpacklo_epi8(u, not_v), &t.r.lo,
                 &t.g.lo, &t.b.lo);
    chroma_lanes(unpackhi_epi8(zero, u), unpackhi_epi8(zero, v), unpackhi_epi8(u, not_v), &t.r.hi,
                 &t.g.hi, &t.b.hi);
    return t;
}

}  // namespace
}  // namespace tavu

#endif
