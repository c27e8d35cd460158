// Searching on x86-64. scan.h documents the operations.
#ifndef TAVU_SIMD_X86_SCAN_H
#define TAVU_SIMD_X86_SCAN_H

#include "simd/x86/vec.h"

namespace tavu {
namespace {

// One bit for each lane.
#if TAVU_LEVEL == 4
using ZeroLanes = uint64_t;
TAVU_VEC_INLINE int first_lane(ZeroLanes z) { return __builtin_ctzll(z); }
#else
using ZeroLanes = uint32_t;
TAVU_VEC_INLINE int first_lane(ZeroLanes z) { return __builtin_ctz(z); }
#endif

TAVU_VEC_INLINE U8 lesser(U8 a, U8 b) { return as<U8>(min_epu8(as<Reg>(a), as<Reg>(b))); }

TAVU_VEC_INLINE ZeroLanes zero_lanes(U8 v) { return movemask_epi8(as<Reg>(v == 0)); }

}  // namespace
}  // namespace tavu

#endif
