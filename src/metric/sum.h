// Sums over a block, register by register: the vector form of SAD and SSD.
#ifndef TAVU_METRIC_SUM_H
#define TAVU_METRIC_SUM_H

#include "metric/metric.h"
#include "simd/block.h"

#if TAVU_VEC

namespace tavu {
namespace {

// Bytes of the register for a row.
template <int Columns>
constexpr int ROW_WIDTH = Columns < 16      ? 16
                          : Columns < LANES ? Columns
                                            : LANES;

// Rows that a register holds.
template <int N, int Columns>
constexpr int ROWS = Columns < N ? N / Columns : 1;

// Adds ROWS rows and advances.
template <int Columns, template <int> class Sum, int N>
TAVU_VEC_INLINE void add_rows(Sum<N> &sum, BlockPair &at) {
    if constexpr (Columns <= 16) {
        const VecU8<N> a = load_next_rows<N, Columns>(at.a, at.stride_a);
        sum.add(a, load_next_rows<N, Columns>(at.b, at.stride_b));
    } else {
#pragma GCC unroll 4
        for (int x = N; x < Columns; x += N) {
            const VecU8<N> a = load_next<N>(at.a);
            sum.add(a, load_next<N>(at.b));
        }
        const VecU8<N> a = load_next_rows<N, N>(at.a, at.stride_a - (Columns - N));
        sum.add(a, load_next_rows<N, N>(at.b, at.stride_b - (Columns - N)));
    }
}

// The sum of a block, whose rows are a multiple of ROWS.
template <class Sum, int Columns, int Rows>
TAVU_VEC_INLINE int32_t sum_block(BlockPair &at) {
    if constexpr (Columns * Rows > Sum::MAX_BYTES) {
        const int32_t upper = sum_block<Sum, Columns, Rows / 2>(at);
        return upper + sum_block<Sum, Columns, Rows / 2>(at);
    } else {
        Sum sum;
        if constexpr (Columns > Sum::WIDTH) {
#pragma GCC unroll 4
            for (int y = 0; y < Rows; y++) add_rows<Columns>(sum, at);
        } else {
#pragma GCC unroll 16
            for (int y = 0; y < Rows; y += ROWS<Sum::WIDTH, Columns>) add_rows<Columns>(sum, at);
        }
        return sum.total();
    }
}

// The same for a number of rows that is known at run time, at most as many as a sum takes. It is rounded
// up to a multiple of 4, with 32 columns of 2, with 64 of 1.
template <class Sum, int Columns>
TAVU_VEC_INLINE int32_t sum_rows(int32_t rows, BlockPair &at) {
    constexpr int GROUP = Columns <= 16 ? 4 : 64 / Columns;
    if (rows <= 0) return 0;
    Sum sum = Sum::zero();
    uint32_t groups = (static_cast<uint32_t>(rows) + GROUP - 1) / GROUP;
    do {
#pragma GCC unroll 4
        for (int y = 0; y < GROUP; y += ROWS<Sum::WIDTH, Columns>) add_rows<Columns>(sum, at);
    } while (--groups != 0);
    return sum.total();
}

}  // namespace
}  // namespace tavu

#endif

#endif
