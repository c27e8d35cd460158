// Sums over a block, taken register by register: the vector form of SAD and SSD.
#ifndef TAVU_METRIC_SUM_H
#define TAVU_METRIC_SUM_H

#include "metric/metric.h"
#include "simd/tile.h"

#if TAVU_VEC

namespace tavu {
namespace {

// Passes ROWS rows to use(a, b), register by register.
template <int Columns, class Use>
TAVU_VEC_INLINE void step(Blocks &at, Use use) {
    if constexpr (Columns <= LANES) {
        const U8 a = load_rows<Columns>(at.a, at.stride_a);
        use(a, load_rows<Columns>(at.b, at.stride_b));
    } else {
        const uint8_t *a = at.a, *b = at.b;
#pragma GCC unroll 4
        for (int x = 0; x < Columns; x += LANES) {
            const U8 va = load(a);
            use(va, load(b));
        }
        at.next_row();
    }
}

// Rows are a multiple of ROWS.
template <class Sum, int Columns, int Rows>
TAVU_VEC_INLINE int32_t sum_block(Blocks &at) {
    if constexpr (Columns * Rows > Sum::MAX_BYTES) {
        const int32_t upper = sum_block<Sum, Columns, Rows / 2>(at);
        return upper + sum_block<Sum, Columns, Rows / 2>(at);
    } else {
        Sum sum;
#pragma GCC unroll 16
        for (int y = 0; y < Rows; y += ROWS<Columns>) {
            step<Columns>(at, [&sum](U8 a, U8 b) { sum.add(a, b); });
        }
        return sum.total();
    }
}

// The same for rows that are known at run time.
template <class Sum, int Columns>
TAVU_VEC_INLINE int32_t sum_rows(int32_t rows, Blocks at) {
    constexpr int32_t MOST = Sum::MAX_BYTES / Columns;
    int32_t total = 0;
    do {
        Sum sum = Sum::zero();
        int32_t n = rows < MOST ? rows : MOST;
        rows -= n;
        for (; n > 0; n -= ROWS<Columns>) {
            step<Columns>(at, [&sum](U8 a, U8 b) { sum.add(a, b); });
        }
        total += sum.total();
    } while (rows > 0);
    return total;
}

}  // namespace
}  // namespace tavu

#endif

#endif
