// Searching, over the vector layer.
//
//     lesser(a, b)          the lesser byte of each lane
//     zero_lanes(v)         a set of the lanes that are 0; false if it is empty
//     first_lane(z)         the lowest lane of a set
#ifndef TAVU_SIMD_SCAN_H
#define TAVU_SIMD_SCAN_H

#include "simd/vec.h"

#if TAVU_LEVEL == 1
#include "simd/arm/scan.h"
#elif TAVU_LEVEL >= 2
#include "simd/x86/scan.h"
#endif

#endif
