// Bilinear resampling on x86-64. resample.h documents the operations.
#ifndef TAVU_SIMD_X86_RESAMPLE_H
#define TAVU_SIMD_X86_RESAMPLE_H

#include <immintrin.h>

#include <cstring>

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

#if TAVU_LEVEL >= 3
#define TAVU_MM(op) _mm256_##op
#else
#define TAVU_MM(op) _mm_##op
#endif

TAVU_VEC_INLINE U16x8 narrow32(I32x4 x, I32x4 y) {
    return as<U16x8>(_mm_packus_epi32(as<__m128i>(x & 0xFFFF), as<__m128i>(y & 0xFFFF)));
}

// One shuffle brings the samples of a window side by side. Those of other windows become 0, for
// their indices have the upper bit set: from 16 on by the sum, below 0 by its saturation.
template <int Windows>
struct Taps {
    uint8_t mask[size_t{Windows}][LANES];
    uint8_t weight[LANES];
    int32_t offset[LANES / 16];
};

template <int Windows>
TAVU_VEC_INLINE void set_taps(Taps<Windows> &taps, int group, U16x8 left, U16x8 right) {
    const __m128i pairs = as<__m128i>((left & 0xFF) | right << 8);
    for (int w = 0; w < Windows; w++) {
        const __m128i index = _mm_sub_epi8(pairs, _mm_set1_epi8(static_cast<char>(w * WINDOW)));
        store(taps.mask[w] + 16 * group, _mm_adds_epu8(index, _mm_set1_epi8(0x70)));
    }
}

TAVU_VEC_INLINE void set_weights(uint8_t *p, U16x8 a) { store(p, (8 - a) | a << 8); }

// A window for every group.
TAVU_VEC_INLINE Reg load_windows(const uint8_t *first, [[maybe_unused]] const uint8_t *second) {
    const __m128i low = load<16>(first);
#if TAVU_LEVEL >= 3
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), load<16>(second), 1);
#else
    return low;
#endif
}

// Masks and weights are operands in memory.
template <int Windows>
using LoadedTaps = const Taps<Windows> &;

template <int Windows>
TAVU_VEC_INLINE LoadedTaps<Windows> load_taps(const Taps<Windows> &taps) {
    return taps;
}

template <int Windows>
TAVU_VEC_INLINE U16 weigh(const uint8_t *row, const Taps<Windows> &taps) {
    const uint8_t *first = row + taps.offset[0], *second = row + taps.offset[LANES / 16 - 1];
    Reg pairs{};
#pragma GCC unroll 4
    for (int w = 0; w < Windows; w++) {
        pairs |= TAVU_MM(shuffle_epi8)(load_windows(first + w * WINDOW, second + w * WINDOW),
                                       load<LANES>(taps.mask[w]));
    }
    return as<U16>(TAVU_MM(maddubs_epi16)(pairs, load<LANES>(taps.weight)));
}

TAVU_VEC_INLINE U16 mix(U16 x, U16 y, uint16_t weight_x, uint16_t weight_y) {
    return x * weight_x + y * weight_y;
}

// Of two units of OUTPUTS columns each.
struct HalfWeights {
    U16 top[2], bottom[2];
};
constexpr int BYTES_UNIT = 1;

TAVU_VEC_INLINE U16 halve_unit(const uint8_t *top, const uint8_t *bottom, const HalfWeights &w,
                               int unit) {
    top += unit * LANES;
    bottom += unit * LANES;
    return as<U16>(TAVU_MM(maddubs_epi16)(load<LANES>(top), as<Reg>(w.top[unit]))) +
           as<U16>(TAVU_MM(maddubs_epi16)(load<LANES>(bottom), as<Reg>(w.bottom[unit])));
}

TAVU_VEC_INLINE UWide halve(const uint8_t *&top, const uint8_t *&bottom, const HalfWeights &w) {
    const U16 x = halve_unit(top, bottom, w, 0), y = halve_unit(top, bottom, w, 1);
    top += 2 * LANES;
    bottom += 2 * LANES;
#if TAVU_LEVEL >= 3
    return {as<U16>(_mm256_permute2x128_si256(as<Reg>(x), as<Reg>(y), 0x20)),
            as<U16>(_mm256_permute2x128_si256(as<Reg>(x), as<Reg>(y), 0x31))};
#else
    return {x, y};
#endif
}

TAVU_VEC_INLINE U8 narrow6(UWide w) { return narrow({as<I16>(w.lo >> 6), as<I16>(w.hi >> 6)}); }

TAVU_VEC_INLINE void prefetch(const uint8_t *p) {
    _mm_prefetch(reinterpret_cast<const char *>(p), _MM_HINT_T0);
}

TAVU_VEC_INLINE void halve_to_bytes(const uint8_t *top, const uint8_t *bottom,
                                    const HalfWeights *&weights, int32_t blocks, ptrdiff_t ahead,
                                    uint8_t *out) {
    for (; blocks > 0; blocks--, weights++, top += 2 * LANES, bottom += 2 * LANES) {
        prefetch(top + ahead);
        prefetch(bottom + ahead);
        const U8 v =
            narrow6({halve_unit(top, bottom, *weights, 0), halve_unit(top, bottom, *weights, 1)});
#if TAVU_LEVEL >= 3
        store_next(out, as<U8>(_mm256_permute4x64_epi64(as<Reg>(v), 0xD8)));
#else
        store_next(out, v);
#endif
    }
}

TAVU_VEC_INLINE I16 round_shift8(I16 v) {
    return as<I16>(TAVU_MM(mulhrs_epi16)(as<Reg>(v), as<Reg>(I16{} + 128)));
}

TAVU_VEC_INLINE U16 load16(const uint16_t *p) { return as<U16>(load<LANES>(p)); }

TAVU_VEC_INLINE void store16(uint16_t *p, U16 v) {
    store(reinterpret_cast<uint8_t *>(p), as<Reg>(v));
}

#undef TAVU_MM

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif
