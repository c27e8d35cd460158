// The vector layer: one register of bytes and the operations that the kernels are written in.
//
//     LANES                 bytes in a register: 16 (NEON, x86-64-v2), 32 (v3) or 64 (v4)
//     U8, I16, U16          a register of unsigned bytes, of 16-bit lanes; GNU vector types, so that
//                           + - * << >> and scalars on one side work on each lane
//     Wide, UWide           LANES 16-bit values in two registers, in an order that only widening
//                           and narrowing know
//     load_next(p), store_next(p, v)
//                           LANES bytes from or to any address
//     splat(x)              one byte in every lane
//     choose(c, use)        calls use(choice), in which pick(choice, a, b) is a if c holds, else b
//     widen(v)              to signed 16 bits, zero-extended
//     narrow(w)             to bytes, saturated to 0..255
//     rgb_to_yuv(r, g, b, &y, &u, &v)
//                           y = (77 r + 150 g + 29 b + 128) >> 8,
//                           u = 128 + ((128 b - 43 r - 85 g + 128) >> 8),
//                           v = 128 + ((128 r - 107 g - 21 b + 128) >> 8), 256 saturated to 255
//     chroma_terms(u, v)    with 128 subtracted from u and v: r = (359 v + 128) >> 8,
//                           g = (183 v + 88 u + 128) >> 8, b = (454 u + 128) >> 8, exact on all inputs
//     store_next_interleaved(p, a, b[, c[, d]])
//                           a0 b0 [c0 [d0]] a1 b1 ... to any address
//     load_next_interleaved(p, &a, &b, &c[, &d])
//                           the reverse, of 3 or 4
//
// Operations with next in their names advance their pointers past what they load or store. All of the
// layer is in unnamed namespaces, because the linker must not merge a body compiled for v3 into a caller
// compiled for v2. Code that several files of a level share is in TAVU_LEVEL_NAMESPACE.
#ifndef TAVU_SIMD_VEC_H
#define TAVU_SIMD_VEC_H

#include "simd/attributes.h"
#include "simd/level.h"

#if TAVU_LEVEL == 1
#include "simd/arm/vec.h"
#elif TAVU_LEVEL == 4
#include "simd/x86/interleave_vbmi.h"
#elif TAVU_LEVEL >= 2
#include "simd/x86/interleave.h"
#endif

#endif
