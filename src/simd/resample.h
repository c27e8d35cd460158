// Operations of bilinear resampling. Weights are in eighths: the fraction a of the right-hand
// sample and 8 - a of the left one, the fraction b of the lower row and 8 - b of the upper one.
//
// LANES outputs are a UWide. They form groups of 8: the even groups are in its first register, the
// odd ones in the second, the order in which narrow6() takes them.
//
//     OUTPUTS               outputs in a register: LANES / 2
//     WINDOW                bytes of a window
//     I32x4, U16x8          positions of 4 and of 8 outputs while a gather is made
//     narrow32(x, y)        the low 16 bits of 8 lanes
//     Gather<Windows>       the two samples and weights of each of OUTPUTS outputs. A group takes its
//                           samples from Windows (1, 2 or 4) consecutive windows at its offset
//     set_positions(gather, group, left, right)
//                           the distances of a group's samples from its offset
//     set_weights(p, a)     writes 8 - a and a of a group, 16 bytes
//     load_gather(gather)   the gather in registers
//     lerp_columns(row, loaded)
//                           (8 - a) * row[left] + a * row[right], at most 8 * 255
//     lerp_rows(upper, lower, b)
//                           (8 - b) * upper + b * lower, of sums of lerp_columns() at most 64 * 255
//     narrow6(w)            w >> 6 in bytes, of lanes up to 64 * 255
//     round_shift8(v)       (v + 128) >> 8 of signed lanes, without wrapping
//     load16(p), store16(p, v)
//                           a register of 16-bit lanes from or to any address
//     Weights2x2            four weights for each of LANES squares of 2x2 adjacent samples: for the
//                           upper and for the lower row 2 * LANES bytes in the layout of set_weights()
//     lerp_next_2x2(upper, lower, weights)
//                           the weighted sums of LANES squares; both pointers move on
//     lerp_row_2x2(upper, lower, weights, blocks, distance, out)
//                           weighted sums in bytes, of one block of LANES squares or more;
//                           `distance` is how many bytes ahead to prefetch
//     ROW_SCALE_2X2         factor of the weights that lerp_row_2x2() takes
//     prefetch(p)           p will be read soon; it need not be readable
#ifndef TAVU_SIMD_RESAMPLE_H
#define TAVU_SIMD_RESAMPLE_H

#include "simd/level.h"

#if TAVU_LEVEL == 1
#include "simd/arm/resample.h"
#elif TAVU_LEVEL >= 2
#include "simd/x86/resample.h"
#endif

#endif
