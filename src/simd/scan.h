// Searching, over the vector layer.
//
//     lesser(a, b)          the lesser byte of each lane
//     ZeroLanes             which lanes of a register are 0; false when none is
//     zero_lanes(v)
//     first_lane(z)         the lowest of them
#ifndef TAVU_SIMD_SCAN_H
#define TAVU_SIMD_SCAN_H

#include "simd/vec.h"

#if TAVU_VEC

namespace tavu {
namespace {

#if defined(__ARM_NEON)

using ZeroLanes = uint64_t;  // 4 bits for each lane

TAVU_VEC_INLINE U8 lesser(U8 a, U8 b) { return vminq_u8(a, b); }

TAVU_VEC_INLINE ZeroLanes zero_lanes(U8 v) {
    const uint16x8_t zero = vreinterpretq_u16_u8(vceqq_u8(v, vdupq_n_u8(0)));
    const uint32x2_t lanes = vreinterpret_u32_u8(vshrn_n_u16(zero, 4));
    // By halves, for ARM has no 64-bit register and compilers would go through memory.
    return vget_lane_u32(lanes, 0) | static_cast<uint64_t>(vget_lane_u32(lanes, 1)) << 32;
}

TAVU_VEC_INLINE int first_lane(ZeroLanes z) { return __builtin_ctzll(z) / 4; }

#else

using ZeroLanes = uint32_t;

#if defined(__AVX2__)
TAVU_VEC_INLINE U8 lesser(U8 a, U8 b) {
    return as<U8>(_mm256_min_epu8(as<Register>(a), as<Register>(b)));
}

TAVU_VEC_INLINE ZeroLanes zero_lanes(U8 v) {
    return static_cast<uint32_t>(_mm256_movemask_epi8(as<Register>(v == 0)));
}
#else
TAVU_VEC_INLINE U8 lesser(U8 a, U8 b) {
    return as<U8>(_mm_min_epu8(as<Register>(a), as<Register>(b)));
}

TAVU_VEC_INLINE ZeroLanes zero_lanes(U8 v) {
    return static_cast<uint32_t>(_mm_movemask_epi8(as<Register>(v == 0)));
}
#endif

TAVU_VEC_INLINE int first_lane(ZeroLanes z) { return __builtin_ctz(z); }

#endif

}  // namespace
}  // namespace tavu

#endif

#endif
