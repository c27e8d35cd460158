// The instruction-set level that a file is compiled for, from the compiler's own macros. This is the only
// place that asks for them; all other code tests TAVU_LEVEL.
//
//     0  none: kernels are their scalar models
//     1  NEON, 32-bit or 64-bit
//     2  x86-64-v2 (SSE4.1)
//     3  x86-64-v3 (AVX2)
//     4  x86-64-v4 (AVX-512) with VBMI, the byte permutes that all but the first processors with
//        AVX-512 have
#ifndef TAVU_SIMD_LEVEL_H
#define TAVU_SIMD_LEVEL_H

#if !TAVU_SIMD
#define TAVU_LEVEL 0
#define TAVU_LEVEL_NAMESPACE level0
#elif defined(__ARM_NEON)
#define TAVU_LEVEL 1
#define TAVU_LEVEL_NAMESPACE level1
#elif defined(__AVX512VBMI__)
#define TAVU_LEVEL 4
#define TAVU_LEVEL_NAMESPACE level4
#elif defined(__AVX2__)
#define TAVU_LEVEL 3
#define TAVU_LEVEL_NAMESPACE level3
#elif defined(__SSE4_1__)
#define TAVU_LEVEL 2
#define TAVU_LEVEL_NAMESPACE level2
#else
#define TAVU_LEVEL 0
#define TAVU_LEVEL_NAMESPACE level0
#endif

// Whether the vector layer exists.
#define TAVU_VEC (TAVU_LEVEL > 0)

#endif
