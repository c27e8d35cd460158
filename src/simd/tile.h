// The vector layer on blocks: registers that hold one or several rows of a block.
//
//     load_rows<W>(p, stride)   ROWS<W> rows of W bytes, as many as fit up to 4, zeros behind them; W
//                               is 4, 8, 16 or LANES; p moves on by as many rows
//     load_start<W>(p)          W bytes and zeros behind them, W = 4, 8, 16
//     store_difference<N>(a, b, out)
//                               a - b of N bytes in 16 bits, N = 8 or LANES / 2
//     load_difference(a, stride_a, b, stride_b)
//                               a - b of LANES / 2 columns in 16 bits; both move on by one row
//     load_stacked_difference(a, stride_a, b, stride_b)
//                               of 8 columns; a v3 register holds this row and that 4 rows below,
//                               so that STACKED_REGISTERS hold a block of 8x8
//     AbsSum, SquareSum         sums of absolute and of squared differences: add(a, b) adds those of
//                               LANES bytes, total() is their sum. An AbsSum is exact for MAX_BYTES
//                               bytes; a SquareSum wraps in 32 bits. Sums begin without a value,
//                               which saves the first addition, or in loops with zero()
//     running_totals(sums, totals)
//                               of four AbsSums the totals of the first, the first two, ...
//
// For Hadamard transforms. A butterfly is needed on each bit of a sample's column and row; each of
// these bits is a bit of the lane's number or tells registers apart.
//
//     butterfly(a, b)           a + b and a - b
//     butterfly_difference(a, b, &p, &q)
//                               the first butterfly of a - b of four rows of four columns, of rows or
//                               of columns as is cheaper
//     load_butterflies(a, stride_a, b, stride_b, v)
//                               of a - b of 16 columns the sums and differences of even and odd
//                               columns, as COLUMN_REGISTERS registers; both move on by one row
//     zip(a, b)                 makes a bit of the lane tell registers apart, and the reverse: a
//                               becomes a0 b0 a1 b1 ..., b what follows, in each 16 bytes
//     abs_max(a, b)             max(|a|, |b|), which is half of |a + b| + |a - b|: the last stage
//     MagnitudeSum              add(v) adds lanes that are not negative; add_pairs(v) adds max(|a|,
//                               |b|) of even and odd lanes, which must not exceed 8191, of registers
//     RoundedSum                of 8x8 transforms, see there
//
// Nothing beyond the rows is read.
#ifndef TAVU_SIMD_TILE_H
#define TAVU_SIMD_TILE_H

#include "simd/vec.h"

#if TAVU_VEC

namespace tavu {
namespace {

template <int W>
constexpr int ROWS = W == 4      ? 4
                     : W < LANES ? LANES / W
                                 : 1;

}  // namespace
}  // namespace tavu

#if defined(__ARM_NEON)
#include "simd/tile_neon.h"
#else
#include "simd/tile_x86.h"
#endif

namespace tavu {
namespace {

TAVU_VEC_INLINE void butterfly(I16 &a, I16 &b) {
    const I16 sum = a + b;
    b = a - b;
    a = sum;
}

}  // namespace
}  // namespace tavu

#endif

#endif
