// Interleaving loads and stores of the vector layer for v4, whose permutes move any byte of two registers
// to any position.
#ifndef TAVU_SIMD_X86_INTERLEAVE_VBMI_H
#define TAVU_SIMD_X86_INTERLEAVE_VBMI_H

#include "simd/x86/vec.h"

namespace tavu {
namespace {

// The source of each byte: 0 to 63 in the first register, 64 to 127 in the second one. Permutes ignore
// higher bits.
struct Order {
    alignas(64) uint8_t bytes[64];
};

// Output register `k` of CHANNELS interleaved channels. The two registers are the first two channels.
template <int CHANNELS>
constexpr Order interleave(int k) {
    Order order{};
    for (int j = 0; j < 64; j++) {
        const int i = 64 * k + j;
        order.bytes[j] = static_cast<uint8_t>(i % CHANNELS % 2 * 64 + i / CHANNELS);
    }
    return order;
}

// The same for two registers of 16-bit units, in bytes.
constexpr Order interleave_pairs(int k) {
    Order order{};
    for (int j = 0; j < 64; j += 2) {
        const int i = 32 * k + j / 2;
        order.bytes[j] = static_cast<uint8_t>(i % 2 * 32 + i / 2);
    }
    return order;
}

constexpr Order deinterleave3(int channel) {
    Order order{};
    for (int j = 0; j < 64; j++) order.bytes[j] = static_cast<uint8_t>(3 * j + channel);
    return order;
}

// A channel of 32 pixels, followed by the next channel.
constexpr Order deinterleave4(int channel) {
    Order order{};
    for (int j = 0; j < 64; j++) {
        order.bytes[j] = static_cast<uint8_t>(j % 32 * 4 + channel + j / 32);
    }
    return order;
}

constexpr Order INTERLEAVE2[2] = {interleave<2>(0), interleave<2>(1)};
constexpr Order INTERLEAVE3[3] = {interleave<3>(0), interleave<3>(1), interleave<3>(2)};
constexpr Order INTERLEAVE_PAIRS[2] = {interleave_pairs(0), interleave_pairs(1)};
constexpr Order DEINTERLEAVE3[3] = {deinterleave3(0), deinterleave3(1), deinterleave3(2)};
constexpr Order DEINTERLEAVE4[2] = {deinterleave4(0), deinterleave4(2)};

TAVU_VEC_INLINE __m512i permute(U8 first, U8 second, const Order &order) {
    return _mm512_permutex2var_epi8(as<__m512i>(first), load<LANES>(order.bytes),
                                    as<__m512i>(second));
}

// Takes bytes of a third register where the mask is set.
TAVU_VEC_INLINE __m512i permute_third(__m512i v, __mmask64 mask, U8 third, const Order &order) {
    return _mm512_mask_permutexvar_epi8(v, mask, load<LANES>(order.bytes), as<__m512i>(third));
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b) {
    for (int k = 0; k < 2; k++) store(p + 64 * k, permute(a, b, INTERLEAVE2[k]));
    p += 2 * LANES;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c) {
    constexpr uint64_t EVERY_THIRD = 0x9249249249249249;  // from bit 0 on
    for (int k = 0; k < 3; k++) {
        const uint64_t third = EVERY_THIRD << (2 - k);  // the channel of byte j is (64 k + j) % 3
        store(p + 64 * k, permute_third(permute(a, b, INTERLEAVE3[k]), third, c, INTERLEAVE3[k]));
    }
    p += 3 * LANES;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c, U8 d) {
    for (int half = 0; half < 2; half++) {
        const __m512i ab = permute(a, b, INTERLEAVE2[half]), cd = permute(c, d, INTERLEAVE2[half]);
        for (int k = 0; k < 2; k++) {
            const __m512i order = load<LANES>(INTERLEAVE_PAIRS[k].bytes);
            store(p + 128 * half + 64 * k, _mm512_permutex2var_epi16(ab, order, cd));
        }
    }
    p += 4 * LANES;
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c) {
    const U8 r0 = load_next(p), r1 = load_next(p), r2 = load_next(p);
    U8 *const out[3] = {a, b, c};
    for (int channel = 0; channel < 3; channel++) {
        const uint64_t third = ~uint64_t{0}
                               << (128 - channel + 2) / 3;  // from 3 j + channel = 128 on
        const Order &order = DEINTERLEAVE3[channel];
        *out[channel] = as<U8>(permute_third(permute(r0, r1, order), third, r2, order));
    }
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c, U8 *d) {
    const U8 r0 = load_next(p), r1 = load_next(p), r2 = load_next(p), r3 = load_next(p);
    const __m512i ab0 = permute(r0, r1, DEINTERLEAVE4[0]), ab1 = permute(r2, r3, DEINTERLEAVE4[0]),
                  cd0 = permute(r0, r1, DEINTERLEAVE4[1]), cd1 = permute(r2, r3, DEINTERLEAVE4[1]);
    constexpr int LOWER_HALVES = 0x44, UPPER_HALVES = 0xEE;
    *a = as<U8>(_mm512_shuffle_i64x2(ab0, ab1, LOWER_HALVES));
    *b = as<U8>(_mm512_shuffle_i64x2(ab0, ab1, UPPER_HALVES));
    *c = as<U8>(_mm512_shuffle_i64x2(cd0, cd1, LOWER_HALVES));
    *d = as<U8>(_mm512_shuffle_i64x2(cd0, cd1, UPPER_HALVES));
}

}  // namespace
}  // namespace tavu

#endif
