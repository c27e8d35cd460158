// The vector layer on blocks: registers of N bytes that hold one or several rows, N = 16 and, where
// the level has them, 32 and 64 (WIDEST at most).
//
//     Bytes<N>, Words<N>        a register of bytes, of 16-bit lanes
//     load<N>(p)                N bytes
//     load_next<N>(p)           the same; p moves on behind them
//     load_rows<N, W>(p, stride)
//                               N / W rows of W bytes, W = 4 (N = 16), 8, 16, N; p moves on by as
//                               many rows
//     load_start<W>(p)          Bytes<16> of W bytes and zeros behind them
//     store_difference<N>(a, b, out)
//                               a - b of N / 2 bytes in 16 bits
//     AbsSum<N>, SquareSum<N>   sums of absolute and of squared differences: add(a, b) adds those of
//                               N bytes, total() is their sum. An AbsSum is exact for MAX_BYTES
//                               bytes; a SquareSum wraps in 32 bits. Sums begin without a value,
//                               which saves the first addition, or in loops with zero()
//     keep_in_memory(argument)  an argument that comes on the stack stays there until it is used
//
// For Hadamard transforms. A butterfly is needed on each bit of a sample's column and row; each of
// these bits is a bit of the lane's number or tells registers apart.
//
//     butterfly(a, b)           a + b and a - b
//     zip(a, b)                 makes the upper bit of the lane tell registers apart, and the reverse:
//                               a becomes a0 b0 a1 b1 ..., b what follows, in each 16 bytes
//     add(a, b)                 a + b
//     butterfly_abs(a, b)       |a + b| and |a - b|
//     larger(a, b)              of magnitudes the larger one, which is half of |a + b| + |a - b|: the
//                               last stage
//     butterfly_difference(a, b, &p, &q)
//                               the first butterfly of a - b of four rows of four columns, of rows or
//                               of columns as is cheaper
//     load_row_butterflies(a, stride_a, b, stride_b)
//                               AVX2: of a - b of two rows of 4 columns the sums and differences of
//                               neighbours; a and b move on behind them
//     load_butterflies<N>(a, stride_a, b, stride_b, v)
//                               of a - b of 16 columns the sums and differences of even and odd
//                               columns, in COLUMN_REGISTERS<N> registers; of 64 bytes the second
//                               half is the row 4 rows below; a and b move on by one row
//     load_difference<N>(a, stride_a, b, stride_b)
//                               a - b of N / 2 columns; a and b move on by one row
//     load_stacked_difference(a, stride_a, b, stride_b)
//                               Words<STACKED> of a - b of 8 columns: of this row, if STACKED is 32
//                               also of that 4 rows below, if 64 of those 2, 4 and 6 rows below; a
//                               and b move on by one row
//     MagnitudeSum<N>           add(v) adds lanes that are not negative; add_pairs(v) adds the larger
//                               ones of even and odd lanes of registers, at most 4080
//     load_row_transforms(a, stride_a, b, stride_b, &p, &q)
//                               NEON: the horizontal transforms of two rows side by side, see there
//     RoundedSum<N>, RoundedSums
//                               of 8x8 transforms, see there
//
// Nothing beyond the rows is read.
#ifndef TAVU_SIMD_BLOCK_H
#define TAVU_SIMD_BLOCK_H

#include "simd/vec.h"

#if TAVU_VEC

#if defined(__ARM_NEON)
#include "simd/arm/block.h"
#else
#include "simd/x86/hadamard.h"
#endif

#endif

#endif
