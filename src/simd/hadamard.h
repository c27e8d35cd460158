// Hadamard transforms in registers: operations, and the stages that all processors share.
//
// A butterfly is needed for each bit of a sample's column and row. Each of these bits is a bit of the lane
// number or distinguishes two registers. The last stage takes the larger magnitude instead of sum and
// difference: |a + b| + |a - b| is twice the larger of |a| and |b|. So sums of magnitudes are half of
// those of the transform.
//
//     add(a, b)                 a + b
//     butterfly(a, b)           a + b and a - b
//     butterfly_abs(a, b)       |a + b| and |a - b|
//     larger(a, b)              the larger lane: the last stage, of magnitudes
//     zip(a, b)                 a0 b0 a1 b1 ... of each 16 bytes: the first half in a, the second in b.
//                               Exchanges the upper bit of the lane with the bit that distinguishes
//                               the registers
//     butterfly_difference(a, b, &p, &q)
//                               the first butterfly of a - b of rows of 4 or 8 columns: of rows or of
//                               columns, whichever is cheaper
//     load_next_butterflies<N>(a, stride_a, b, stride_b, v)
//                               sums and differences of even and odd columns of a - b of 16 columns,
//                               in COLUMN_REGISTERS<N> registers; with 64 bytes the second half is the
//                               row 4 rows below
//     MagnitudeSum<N>           add(v) adds lanes that are not negative; add_pairs(v) adds the larger of
//                               lanes 2 i and 2 i + 1 of up to 8 registers
//     RoundedSum<N>             add(a, b) adds (s + 2) >> 2 for each transform of 8x8, one in each 16 bytes.
//                               s sums 2 m over the eight horizontal frequencies; m is the sum of lanes i
//                               and i + 4 of a or of b, and 2 m wraps in 16 signed bits
#ifndef TAVU_SIMD_HADAMARD_H
#define TAVU_SIMD_HADAMARD_H

#include "simd/block.h"

#if TAVU_LEVEL == 1
#include "simd/arm/hadamard.h"
#elif TAVU_LEVEL >= 2
#include "simd/x86/hadamard.h"
#endif

#if TAVU_VEC

namespace tavu {
namespace {

// The three stages of 4x4 that remain after a first butterfly.
TAVU_VEC_INLINE int32_t finish4x4(VecI16<16> p, VecI16<16> q) {
    zip(p, q);
    butterfly(p, q);
    zip(p, q);
    butterfly_abs(p, q);
    zip(p, q);
    MagnitudeSum<16> sum;
    sum.add(larger(p, q));
    return sum.total();
}

// One pair of blocks, four rows in a register.
TAVU_VEC_INLINE int32_t satd4x4_of_rows(BlockPair at) {
    const VecU8<16> a = load_next_rows<16, 4>(at.a, at.stride_a);
    VecI16<16> p, q;
    butterfly_difference(a, load_next_rows<16, 4>(at.b, at.stride_b), &p, &q);
    return finish4x4(p, q);
}

// The sum of SATDs of blocks of 4x4 in 16 columns and 4 rows, with 64 bytes 8 rows.
template <int N>
class Satd4x4Sum {
  public:
    static constexpr int COLUMNS = 16, ROWS = N == 64 ? 8 : 4;
    static TAVU_VEC_INLINE Satd4x4Sum zero() { return {MagnitudeSum<N>::zero()}; }

    TAVU_VEC_INLINE void add_next(BlockPair &at) {
        constexpr int R = COLUMN_REGISTERS<N>;
        VecI16<N> v[size_t{4 * R}];
#pragma GCC unroll 4
        for (int y = 0; y < 4; y++) {
            load_next_butterflies<N>(at.a, at.stride_a, at.b, at.stride_b, v + y * R);
        }
        if constexpr (N == 64) at = at.tile(0, 4);
#pragma GCC unroll 2
        for (int i = 0; i < R; i++) {
            butterfly(v[i], v[i + R]);
            butterfly(v[i + 2 * R], v[i + 3 * R]);
            butterfly_abs(v[i], v[i + 2 * R]);
            butterfly_abs(v[i + R], v[i + 3 * R]);
        }
        sum_.add_pairs(v);
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_.total(); }

    MagnitudeSum<N> sum_;
};

// Transforms two rows horizontally and by the first vertical stage. After three zips the lane number is
// one vertical and two horizontal frequency bits; the third horizontal bit distinguishes the registers.
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

// The sum of SATDs of N / 16 blocks of 8x8 side by side.
template <int N>
class Satd8x8Sum {
  public:
    static constexpr int COLUMNS = N / 2, ROWS = 8;
    static TAVU_VEC_INLINE Satd8x8Sum zero() { return {RoundedSum<N>::zero()}; }

    TAVU_VEC_INLINE void add_next(BlockPair &at) {
        VecI16<N> v[8];
#pragma GCC unroll 8
        for (auto &row : v) row = load_next_difference<N>(at.a, at.stride_a, at.b, at.stride_b);
        transform_rows(v);
        transform_rows(v + 4);
        sum_.add(add(larger(v[0], v[4]), larger(v[2], v[6])),
                 add(larger(v[1], v[5]), larger(v[3], v[7])));
    }
    TAVU_VEC_INLINE int32_t total() const { return sum_.total(); }

    RoundedSum<N> sum_;
};

// One pair of blocks, a row in a register.
TAVU_VEC_INLINE int32_t satd8x8_of_rows(BlockPair at) {
    Satd8x8Sum<16> sum{RoundedSum<16>()};
    sum.add_next(at);
    return sum.total();
}

}  // namespace
}  // namespace tavu

#endif

#endif
