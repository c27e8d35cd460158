// Interleaving loads and stores of the vector layer: v2 (SSE4.1) and v3 (AVX2).
#ifndef TAVU_SIMD_X86_INTERLEAVE_H
#define TAVU_SIMD_X86_INTERLEAVE_H

#include "simd/x86/vec.h"

namespace tavu {
namespace {

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b) {
    const Reg ra = as<Reg>(a), rb = as<Reg>(b);
    const Reg v0 = unpacklo_epi8(ra, rb), v1 = unpackhi_epi8(ra, rb);
#if TAVU_LEVEL == 3
    store(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store(p + 32, _mm256_permute2x128_si256(v0, v1, 0x31));
#else
    store(p, v0);
    store(p + 16, v1);
#endif
    p += 2 * LANES;
}

// Byte j of the output register k of 16 pixels of 3 bytes is channel (j + k) % 3 of pixel
// (16 k + j) / 3. Each position takes each channel once, so one shuffle per channel serves all three
// registers.
struct Shuffle {
    alignas(32) uint8_t bytes[32];
};

constexpr Shuffle interleave3_shuffle(int channel) {
    Shuffle s{};
    for (int j = 0; j < 32; j++) {
        const int k = (channel + 48 - j % 16) % 3;
        s.bytes[j] = static_cast<uint8_t>((16 * k + j % 16) / 3);
    }
    return s;
}

constexpr Shuffle interleave3_mask(int remainder) {
    Shuffle s{};
    for (int j = 0; j < 32; j++) s.bytes[j] = j % 16 % 3 == remainder ? 0xFF : 0;
    return s;
}

// The reverse: the position of pixel j % 16 of the channel.
constexpr Shuffle deinterleave3_shuffle(int channel) {
    Shuffle s{};
    for (int j = 0; j < 32; j++) s.bytes[j] = static_cast<uint8_t>((3 * (j % 16) + channel) % 16);
    return s;
}

constexpr Shuffle DEINTERLEAVE3[3] = {deinterleave3_shuffle(0), deinterleave3_shuffle(1),
                                      deinterleave3_shuffle(2)};
constexpr Shuffle INTERLEAVE3[3] = {interleave3_shuffle(0), interleave3_shuffle(1),
                                    interleave3_shuffle(2)};
constexpr Shuffle EVERY_THIRD_1 = interleave3_mask(1), EVERY_THIRD_2 = interleave3_mask(2);

TAVU_VEC_INLINE Reg shuffle(Reg v, const Shuffle &s) {
    return shuffle_epi8(v, load<LANES>(s.bytes));
}

// The lanes of x, y and z at positions whose remainder by 3 is 0, 1 and 2.
TAVU_VEC_INLINE Reg every_third(Reg x, Reg y, Reg z) {
    x = blendv_epi8(x, y, load<LANES>(EVERY_THIRD_1.bytes));
    return blendv_epi8(x, z, load<LANES>(EVERY_THIRD_2.bytes));
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c) {
    const Reg x = shuffle(as<Reg>(a), INTERLEAVE3[0]), y = shuffle(as<Reg>(b), INTERLEAVE3[1]),
              z = shuffle(as<Reg>(c), INTERLEAVE3[2]);
    const Reg v0 = every_third(x, y, z), v1 = every_third(y, z, x), v2 = every_third(z, x, y);
#if TAVU_LEVEL == 3
    store(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store(p + 32, _mm256_blend_epi32(v2, v0, 0xF0));
    store(p + 64, _mm256_permute2x128_si256(v1, v2, 0x31));
#else
    store(p, v0);
    store(p + 16, v1);
    store(p + 32, v2);
#endif
    p += 3 * LANES;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c, U8 d) {
    const Reg ra = as<Reg>(a), rb = as<Reg>(b), rc = as<Reg>(c), rd = as<Reg>(d);
    const Reg ab0 = unpacklo_epi8(ra, rb), ab1 = unpackhi_epi8(ra, rb);
    const Reg cd0 = unpacklo_epi8(rc, rd), cd1 = unpackhi_epi8(rc, rd);
    const Reg v0 = unpacklo_epi16(ab0, cd0), v1 = unpackhi_epi16(ab0, cd0);
    const Reg v2 = unpacklo_epi16(ab1, cd1), v3 = unpackhi_epi16(ab1, cd1);
#if TAVU_LEVEL == 3
    store(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store(p + 32, _mm256_permute2x128_si256(v2, v3, 0x20));
    store(p + 64, _mm256_permute2x128_si256(v0, v1, 0x31));
    store(p + 96, _mm256_permute2x128_si256(v2, v3, 0x31));
#else
    store(p, v0);
    store(p + 16, v1);
    store(p + 32, v2);
    store(p + 48, v3);
#endif
    p += 4 * LANES;
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c) {
    const Reg r0 = load<LANES>(p), r1 = load<LANES>(p + LANES), r2 = load<LANES>(p + 2 * LANES);
#if TAVU_LEVEL == 3
    const Reg v0 = _mm256_blend_epi32(r0, r1, 0xF0), v1 = _mm256_permute2x128_si256(r0, r2, 0x21),
              v2 = _mm256_blend_epi32(r1, r2, 0xF0);
#else
    const Reg v0 = r0, v1 = r1, v2 = r2;
#endif
    *a = as<U8>(shuffle(every_third(v0, v2, v1), DEINTERLEAVE3[0]));
    *b = as<U8>(shuffle(every_third(v1, v0, v2), DEINTERLEAVE3[1]));
    *c = as<U8>(shuffle(every_third(v2, v1, v0), DEINTERLEAVE3[2]));
    p += 3 * LANES;
}

// Four pixels of four bytes to four bytes of each channel.
constexpr Shuffle deinterleave4_shuffle() {
    Shuffle s{};
    for (int j = 0; j < 32; j++) s.bytes[j] = static_cast<uint8_t>(j % 4 * 4 + j % 16 / 4);
    return s;
}

constexpr Shuffle DEINTERLEAVE4 = deinterleave4_shuffle();

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c, U8 *d) {
    Reg v[4];
    for (int i = 0; i < 4; i++) v[i] = load<LANES>(p + i * LANES);
#if TAVU_LEVEL == 3
    const Reg r0 = v[0], r1 = v[1];
    v[0] = _mm256_permute2x128_si256(r0, v[2], 0x20);
    v[1] = _mm256_permute2x128_si256(r0, v[2], 0x31);
    v[2] = _mm256_permute2x128_si256(r1, v[3], 0x20);
    v[3] = _mm256_permute2x128_si256(r1, v[3], 0x31);
#endif
    for (Reg &r : v) r = shuffle(r, DEINTERLEAVE4);
    const Reg ab0 = unpacklo_epi32(v[0], v[1]), cd0 = unpackhi_epi32(v[0], v[1]),
              ab1 = unpacklo_epi32(v[2], v[3]), cd1 = unpackhi_epi32(v[2], v[3]);
    *a = as<U8>(unpacklo_epi64(ab0, ab1));
    *b = as<U8>(unpackhi_epi64(ab0, ab1));
    *c = as<U8>(unpacklo_epi64(cd0, cd1));
    *d = as<U8>(unpackhi_epi64(cd0, cd1));
    p += 4 * LANES;
}

}  // namespace
}  // namespace tavu

#endif
