// Attributes of vector code.
#ifndef TAVU_SIMD_ATTRIBUTES_H
#define TAVU_SIMD_ATTRIBUTES_H

#define TAVU_VEC_INLINE __attribute__((always_inline)) inline

// One copy for all callers: GCC would make one for each constant argument.
#if defined(__clang__)
#define TAVU_ONE_COPY __attribute__((noinline))
#else
#define TAVU_ONE_COPY __attribute__((noipa))
#endif

// Compiles a function for ARM state in a build for Thumb state.
#if defined(__thumb__)
#define TAVU_ARM_STATE __attribute__((target("arm")))
#else
#define TAVU_ARM_STATE
#endif

#endif
