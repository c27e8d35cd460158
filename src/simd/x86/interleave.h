// Interleaving loads and stores of the vector layer: v2 (SSE4.1) and v3 (AVX2). The end of
// vec_x86.h.
#ifndef TAVU_SIMD_X86_INTERLEAVE_H
#define TAVU_SIMD_X86_INTERLEAVE_H

namespace tavu {
namespace {

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b) {
    const Register ra = as<Register>(a), rb = as<Register>(b);
    const Register v0 = TAVU_MM(unpacklo_epi8)(ra, rb), v1 = TAVU_MM(unpackhi_epi8)(ra, rb);
#if defined(__AVX2__)
    store_register(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store_register(p + 32, _mm256_permute2x128_si256(v0, v1, 0x31));
#else
    store_register(p, v0);
    store_register(p + 16, v1);
#endif
    p += 2 * LANES;
}

// Of 16 pixels of 3 bytes, byte j of output register k holds channel (j + k) % 3 of pixel
// (16 k + j) / 3: each position takes each channel once, so one shuffle a channel serves all three.
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

// The reverse: where pixel j % 16 of the channel stands.
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

TAVU_VEC_INLINE Register shuffle(Register v, const Shuffle &s) {
    return TAVU_MM(shuffle_epi8)(v, load_register(s.bytes));
}

// The lanes of x, y and z at positions whose remainder by 3 is 0, 1 and 2.
TAVU_VEC_INLINE Register every_third(Register x, Register y, Register z) {
    x = TAVU_MM(blendv_epi8)(x, y, load_register(EVERY_THIRD_1.bytes));
    return TAVU_MM(blendv_epi8)(x, z, load_register(EVERY_THIRD_2.bytes));
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c) {
    const Register x = shuffle(as<Register>(a), INTERLEAVE3[0]),
                   y = shuffle(as<Register>(b), INTERLEAVE3[1]),
                   z = shuffle(as<Register>(c), INTERLEAVE3[2]);
    const Register v0 = every_third(x, y, z), v1 = every_third(y, z, x), v2 = every_third(z, x, y);
#if defined(__AVX2__)
    store_register(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store_register(p + 32, _mm256_blend_epi32(v2, v0, 0xF0));
    store_register(p + 64, _mm256_permute2x128_si256(v1, v2, 0x31));
#else
    store_register(p, v0);
    store_register(p + 16, v1);
    store_register(p + 32, v2);
#endif
    p += 3 * LANES;
}

TAVU_VEC_INLINE void store_next_interleaved(uint8_t *&p, U8 a, U8 b, U8 c, U8 d) {
    const Register ra = as<Register>(a), rb = as<Register>(b), rc = as<Register>(c),
                   rd = as<Register>(d);
    const Register ab0 = TAVU_MM(unpacklo_epi8)(ra, rb), ab1 = TAVU_MM(unpackhi_epi8)(ra, rb);
    const Register cd0 = TAVU_MM(unpacklo_epi8)(rc, rd), cd1 = TAVU_MM(unpackhi_epi8)(rc, rd);
    const Register v0 = TAVU_MM(unpacklo_epi16)(ab0, cd0), v1 = TAVU_MM(unpackhi_epi16)(ab0, cd0);
    const Register v2 = TAVU_MM(unpacklo_epi16)(ab1, cd1), v3 = TAVU_MM(unpackhi_epi16)(ab1, cd1);
#if defined(__AVX2__)
    store_register(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store_register(p + 32, _mm256_permute2x128_si256(v2, v3, 0x20));
    store_register(p + 64, _mm256_permute2x128_si256(v0, v1, 0x31));
    store_register(p + 96, _mm256_permute2x128_si256(v2, v3, 0x31));
#else
    store_register(p, v0);
    store_register(p + 16, v1);
    store_register(p + 32, v2);
    store_register(p + 48, v3);
#endif
    p += 4 * LANES;
}

TAVU_VEC_INLINE void load_next_interleaved(const uint8_t *&p, U8 *a, U8 *b, U8 *c) {
    const Register r0 = load_register(p), r1 = load_register(p + LANES),
                   r2 = load_register(p + 2 * LANES);
#if defined(__AVX2__)
    const Register v0 = _mm256_blend_epi32(r0, r1, 0xF0),
                   v1 = _mm256_permute2x128_si256(r0, r2, 0x21),
                   v2 = _mm256_blend_epi32(r1, r2, 0xF0);
#else
    const Register v0 = r0, v1 = r1, v2 = r2;
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
    Register v[4];
    for (int i = 0; i < 4; i++) v[i] = load_register(p + i * LANES);
#if defined(__AVX2__)
    const Register r0 = v[0], r1 = v[1];
    v[0] = _mm256_permute2x128_si256(r0, v[2], 0x20);
    v[1] = _mm256_permute2x128_si256(r0, v[2], 0x31);
    v[2] = _mm256_permute2x128_si256(r1, v[3], 0x20);
    v[3] = _mm256_permute2x128_si256(r1, v[3], 0x31);
#endif
    for (Register &r : v) r = shuffle(r, DEINTERLEAVE4);
    const Register ab0 = TAVU_MM(unpacklo_epi32)(v[0], v[1]),
                   cd0 = TAVU_MM(unpackhi_epi32)(v[0], v[1]),
                   ab1 = TAVU_MM(unpacklo_epi32)(v[2], v[3]),
                   cd1 = TAVU_MM(unpackhi_epi32)(v[2], v[3]);
    *a = as<U8>(TAVU_MM(unpacklo_epi64)(ab0, ab1));
    *b = as<U8>(TAVU_MM(unpackhi_epi64)(ab0, ab1));
    *c = as<U8>(TAVU_MM(unpacklo_epi64)(cd0, cd1));
    *d = as<U8>(TAVU_MM(unpackhi_epi64)(cd0, cd1));
    p += 4 * LANES;
}

}  // namespace
}  // namespace tavu

#endif
