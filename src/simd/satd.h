// SATDs in registers, in the form that suits the processor.
//
//     vec_satd4x4(at), vec_satd8x8(at)
//                           of one pair of blocks
//     Satd4x4Strip, Satd8x8Strip
//                           sums of SATDs of areas: add_next(at) adds the blocks in COLUMNS x ROWS samples
//                           and advances by ROWS rows, total() returns the sum
//     SPLIT_PICTURES        whether large areas gain from being split for the cache
#ifndef TAVU_SIMD_SATD_H
#define TAVU_SIMD_SATD_H

#include "simd/level.h"

#if TAVU_LEVEL == 1
#include "simd/arm/satd.h"
#elif TAVU_LEVEL >= 2
#include "simd/x86/satd.h"
#endif

#endif
