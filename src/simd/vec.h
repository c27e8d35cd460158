// The vector layer: one register of bytes and the operations that the kernels are written in.
//
//     LANES                 bytes in a register: 16 (NEON, x86-64-v2), 32 (v3) or 64 (v4)
//     U8, I16, U16          a register of unsigned bytes, of 16-bit lanes; GNU vector types, so that
//                           + - * << >> and scalars on one side work on each lane
//     Wide, UWide           LANES 16-bit values in two registers, in an order that only widening
//                           and narrowing know
//     load_next(p), store_next(p, v)  LANES bytes from or to any address; p moves on behind them
//     splat(x)              one byte in every lane
//     choose(c, use)        calls use(choice), in which pick(choice, a, b) is a if c holds, else b
//     widen(v)              to signed 16 bits, zero-extended
//     narrow(w)             to bytes, saturated to 0..255
//     rgb_to_yuv(r, g, b, &y, &u, &v)
//                           y = (77 r + 150 g + 29 b + 128) >> 8,
//                           u = 128 + ((128 b - 43 r - 85 g + 128) >> 8),
//                           v = 128 + ((128 r - 107 g - 21 b + 128) >> 8), 256 saturated to 255
//     chroma_terms(u, v)    with 128 taken off u and v, exact on every input: r = (359 v + 128) >> 8,
//                           g = (183 v + 88 u + 128) >> 8, b = (454 u + 128) >> 8
//     store_next_interleaved(p, a, b[, c[, d]])
//                           a0 b0 [c0 [d0]] a1 b1 ... to any address; p moves on behind them
//     load_next_interleaved(p, &a, &b, &c[, &d])
//                           the reverse, of 3 or 4
//
// TAVU_VEC is 1 where the layer exists; elsewhere kernels are their scalar models. All of it lies in
// unnamed namespaces: the linker must not merge a body compiled for v3 into a caller compiled for v2.
// What several files share at one level lies in TAVU_LEVEL_NAMESPACE.
#ifndef TAVU_SIMD_VEC_H
#define TAVU_SIMD_VEC_H

#include <cstdint>
#include <type_traits>

#define TAVU_VEC_INLINE __attribute__((always_inline)) inline

// One copy of what several callers share: GCC would make one for each constant argument.
#if defined(__clang__)
#define TAVU_ONE_COPY __attribute__((noinline))
#else
#define TAVU_ONE_COPY __attribute__((noipa))
#endif

#if !defined(TAVU_LEVEL)
#define TAVU_LEVEL_NAMESPACE only_level
#elif TAVU_LEVEL == 2
#define TAVU_LEVEL_NAMESPACE level2
#elif TAVU_LEVEL == 3
#define TAVU_LEVEL_NAMESPACE level3
#else
#define TAVU_LEVEL_NAMESPACE level4
#endif

#if TAVU_SIMD && defined(__ARM_NEON)
#define TAVU_VEC 1
#include "simd/arm/vec.h"
#elif TAVU_SIMD && defined(__SSE4_1__)
#define TAVU_VEC 1
#include "simd/x86/vec.h"
#else
#define TAVU_VEC 0
#endif

#endif
