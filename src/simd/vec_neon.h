// The vector layer on NEON, 32-bit and 64-bit. The operations are told in vec.h.
#ifndef TAVU_SIMD_VEC_NEON_H
#define TAVU_SIMD_VEC_NEON_H

#include <arm_neon.h>

namespace tavu {
namespace {

constexpr int LANES = 16;
using U8 = uint8x16_t;
using I16 = int16x8_t;
struct Wide {
    I16 lo, hi;
};

TAVU_VEC_INLINE U8 load(const uint8_t *p) { return vld1q_u8(p); }
TAVU_VEC_INLINE U8 splat(uint8_t x) { return vdupq_n_u8(x); }

TAVU_VEC_INLINE Wide widen(U8 v) {
    return {vreinterpretq_s16_u16(vmovl_u8(vget_low_u8(v))),
            vreinterpretq_s16_u16(vmovl_u8(vget_high_u8(v)))};
}

TAVU_VEC_INLINE U8 narrow(Wide w) { return vcombine_u8(vqmovun_s16(w.lo), vqmovun_s16(w.hi)); }

TAVU_VEC_INLINE I16 multiply_round15(I16 a, int16_t k) { return vqrdmulhq_n_s16(a, k); }
TAVU_VEC_INLINE I16 round_shift8(I16 a) { return vrshrq_n_s16(a, 8); }

TAVU_VEC_INLINE void store_interleaved(uint8_t *p, U8 a, U8 b, U8 c) {
    vst3q_u8(p, uint8x16x3_t{{a, b, c}});
}

TAVU_VEC_INLINE void store_interleaved(uint8_t *p, U8 a, U8 b, U8 c, U8 d) {
    vst4q_u8(p, uint8x16x4_t{{a, b, c, d}});
}

}  // namespace
}  // namespace tavu

#endif
