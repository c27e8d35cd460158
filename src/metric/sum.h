// Sums over a block, taken register by register: the vector form of SAD and SSD.
#ifndef TAVU_METRIC_SUM_H
#define TAVU_METRIC_SUM_H

#include "metric/metric.h"
#include "simd/tile.h"

#if TAVU_VEC

namespace tavu {
namespace {

// The register for a row.
template <int Columns>
constexpr int ROW_WIDTH = Columns < 16       ? 16
                          : Columns < WIDEST ? Columns
                                             : WIDEST;

// Rows that a register holds.
template <int N, int Columns>
constexpr int ROWS = Columns < N ? N / Columns : 1;

// Adds ROWS rows and moves on behind them.
template <int Columns, template <int> class Sum, int N>
TAVU_VEC_INLINE void add_rows(Sum<N> &sum, Blocks &at) {
    if constexpr (Columns <= 16) {
        const Bytes<N> a = load_rows<N, Columns>(at.a, at.stride_a);
        sum.add(a, load_rows<N, Columns>(at.b, at.stride_b));
    } else {
#pragma GCC unroll 4
        for (int x = 0; x < Columns; x += N) sum.add(load<N>(at.a + x), load<N>(at.b + x));
        at.next_row();
    }
}

// The sum of a block, whose rows are a multiple of ROWS.
template <class Sum, int Columns, int Rows>
TAVU_VEC_INLINE int32_t sum_block(Blocks &at) {
    if constexpr (Columns * Rows > Sum::MAX_BYTES) {
        const int32_t upper = sum_block<Sum, Columns, Rows / 2>(at);
        return upper + sum_block<Sum, Columns, Rows / 2>(at);
    } else {
        Sum sum;
#pragma GCC unroll 16
        for (int y = 0; y < Rows; y += ROWS<Sum::WIDTH, Columns>) add_rows<Columns>(sum, at);
        return sum.total();
    }
}

// The same for rows that are known at run time, at most as many as a sum takes. They are a multiple
// of 4, of more than 16 columns of 2 and 1.
template <class Sum, int Columns>
TAVU_VEC_INLINE int32_t sum_rows(int32_t rows, Blocks &at) {
    constexpr int GROUP = Columns <= 16 ? 4 : 64 / Columns;
    Sum sum = Sum::zero();
    for (; rows > 0; rows -= GROUP) {
#pragma GCC unroll 4
        for (int y = 0; y < GROUP; y += ROWS<Sum::WIDTH, Columns>) add_rows<Columns>(sum, at);
    }
    return sum.total();
}

}  // namespace
}  // namespace tavu

#endif

#endif
