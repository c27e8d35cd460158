// Hadamard transforms in registers: the vector form of the SATDs. The last stage takes the larger
// magnitude instead of sum and difference, so that what is summed is half of the SATD.
#ifndef TAVU_METRIC_SATD_VEC_H
#define TAVU_METRIC_SATD_VEC_H

#include "metric/metric.h"
#include "simd/block.h"

#if TAVU_VEC

namespace tavu {
namespace {

// The three stages that a first butterfly of 16 residuals leaves.
TAVU_VEC_INLINE int32_t finish4x4(Words<16> p, Words<16> q) {
    zip(p, q);
    butterfly(p, q);
    zip(p, q);
    butterfly_abs(p, q);
    zip(p, q);
    MagnitudeSum<16> sum;
    sum.add(larger(p, q));
    return sum.total();
}

#if defined(__AVX2__)

TAVU_VEC_INLINE int32_t satd4x4_registers(Blocks at) {
    Words<16> v[2];
    v[0] = load_row_butterflies(at.a, at.stride_a, at.b, at.stride_b);
    v[1] = load_row_butterflies(at.a, at.stride_a, at.b, at.stride_b);
    butterfly(v[0], v[1]);
    zip_halves(v[0], v[1]);
    butterfly_abs(v[0], v[1]);
    MagnitudeSum<16> sum = MagnitudeSum<16>::zero();
    sum.add_pairs(v);
    return sum.total();
}

#else

TAVU_VEC_INLINE int32_t satd4x4_registers(Blocks at) {
    const Bytes<16> a = load_rows<16, 4>(at.a, at.stride_a);
    Words<16> p, q;
    butterfly_difference(a, load_rows<16, 4>(at.b, at.stride_b), &p, &q);
    return finish4x4(p, q);
}

#endif

// Blocks of 4x4 in 16 columns and 4 rows, of 64 bytes 8 rows; moves on behind them. A magnitude is at
// most 16 * 255.
template <int N>
TAVU_VEC_INLINE void add_satd4x4(MagnitudeSum<N> &sum, Blocks &at) {
    constexpr int R = COLUMN_REGISTERS<N>;
    Words<N> v[size_t{4 * R}];
#pragma GCC unroll 4
    for (int y = 0; y < 4; y++) {
        load_butterflies<N>(at.a, at.stride_a, at.b, at.stride_b, v + y * R);
    }
    if constexpr (N == 64) at = at.tile(0, 4);
#pragma GCC unroll 2
    for (int i = 0; i < R; i++) {
        butterfly(v[i], v[i + R]);
        butterfly(v[i + 2 * R], v[i + 3 * R]);
        butterfly_abs(v[i], v[i + 2 * R]);
        butterfly_abs(v[i + R], v[i + 3 * R]);
    }
    sum.add_pairs(v);
}

// Two rows that a butterfly takes at once, and their horizontal stages. After three zips the lanes
// are, by the bits of their numbers, one vertical and two horizontal frequency bits; the third
// horizontal one tells the registers apart.
template <class Register>
TAVU_VEC_INLINE void transform_pair(Register &a, Register &b) {
    butterfly(a, b);
#pragma GCC unroll 3
    for (int i = 0; i < 3; i++) {
        zip(a, b);
        butterfly(a, b);
    }
}

// Magnitudes of four rows before the last stage.
template <class Register>
TAVU_VEC_INLINE void transform_rows(Register *v) {
    transform_pair(v[0], v[1]);
    transform_pair(v[2], v[3]);
    butterfly_abs(v[0], v[2]);
    butterfly_abs(v[1], v[3]);
}

// N / 16 blocks of 8x8 side by side; moves on behind them.
template <int N>
TAVU_VEC_INLINE void add_satd8x8(RoundedSum<N> &sum, Blocks &at) {
    Words<N> v[8];
#pragma GCC unroll 8
    for (auto &row : v) row = load_difference<N>(at.a, at.stride_a, at.b, at.stride_b);
    transform_rows(v);
    transform_rows(v + 4);
    sum.add(add(larger(v[0], v[4]), larger(v[2], v[6])),
            add(larger(v[1], v[5]), larger(v[3], v[7])));
}

#if defined(__ARM_NEON)

// All but the last vertical stage of four rows of two blocks side by side.
TAVU_VEC_INLINE void transform_wide_rows(Blocks &at, I16 *p, I16 *q) {
#pragma GCC unroll 4
    for (int y = 0; y < 4; y++) {
        load_row_transforms(at.a, at.stride_a, at.b, at.stride_b, &p[y], &q[y]);
        if (y % 2 == 1) butterfly(p[y - 1], p[y]), butterfly(q[y - 1], q[y]);
    }
    butterfly_abs(p[0], p[2]), butterfly_abs(p[1], p[3]);
    butterfly_abs(q[0], q[2]), butterfly_abs(q[1], q[3]);
}

TAVU_VEC_INLINE I16 sum_of_larger(const I16 *v, const I16 *w) {
    return add(add(larger(v[0], w[0]), larger(v[1], w[1])),
               add(larger(v[2], w[2]), larger(v[3], w[3])));
}

// Two blocks side by side; moves on behind them.
TAVU_VEC_INLINE void add_satd8x8_twice(RoundedSums &sum, Blocks &at) {
    I16 p[8], q[8];
    transform_wide_rows(at, p, q);
    transform_wide_rows(at, p + 4, q + 4);
    sum.add(sum_of_larger(p, p + 4), sum_of_larger(q, q + 4));
}

#endif

#if defined(__AVX512BW__)

// One block of 8x8, all of it in two registers. The halves of the third stage leave one bit of the
// row in neighbouring lanes, which are added; the last two stages are of the other bits.
TAVU_VEC_INLINE int32_t satd8x8_registers(const Blocks &at) {
    Words<64> p, q;
    const Bytes<64> a = load_block(at.a, at.stride_a);
    butterfly_difference(a, load_block(at.b, at.stride_b), &p, &q);
    zip(p, q);
    butterfly(p, q);
    zip(p, q);
    butterfly(p, q);
    zip_halves(p, q);
    butterfly(p, q);
    zip_rows(p, q);
    butterfly_abs(p, q);
    zip_rows(p, q);
    return (sum_doubled_pairs(add_halves(larger(p, q))) + 2) >> 2;
}

#else

// One block of 8x8, with several rows in a register where they fit.
template <int N = STACKED>
TAVU_VEC_INLINE int32_t satd8x8_registers(Blocks at) {
    RoundedSum<16> sum;
    if constexpr (N == 16) {
        add_satd8x8(sum, at);
    } else {
        Words<N> v[size_t{128 / N}];
#pragma GCC unroll 4
        for (auto &row : v) row = load_stacked_difference(at.a, at.stride_a, at.b, at.stride_b);
        transform_rows(v);
        sum.add(add(larger_half(v[0]), larger_half(v[2])),
                add(larger_half(v[1]), larger_half(v[3])));
    }
    return sum.total();
}

#endif

}  // namespace
}  // namespace tavu

#endif

#endif
