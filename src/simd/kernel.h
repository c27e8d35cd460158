// Exporting a kernel at the levels that the build has.
//
//     TAVU_KERNEL(void, tavu_name, (int32_t a, int32_t b)) { ... }
//
// defines an ordinary function, except in files that are compiled once for each x86-64 level up to
// TAVU_TOP_LEVEL. There it defines tavu_name_v2, _v3 or _v4, and the v2 pass exports tavu_name as an
// indirect function: the dynamic linker calls the resolver once, at load or, in an object bound lazily, at
// the first call. Calls cost nothing extra and there is no table of pointers to fill.
//
// TAVU_LOWER_LEVEL(tavu_name) is the same kernel at the next lower level, at the lowest itself.
#ifndef TAVU_SIMD_KERNEL_H
#define TAVU_SIMD_KERNEL_H

#include "simd/level.h"

namespace tavu {

// The level of this pass; 0 if kernels have only one.
#if defined(TAVU_TOP_LEVEL)
constexpr int KERNEL_LEVEL = TAVU_LEVEL;
#else
constexpr int KERNEL_LEVEL = 0;
#endif

}  // namespace tavu

#if !defined(TAVU_TOP_LEVEL)

#define TAVU_KERNEL(ret, name, params) extern "C" ret name params
#define TAVU_LOWER_LEVEL(name) name

#elif TAVU_LEVEL == 4

#define TAVU_KERNEL(ret, name, params) extern "C" ret name##_v4 params
#define TAVU_LOWER_LEVEL(name) name##_v3

#elif TAVU_LEVEL == 3

#define TAVU_KERNEL(ret, name, params) extern "C" ret name##_v3 params
#define TAVU_LOWER_LEVEL(name) name##_v2

#else

#include "simd/x86/cpu_level.h"

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
