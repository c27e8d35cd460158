// Searching on NEON. scan.h documents the operations.
#ifndef TAVU_SIMD_ARM_SCAN_H
#define TAVU_SIMD_ARM_SCAN_H

#include "simd/arm/vec.h"

namespace tavu {
namespace {

using ZeroLanes = uint64_t;  // 4 bits for each lane

TAVU_VEC_INLINE U8 lesser(U8 a, U8 b) { return vminq_u8(a, b); }

TAVU_VEC_INLINE ZeroLanes zero_lanes(U8 v) {
    const uint16x8_t zero = vreinterpretq_u16_u8(vceqq_u8(v, vdupq_n_u8(0)));
    const uint32x2_t lanes = vreinterpret_u32_u8(vshrn_n_u16(zero, 4));
    // In halves, because 32-bit ARM has no 64-bit register and compilers would go through memory.
    return vget_lane_u32(lanes, 0) | static_cast<uint64_t>(vget_lane_u32(lanes, 1)) << 32;
}

TAVU_VEC_INLINE int first_lane(ZeroLanes z) { return __builtin_ctzll(z) / 4; }

}  // namespace
}  // namespace tavu

#endif
