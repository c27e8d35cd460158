// The vector layer on NEON, 32-bit and 64-bit. vec.h documents the operations.
#ifndef TAVU_SIMD_ARM_VEC_H
#define TAVU_SIMD_ARM_VEC_H

#include <arm_neon.h>

#include <cstdint>
#include <type_traits>

#include "simd/attributes.h"

namespace tavu {
namespace {

constexpr int LANES = 16;
using U8 = uint8x16_t;
using I16 = int16x8_t;
using U16 = uint16x8_t;
struct Wide {
    I16 lo, hi;
};
struct UWide {
    U16 lo, hi;
};

TAVU_VEC_INLINE U8 splat(uint8_t x) { return vdupq_n_u8(x); }

template <bool First>
TAVU_VEC_INLINE U8 pick(std::bool_constant<First>, U8 a, U8 b) {
    if constexpr (First) return a;
    return b;
}

// A copy of `use` for each choice: blocks are short, and choosing inside them costs a tenth.
template <class Use>
TAVU_VEC_INLINE void choose(bool first, Use use) {
    if (first) return use(std::true_type{});
    use(std::false_type{});
}

TAVU_VEC_INLINE Wide widen(U8 v) {
    return {vreinterpretq_s16_u16(vmovl_u8(vget_low_u8(v))),
            vreinterpretq_s16_u16(vmovl_u8(vget_high_u8(v)))};
}

struct ChromaTerms {
    Wide r, g, b;
};

// The rounding high multiply is (a * k + 2^14) >> 15 without wrapping: 2v * 22976 is 359 v and
// 2u * 29056 is 454 u. Since 183 = 256 - 73, only 73 v is multiplied, which keeps the sum within 16 bits:
// |88 u - 73 v| <= 161 * 128.
TAVU_VEC_INLINE void chroma_lanes(I16 u, I16 v, I16 *r, I16 *g, I16 *b) {
    *r = vqrdmulhq_s16(v + v, vdupq_n_s16(22976));
    *g = v + vrshrq_n_s16(u * 88 - v * 73, 8);
    *b = vqrdmulhq_s16(u + u, vdupq_n_s16(29056));
}

TAVU_VEC_INLINE I16 minus_128(uint8x8_t v) {
    return vreinterpretq_s16_u16(vsubl_u8(v, vdup_n_u8(128)));
}

TAVU_VEC_INLINE ChromaTerms chroma_terms(U8 u, U8 v) {
    ChromaTerms t;
    chroma_lanes(minus_128(vget_low_u8(u)), minus_128(vget_low_u8(v)), &t.r.lo, &t.g.lo, &t.b.lo);
    chroma_lanes(minus_128(vget_high_u8(u)), minus_128(vget_high_u8(v)), &t.r.hi, &t.g.hi, &t.b.hi);
    return t;
}

#if defined(__arm__)

// In assembly, because compilers recompute addresses instead of advancing pointers, join the halves of
// registers by copies, and lay registers out for interleaving through the stack.

TAVU_VEC_INLINE U8 load_next(const uint8_t *&p) {
    U8 v;
    __asm__("vld1.8 {%e0, %f0}, [%1]!"
            : "=w"(v), "+r"(p)
            : "m"(*reinterpret_cast<const uint8_t(*)[LANES]>(p)));
    return v;
}

TAVU_VEC_INLINE U8 narrow(Wide w) {
    U8 v;
    __asm__("vqmovun.s16 %e0, %q1\n\tvqmovun.s16 %f0, %q2" : "=&w"(v) : "w"(w.lo), "w"(w.hi));
    return v;
}

TAVU_VEC_INLINE U8 round_narrow8(UWide w) {
    U8 v;
    __asm__("vqrshrn.u16 %e0, %q1, #8\n\tvqrshrn.u16 %f0, %q2, #8"
            : "=&w"(v)
            : "w"(w.lo), "w"(w.hi));
    return v;
}

TAVU_VEC_INLINE U8 round_narrow8(Wide w) {
    U8 v;
    __asm__("vqrshrn.s16 %e0, %q1, #8\n\tvqrshrn.s16 %f0, %q2, #8"
            : "=&w"(v)
            : "w"(w.lo), "w"(w.hi));
    return v;
}

TAVU_VEC_INLINE void store_next(uint8_t *&p, U8 v) {
    __asm__ volatile("vst1.8 {%e1, %f1}, [%0]!" : "+r"(p) : "w"(v) : "memory");
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c) {
    register U8 q0 __asm__("q0");
    register U8 q1 __asm__("q1");
    register U8 q2 __asm__("q2");
    __asm__("vld3.8 {d0, d2, d4}, [%3]!\n\tvld3.8 {d1, d3, d5}, [%3]!"
            : "=w"(q0), "=w"(q1), "=w"(q2), "+r"(p)
            : "m"(*reinterpret_cast<const uint8_t(*)[3 * LANES]>(p)));
    *a = q0, *b = q1, *c = q2;
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c, U8 *d) {
    register U8 q0 __asm__("q0");
    register U8 q1 __asm__("q1");
    register U8 q2 __asm__("q2");
    register U8 q3 __asm__("q3");
    __asm__("vld4.8 {d0, d2, d4, d6}, [%4]!\n\tvld4.8 {d1, d3, d5, d7}, [%4]!"
            : "=w"(q0), "=w"(q1), "=w"(q2), "=w"(q3), "+r"(p)
            : "m"(*reinterpret_cast<const uint8_t(*)[4 * LANES]>(p)));
    *a = q0, *b = q1, *c = q2, *d = q3;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b) {
    register U8 q0 __asm__("q0") = a;
    register U8 q1 __asm__("q1") = b;
    __asm__ volatile("vst2.8 {d0, d1, d2, d3}, [%0]!" : "+r"(p) : "w"(q0), "w"(q1) : "memory");
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c) {
    register U8 q0 __asm__("q0") = a;
    register U8 q1 __asm__("q1") = b;
    register U8 q2 __asm__("q2") = c;
    __asm__ volatile("vst3.8 {d0, d2, d4}, [%0]!\n\tvst3.8 {d1, d3, d5}, [%0]!"
                     : "+r"(p)
                     : "w"(q0), "w"(q1), "w"(q2)
                     : "memory");
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c, U8 d) {
    register U8 q0 __asm__("q0") = a;
    register U8 q1 __asm__("q1") = b;
    register U8 q2 __asm__("q2") = c;
    register U8 q3 __asm__("q3") = d;
    __asm__ volatile("vst4.8 {d0, d2, d4, d6}, [%0]!\n\tvst4.8 {d1, d3, d5, d7}, [%0]!"
                     : "+r"(p)
                     : "w"(q0), "w"(q1), "w"(q2), "w"(q3)
                     : "memory");
}

#else

TAVU_VEC_INLINE U8 load_next(const uint8_t *&p) {
    const U8 v = vld1q_u8(p);
    p += LANES;
    return v;
}

TAVU_VEC_INLINE U8 narrow(Wide w) { return vqmovun_high_s16(vqmovun_s16(w.lo), w.hi); }

TAVU_VEC_INLINE U8 round_narrow8(UWide w) {
    return vqrshrn_high_n_u16(vqrshrn_n_u16(w.lo, 8), w.hi, 8);
}

TAVU_VEC_INLINE U8 round_narrow8(Wide w) {
    return vreinterpretq_u8_s8(vqrshrn_high_n_s16(vqrshrn_n_s16(w.lo, 8), w.hi, 8));
}

TAVU_VEC_INLINE void store_next(uint8_t *&p, U8 v) {
    vst1q_u8(p, v);
    p += LANES;
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c) {
    const uint8x16x3_t v = vld3q_u8(p);
    *a = v.val[0], *b = v.val[1], *c = v.val[2];
    p += 3 * LANES;
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c, U8 *d) {
    const uint8x16x4_t v = vld4q_u8(p);
    *a = v.val[0], *b = v.val[1], *c = v.val[2], *d = v.val[3];
    p += 4 * LANES;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b) {
    vst2q_u8(p, uint8x16x2_t{{a, b}});
    p += 2 * LANES;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c) {
    vst3q_u8(p, uint8x16x3_t{{a, b, c}});
    p += 3 * LANES;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c, U8 d) {
    vst4q_u8(p, uint8x16x4_t{{a, b, c, d}});
    p += 4 * LANES;
}

#endif

TAVU_VEC_INLINE U16 luma(uint8x8_t r, uint8x8_t g, uint8x8_t b) {
    const U16 sum = vmlal_u8(vmull_u8(r, vdup_n_u8(77)), g, vdup_n_u8(150));
    return vmlal_u8(sum, b, vdup_n_u8(29));
}

// 128 a - `weight_b` b - `weight_c` c. The two weights sum to 128.
TAVU_VEC_INLINE I16 chroma(uint8x8_t a, uint8x8_t b, uint8_t weight_b, uint8x8_t c,
                           uint8_t weight_c) {
    const U16 sum = vmlsl_u8(vshll_n_u8(a, 7), b, vdup_n_u8(weight_b));
    return vreinterpretq_s16_u16(vmlsl_u8(sum, c, vdup_n_u8(weight_c)));
}

TAVU_VEC_INLINE void rgb_to_yuv(U8 r, U8 g, U8 b, U8 *y, U8 *u, U8 *v) {
    const uint8x8_t r0 = vget_low_u8(r), g0 = vget_low_u8(g), b0 = vget_low_u8(b),
                    r1 = vget_high_u8(r), g1 = vget_high_u8(g), b1 = vget_high_u8(b);
    *y = round_narrow8(UWide{luma(r0, g0, b0), luma(r1, g1, b1)});
    *u = round_narrow8(Wide{chroma(b0, r0, 43, g0, 85), chroma(b1, r1, 43, g1, 85)}) ^ 0x80;
    *v = round_narrow8(Wide{chroma(r0, g0, 107, b0, 21), chroma(r1, g1, 107, b1, 21)}) ^ 0x80;
}

}  // namespace
}  // namespace tavu

#endif
