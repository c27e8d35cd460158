// Bilinear resampling: neighbouring bytes of a row weighed into registers of 16-bit lanes. Of LANES
// elements the even groups of 8 make one register and the odd groups the next, so that the two are
// a UWide.
//
//     OUTPUTS               lanes in a register: LANES / 2
//     I32x4, U16x8          positions and samples of 8 outputs while taps are made
//     narrow32(x, y)        the lower halves of 8 lanes
//     Taps<Windows>         what OUTPUTS outputs are made of. Each group of 8 takes its samples
//                           from Windows * 16 bytes at its offset; Windows is 1, 2 or 4
//     set_taps(taps, group, left, right)
//                           which bytes of its window the outputs of a group weigh
//     set_weights(p, a)     with 8 - a and a; 16 bytes of weights for a group
//     load_taps(taps)       the taps in registers
//     weigh(row, loaded)    (8 - a) * row[left] + a * row[right] of each output, at most 8 * 255
//     mix(x, y, weight_x, weight_y)
//                           weight_x * x + weight_y * y, at most 64 * 255 if the weights sum to 8
//     narrow6(w)            w >> 6 to bytes, for lanes of at most 64 * 255
//     round_shift8(v)       (v + 128) >> 8 of signed lanes, without wrapping
//     load16(p), store16(p, v)
//                           a register of 16-bit lanes from or to any address
//     HalfWeights           the weights of LANES squares of two bytes of two rows, for those of each
//                           row as set_weights() lays them out, times the row's
//     halve(top, bottom, weights)
//                           the weighted sums of such squares; both pointers move on
//     BYTES_UNIT            the scale of the weights of halve_to_bytes()
//     halve_to_bytes(top, bottom, weights, blocks, ahead, out)
//                           the sums as bytes, of one block or more; weights moves on by one for
//                           each; `ahead` bytes on is what comes next
//     prefetch(p)           p will be read soon; it need not be readable
#ifndef TAVU_SIMD_RESAMPLE_H
#define TAVU_SIMD_RESAMPLE_H

#include "simd/vec.h"

#if TAVU_VEC

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

constexpr int OUTPUTS = LANES / 2;
constexpr int WINDOW = 16;
using I32x4 = int32_t __attribute__((vector_size(16)));
using U16x8 = uint16_t __attribute__((vector_size(16)));

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#if TAVU_LEVEL == 1
#include "simd/arm/resample.h"
#else
#include "simd/x86/resample.h"
#endif

#endif

#endif
