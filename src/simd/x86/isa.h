// Instructions under one name for registers of 16 bytes and, from v3 and v4 on, of 32 and 64:
// add_epi16(a, b) is _mm_add_epi16, _mm256_add_epi16 or _mm512_add_epi16.
#ifndef TAVU_SIMD_X86_ISA_H
#define TAVU_SIMD_X86_ISA_H

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "simd/attributes.h"
#include "simd/level.h"

namespace tavu {
namespace {

#define TAVU_UNARY(name) \
    TAVU_VEC_INLINE TAVU_REGISTER name(TAVU_REGISTER a) { return TAVU_MM(name)(a); }
#define TAVU_BINARY(name)                                                  \
    TAVU_VEC_INLINE TAVU_REGISTER name(TAVU_REGISTER a, TAVU_REGISTER b) { \
        return TAVU_MM(name)(a, b);                                        \
    }
#define TAVU_IMMEDIATE(name, type)                         \
    template <int Value>                                   \
    TAVU_VEC_INLINE TAVU_REGISTER name(TAVU_REGISTER a) {  \
        return TAVU_MM(name)(a, static_cast<type>(Value)); \
    }
#define TAVU_ISA                    \
    TAVU_UNARY(abs_epi16)           \
    TAVU_BINARY(add_epi16)          \
    TAVU_BINARY(add_epi32)          \
    TAVU_BINARY(adds_epu8)          \
    TAVU_BINARY(madd_epi16)         \
    TAVU_BINARY(maddubs_epi16)      \
    TAVU_BINARY(max_epi16)          \
    TAVU_BINARY(min_epu8)           \
    TAVU_BINARY(mulhrs_epi16)       \
    TAVU_BINARY(packs_epi16)        \
    TAVU_BINARY(packus_epi16)       \
    TAVU_BINARY(sad_epu8)           \
    TAVU_BINARY(shuffle_epi8)       \
    TAVU_BINARY(sub_epi16)          \
    TAVU_BINARY(unpackhi_epi8)      \
    TAVU_BINARY(unpackhi_epi16)     \
    TAVU_BINARY(unpackhi_epi32)     \
    TAVU_BINARY(unpackhi_epi64)     \
    TAVU_BINARY(unpacklo_epi8)      \
    TAVU_BINARY(unpacklo_epi16)     \
    TAVU_BINARY(unpacklo_epi32)     \
    TAVU_BINARY(unpacklo_epi64)     \
    TAVU_IMMEDIATE(srai_epi16, int) \
    TAVU_IMMEDIATE(srai_epi32, int) \
    TAVU_IMMEDIATE(srli_epi32, int) \
    TAVU_IMMEDIATE(shuffle_epi32, TAVU_ORDER)

template <int N>
struct RegisterOf;

#define TAVU_MM(name) _mm_##name
#define TAVU_REGISTER __m128i
#define TAVU_ORDER int
template <>
struct RegisterOf<16> {
    using Type = __m128i;
};
TAVU_ISA
#undef TAVU_MM
#undef TAVU_REGISTER

#if TAVU_LEVEL >= 3
#define TAVU_MM(name) _mm256_##name
#define TAVU_REGISTER __m256i
template <>
struct RegisterOf<32> {
    using Type = __m256i;
};
TAVU_ISA
#undef TAVU_MM
#undef TAVU_REGISTER
#endif

#undef TAVU_ORDER
#if TAVU_LEVEL >= 4
#define TAVU_MM(name) _mm512_##name
#define TAVU_REGISTER __m512i
#define TAVU_ORDER _MM_PERM_ENUM
template <>
struct RegisterOf<64> {
    using Type = __m512i;
};
TAVU_ISA
#undef TAVU_MM
#undef TAVU_REGISTER
#undef TAVU_ORDER
#endif

#undef TAVU_UNARY
#undef TAVU_BINARY
#undef TAVU_IMMEDIATE
#undef TAVU_ISA

TAVU_VEC_INLINE uint32_t movemask_epi8(__m128i v) {
    return static_cast<uint32_t>(_mm_movemask_epi8(v));
}
TAVU_VEC_INLINE __m128i blendv_epi8(__m128i a, __m128i b, __m128i mask) {
    return _mm_blendv_epi8(a, b, mask);
}
#if TAVU_LEVEL >= 3
TAVU_VEC_INLINE uint32_t movemask_epi8(__m256i v) {
    return static_cast<uint32_t>(_mm256_movemask_epi8(v));
}
TAVU_VEC_INLINE __m256i blendv_epi8(__m256i a, __m256i b, __m256i mask) {
    return _mm256_blendv_epi8(a, b, mask);
}
#endif
#if TAVU_LEVEL >= 4
TAVU_VEC_INLINE uint64_t movemask_epi8(__m512i v) { return _mm512_movepi8_mask(v); }
#endif

// N bytes.
template <int N>
using Register = typename RegisterOf<N>::Type;

// Registers from and to memory of any alignment.
template <int N>
TAVU_VEC_INLINE Register<N> load(const void *p) {
    Register<N> v;
    memcpy(&v, p, sizeof v);
    return v;
}

template <class R>
TAVU_VEC_INLINE void store(void *p, R v) {
    memcpy(p, &v, sizeof v);
}

}  // namespace
}  // namespace tavu

#endif
