// Exporting a kernel at the instruction-set levels that the build has.
//
// TAVU_LEVEL is 2, 3 or 4 where a file is compiled once for each of x86-64-v2, v3 and, up to
// TAVU_TOP_LEVEL, v4. The v2 pass then exports NAME as an indirect function: the dynamic linker calls
// the resolver once, at load or, in an object bound lazily, at the first call. Calls cost nothing extra
// and there is no table of pointers to fill. In every other build a kernel is an ordinary function.
//
//     TAVU_KERNEL(void, tavu_name, (int32_t a, int32_t b)) { ... }
//
// TAVU_LOWER_LEVEL(tavu_name) is the same kernel at the next lower level; of the lowest, itself.
#ifndef TAVU_SIMD_KERNEL_H
#define TAVU_SIMD_KERNEL_H

#if !defined(TAVU_LEVEL)

#define TAVU_KERNEL(ret, name, params) extern "C" ret name params
#define TAVU_LOWER_LEVEL(name) name

#elif TAVU_LEVEL == 4

#define TAVU_KERNEL(ret, name, params) extern "C" ret name##_v4 params
#define TAVU_LOWER_LEVEL(name) name##_v3

#elif TAVU_LEVEL == 3

#define TAVU_KERNEL(ret, name, params) extern "C" ret name##_v3 params
#define TAVU_LOWER_LEVEL(name) name##_v2

#else

#include "simd/level.h"

#if TAVU_TOP_LEVEL == 4
#define TAVU_TOP(name) name##_v4
#else
#define TAVU_TOP(name) name##_v3
#endif

#define TAVU_KERNEL(ret, name, params)                          \
    extern "C" {                                                \
    ret name##_v2 params;                                       \
    ret name##_v3 params;                                       \
    ret TAVU_TOP(name) params;                                  \
    TAVU_UNINSTRUMENTED decltype(&name##_v2) name##_resolve() { \
        const int level = tavu_cpu_level();                     \
        if (level >= TAVU_TOP_LEVEL) return TAVU_TOP(name);     \
        return level >= 3 ? name##_v3 : name##_v2;              \
    }                                                           \
    ret name params __attribute__((ifunc(#name "_resolve")));   \
    }                                                           \
    ret name##_v2 params
#define TAVU_LOWER_LEVEL(name) name##_v2

#endif

#endif
