// Pairs of blocks, and the vector layer on their rows: registers of N bytes that hold one or several
// rows, N = 16 and, where the level has them, 32 and 64 (LANES at most).
//
//     VecU8<N>, VecI16<N>   a register of bytes, of 16-bit lanes
//     load<N>(p)            N bytes
//     load_next<N>(p)       the same
//     load_next_rows<N, W>(p, stride)
//                           N / W rows of W bytes, W = 4 (N = 16), 8, 16 or N
//     load_start<W>(p)      VecU8<16> of W bytes followed by zeros
//     store_difference<N>(a, b, out)
//                           a - b of N / 2 bytes in 16 bits
//     load_next_difference<N>(a, stride_a, b, stride_b)
//                           VecI16<N> of a - b of N / 2 columns of one row
//     AbsSum<N>, SquareSum<N>
//                           sums of absolute and of squared differences: add(a, b) adds those of
//                           N bytes, total() returns the sum. An AbsSum is exact for MAX_BYTES bytes,
//                           a SquareSum wraps in 32 bits. A sum that is declared without a value has its
//                           first addition for free; in loops start with zero()
//     keep_in_memory(argument)
//                           leaves an argument that is passed on the stack there until its first use
//
// Operations with next in their names advance their pointers, by rows if they take a stride. Nothing
// outside the rows is read.
#ifndef TAVU_SIMD_BLOCK_H
#define TAVU_SIMD_BLOCK_H

#include <cstddef>
#include <cstdint>

#include "simd/level.h"

namespace tavu {
namespace {

// Two blocks of one size. Loops over rows advance both.
struct BlockPair {
    const uint8_t *a, *b;
    ptrdiff_t stride_a, stride_b;

    void next_row() {
        a += stride_a;
        b += stride_b;
    }
    BlockPair tile(int32_t x, int32_t y) const {
        return {a + y * stride_a + x, b + y * stride_b + x, stride_a, stride_b};
    }
};

}  // namespace
}  // namespace tavu

#if TAVU_LEVEL == 1
#include "simd/arm/block.h"
#elif TAVU_LEVEL >= 2
#include "simd/x86/block.h"
#endif

#endif
