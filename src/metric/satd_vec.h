// Hadamard transforms in registers: the vector form of the SATDs. The last stage takes the larger
// magnitude instead of sum and difference, so that what is summed is half of the SATD.
#ifndef TAVU_METRIC_SATD_VEC_H
#define TAVU_METRIC_SATD_VEC_H

#include "metric/metric.h"
#include "simd/tile.h"

#if TAVU_VEC

namespace tavu {
namespace {

// The three stages that a first butterfly of 16 residuals leaves.
TAVU_VEC_INLINE int32_t finish4x4(I16 p, I16 q) {
#pragma GCC unroll 2
    for (int i = 0; i < 2; i++) {
        zip(p, q);
        butterfly(p, q);
    }
    zip(p, q);
    MagnitudeSum sum;
    sum.add(abs_max(p, q));
    return sum.total();
}

TAVU_VEC_INLINE int32_t satd4x4_registers(Blocks at) {
    const U8 a = load_rows<4>(at.a, at.stride_a);
    I16 p, q;
    butterfly_difference(a, load_rows<4>(at.b, at.stride_b), &p, &q);
    return finish4x4(p, q);
}

// Four blocks of 4x4 side by side. A magnitude is at most 16 * 255.
TAVU_VEC_INLINE void add_satd4x4(MagnitudeSum &sum, Blocks at) {
    constexpr int N = COLUMN_REGISTERS;
    I16 v[4 * N];
#pragma GCC unroll 4
    for (int y = 0; y < 4; y++) load_butterflies(at.a, at.stride_a, at.b, at.stride_b, v + y * N);
#pragma GCC unroll 2
    for (int i = 0; i < N; i++) {
        butterfly(v[i], v[i + N]);
        butterfly(v[i + 2 * N], v[i + 3 * N]);
        butterfly(v[i], v[i + 2 * N]);
        butterfly(v[i + N], v[i + 3 * N]);
    }
    sum.add_pairs(v);
}

// All but the last stage of a group of four rows, y to y + 3. After three zips the lanes are, by the
// bits of their numbers, one vertical and two horizontal frequency bits; the third horizontal one
// tells even from odd registers.
TAVU_VEC_INLINE void transform_rows(I16 *v) {
#pragma GCC unroll 2
    for (int y = 0; y < 4; y += 2) {
        butterfly(v[y], v[y + 1]);
#pragma GCC unroll 3
        for (int i = 0; i < 3; i++) {
            zip(v[y], v[y + 1]);
            butterfly(v[y], v[y + 1]);
        }
    }
    butterfly(v[0], v[2]);
    butterfly(v[1], v[3]);
}

// The last stage, between rows 4 apart, and the sum over the registers of one parity.
template <int N>
TAVU_VEC_INLINE I16 sum_maxima(const I16 (&v)[N], int parity) {
    if constexpr (N == 8) {
        return abs_max(v[parity], v[parity + 4]) + abs_max(v[parity + 2], v[parity + 6]);
    } else {
        return abs_max_of_halves(v[parity]) + abs_max_of_halves(v[parity + 2]);
    }
}

// LANES / 16 blocks of 8x8 side by side.
TAVU_VEC_INLINE void add_satd8x8(RoundedSum &sum, Blocks at) {
    I16 v[8];
#pragma GCC unroll 8
    for (I16 &row : v) row = load_difference(at.a, at.stride_a, at.b, at.stride_b);
    transform_rows(v);
    transform_rows(v + 4);
    sum.add(sum_maxima(v, 0), sum_maxima(v, 1));
}

// One block of 8x8.
TAVU_VEC_INLINE int32_t satd8x8_registers(Blocks at) {
    I16 v[STACKED_REGISTERS];
#pragma GCC unroll 8
    for (I16 &row : v) row = load_stacked_difference(at.a, at.stride_a, at.b, at.stride_b);
#pragma GCC unroll 2
    for (int y = 0; y < STACKED_REGISTERS; y += 4) transform_rows(v + y);
    RoundedSum sum;
    sum.add(sum_maxima(v, 0), sum_maxima(v, 1));
    return sum.total_of_stacked();
}

}  // namespace
}  // namespace tavu

#endif

#endif
