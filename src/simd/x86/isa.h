// The instructions that operations on blocks take, for registers of 16 bytes and, from v3 and v4 on, of
// 32 and 64.
#ifndef TAVU_SIMD_X86_ISA_H
#define TAVU_SIMD_X86_ISA_H

#include <immintrin.h>

#include <cstdint>

namespace tavu {
namespace {

// Each instruction under one name for registers of every width.
template <int N>
struct Isa;

#define TAVU_UNARY(name) \
    static TAVU_VEC_INLINE Register name(Register a) { return TAVU_MM(name)(a); }
#define TAVU_BINARY(name) \
    static TAVU_VEC_INLINE Register name(Register a, Register b) { return TAVU_MM(name)(a, b); }
#define TAVU_ISA                                                                                   \
    TAVU_UNARY(abs_epi16)                                                                          \
    TAVU_BINARY(add_epi16)                                                                         \
    TAVU_BINARY(add_epi32)                                                                         \
    TAVU_BINARY(madd_epi16)                                                                        \
    TAVU_BINARY(maddubs_epi16)                                                                     \
    TAVU_BINARY(max_epi16)                                                                         \
    TAVU_BINARY(sad_epu8)                                                                          \
    TAVU_BINARY(sub_epi16)                                                                         \
    TAVU_BINARY(unpackhi_epi8)                                                                     \
    TAVU_BINARY(unpackhi_epi16)                                                                    \
    TAVU_BINARY(unpackhi_epi64)                                                                    \
    TAVU_BINARY(unpacklo_epi8)                                                                     \
    TAVU_BINARY(unpacklo_epi16)                                                                    \
    TAVU_BINARY(unpacklo_epi64)                                                                    \
    static TAVU_VEC_INLINE Register odd_to_even(Register a) { return TAVU_MM(srli_epi32)(a, 16); } \
    static TAVU_VEC_INLINE Register quarter(Register a) { return TAVU_MM(srai_epi32)(a, 2); }      \
    template <int Order>                                                                           \
    static TAVU_VEC_INLINE Register shuffle_epi32(Register a) {                                    \
        return TAVU_MM(shuffle_epi32)(a, static_cast<TAVU_ORDER>(Order));                          \
    }

#define TAVU_MM(name) _mm_##name
#define TAVU_ORDER int
template <>
struct Isa<16> {
    using Register = __m128i;
    TAVU_ISA
};
#undef TAVU_MM

#if defined(__AVX2__)
#define TAVU_MM(name) _mm256_##name
template <>
struct Isa<32> {
    using Register = __m256i;
    TAVU_ISA
};
#undef TAVU_MM
#endif

#undef TAVU_ORDER
#if defined(__AVX512BW__)
#define TAVU_MM(name) _mm512_##name
#define TAVU_ORDER _MM_PERM_ENUM
template <>
struct Isa<64> {
    using Register = __m512i;
    TAVU_ISA
};
#undef TAVU_MM
#undef TAVU_ORDER
constexpr int WIDEST = 64;
#elif defined(__AVX2__)
constexpr int WIDEST = 32;
#else
constexpr int WIDEST = 16;
#endif

#undef TAVU_UNARY
#undef TAVU_BINARY
#undef TAVU_ISA

template <int N>
using Bytes = typename Isa<N>::Register;
template <int N>
using Words = typename Isa<N>::Register;
template <class R>
using Of = Isa<sizeof(R)>;

}  // namespace
}  // namespace tavu

#endif
