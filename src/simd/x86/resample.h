// Bilinear resampling on x86-64. resample.h documents the operations.
#ifndef TAVU_SIMD_X86_RESAMPLE_H
#define TAVU_SIMD_X86_RESAMPLE_H

#include <cstddef>

#include "simd/vec.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

constexpr int OUTPUTS = LANES / 2;
constexpr int WINDOW = 16;
using I32x4 = int32_t __attribute__((vector_size(16)));
using U16x8 = uint16_t __attribute__((vector_size(16)));

TAVU_VEC_INLINE U16x8 narrow32(I32x4 x, I32x4 y) {
    return as<U16x8>(_mm_packus_epi32(as<__m128i>(x & 0xFFFF), as<__m128i>(y & 0xFFFF)));
}

constexpr int GROUPS = LANES / 16;  // in a register

// One shuffle puts the two samples of each output side by side.
template <int Windows>
struct Gather {
    uint8_t index[size_t{Windows}][LANES];
    uint8_t weight[LANES];
    int32_t offset[GROUPS];
};

// A shuffle yields 0 for an index with the upper bit set. A sample of another window gets such an
// index: adding 0x70 sets the bit from 16 on, and saturates where the subtraction wraps below 0.
template <int Windows>
TAVU_VEC_INLINE void set_positions(Gather<Windows> &gather, int group, U16x8 left, U16x8 right) {
    const __m128i pairs = as<__m128i>((left & 0xFF) | right << 8);
    for (int w = 0; w < Windows; w++) {
        const __m128i index = _mm_sub_epi8(pairs, _mm_set1_epi8(static_cast<char>(w * WINDOW)));
        store(gather.index[w] + 16 * group, _mm_adds_epu8(index, _mm_set1_epi8(0x70)));
    }
}

TAVU_VEC_INLINE void set_weights(uint8_t *p, U16x8 a) { store(p, (8 - a) | a << 8); }

// A window for each group.
TAVU_VEC_INLINE __m128i load_windows(const uint8_t *row, const int32_t (&offset)[1]) {
    return load<16>(row + offset[0]);
}

#if TAVU_LEVEL >= 3
TAVU_VEC_INLINE __m256i load_windows(const uint8_t *row, const int32_t (&offset)[2]) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(load<16>(row + offset[0])),
                                   load<16>(row + offset[1]), 1);
}
#endif

#if TAVU_LEVEL == 4
TAVU_VEC_INLINE __m512i load_windows(const uint8_t *row, const int32_t (&offset)[4]) {
    const int32_t low[] = {offset[0], offset[1]}, high[] = {offset[2], offset[3]};
    return _mm512_inserti64x4(_mm512_castsi256_si512(load_windows(row, low)),
                              load_windows(row, high), 1);
}
#endif

// Indices and weights are operands in memory.
template <int Windows>
TAVU_VEC_INLINE const Gather<Windows> &load_gather(const Gather<Windows> &gather) {
    return gather;
}

template <int Windows>
TAVU_VEC_INLINE U16 lerp_columns(const uint8_t *row, const Gather<Windows> &gather) {
    Reg pairs{};
#pragma GCC unroll 4
    for (int w = 0; w < Windows; w++) {
        pairs |= shuffle_epi8(load_windows(row + w * WINDOW, gather.offset),
                              load<LANES>(gather.index[w]));
    }
    return as<U16>(maddubs_epi16(pairs, load<LANES>(gather.weight)));
}

TAVU_VEC_INLINE U16 lerp_rows(U16 upper, U16 lower, uint16_t b) {
    return upper * static_cast<uint16_t>(8 - b) + lower * b;
}

TAVU_VEC_INLINE U8 narrow6(UWide w) { return narrow({as<I16>(w.lo >> 6), as<I16>(w.hi >> 6)}); }

TAVU_VEC_INLINE I16 round_shift8(I16 v) {
    return as<I16>(mulhrs_epi16(as<Reg>(v), as<Reg>(I16{} + 128)));
}

TAVU_VEC_INLINE U16 load16(const uint16_t *p) { return as<U16>(load<LANES>(p)); }

TAVU_VEC_INLINE void store16(uint16_t *p, U16 v) { store(p, as<Reg>(v)); }

TAVU_VEC_INLINE void prefetch(const uint8_t *p) {
    _mm_prefetch(reinterpret_cast<const char *>(p), _MM_HINT_T0);
}

// Of the first and the second half of the squares.
struct Weights2x2 {
    U16 upper[2], lower[2];
};
constexpr int ROW_SCALE_2X2 = 1;

TAVU_VEC_INLINE U16 lerp_half_2x2(const uint8_t *upper, const uint8_t *lower, const Weights2x2 &w,
                                  int half) {
    upper += half * LANES;
    lower += half * LANES;
    return as<U16>(maddubs_epi16(load<LANES>(upper), as<Reg>(w.upper[half]))) +
           as<U16>(maddubs_epi16(load<LANES>(lower), as<Reg>(w.lower[half])));
}

// From outputs in their order to even and odd groups.
TAVU_VEC_INLINE UWide split_groups(U16 first, U16 second) {
#if TAVU_LEVEL == 4
    const __m512i x = as<__m512i>(first), y = as<__m512i>(second);
    return {as<U16>(_mm512_shuffle_i64x2(x, y, 0x88)), as<U16>(_mm512_shuffle_i64x2(x, y, 0xDD))};
#elif TAVU_LEVEL == 3
    const __m256i x = as<__m256i>(first), y = as<__m256i>(second);
    return {as<U16>(_mm256_permute2x128_si256(x, y, 0x20)),
            as<U16>(_mm256_permute2x128_si256(x, y, 0x31))};
#else
    return {first, second};
#endif
}

// The same in bytes: narrow6() of outputs in their order leaves groups 0, G, 1, G + 1, ...
TAVU_VEC_INLINE U8 narrow6_ordered(U16 first, U16 second) {
    const U8 v = narrow6({first, second});
#if TAVU_LEVEL == 4
    return as<U8>(
        _mm512_permutexvar_epi64(_mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0), as<__m512i>(v)));
#elif TAVU_LEVEL == 3
    return as<U8>(_mm256_permute4x64_epi64(as<__m256i>(v), 0xD8));
#else
    return v;
#endif
}

TAVU_VEC_INLINE UWide lerp_next_2x2(const uint8_t *&upper, const uint8_t *&lower,
                                    const Weights2x2 &w) {
    const U16 first = lerp_half_2x2(upper, lower, w, 0), second = lerp_half_2x2(upper, lower, w, 1);
    upper += 2 * LANES;
    lower += 2 * LANES;
    return split_groups(first, second);
}

TAVU_VEC_INLINE void lerp_row_2x2(const uint8_t *upper, const uint8_t *lower,
                                  const Weights2x2 *weights, int32_t blocks, ptrdiff_t distance,
                                  uint8_t *out) {
    for (; blocks > 0; blocks--, weights++, upper += 2 * LANES, lower += 2 * LANES) {
        prefetch(upper + distance);
        prefetch(lower + distance);
        store_next(out, narrow6_ordered(lerp_half_2x2(upper, lower, *weights, 0),
                                        lerp_half_2x2(upper, lower, *weights, 1)));
    }
}

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif
