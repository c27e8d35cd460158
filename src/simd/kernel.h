// Exporting a kernel at the instruction-set levels that the build has.
//
// TAVU_LEVEL is 2 or 3 where a file is compiled once for x86-64-v2 and once for v3. The v2 pass
// then exports NAME as an indirect function: the dynamic linker asks the resolver once, at load.
// Calls cost nothing extra and the library holds no pointer that could be written. In every other
// build a kernel is an ordinary function.
//
//     TAVU_KERNEL(void, tavu_name, (int32_t a, int32_t b)) { ... }
#ifndef TAVU_SIMD_KERNEL_H
#define TAVU_SIMD_KERNEL_H

#if !defined(TAVU_LEVEL)

#define TAVU_KERNEL(ret, name, params) extern "C" ret name params

#elif TAVU_LEVEL == 3

#define TAVU_KERNEL(ret, name, params) extern "C" ret name##_v3 params

#else

#include <cpuid.h>

// Resolvers run before relocation is complete and before any sanitizer is ready: they call nothing
// that is not inlined, do not read the thread's stack guard, and are not instrumented.
#define TAVU_UNINSTRUMENTED \
    __attribute__((no_sanitize("address", "undefined", "thread"), no_stack_protector))

namespace tavu {

TAVU_UNINSTRUMENTED __attribute__((always_inline)) inline bool cpu_has_v3() {
    unsigned a, b, c, d;
    if (__get_cpuid_max(0, nullptr) < 7) return false;
    __cpuid(1, a, b, c, d);
    constexpr unsigned LEAF1 = bit_FMA | bit_MOVBE | bit_OSXSAVE | bit_AVX | bit_F16C;
    if ((c & LEAF1) != LEAF1) return false;
    unsigned xcr0, high;
    __asm__("xgetbv" : "=a"(xcr0), "=d"(high) : "c"(0));
    if ((xcr0 & 6) != 6) return false;  // the system saves the upper halves of vector registers
    __cpuid_count(7, 0, a, b, c, d);
    constexpr unsigned LEAF7 = bit_AVX2 | bit_BMI | bit_BMI2;
    if ((b & LEAF7) != LEAF7) return false;
    __cpuid(0x80000001, a, b, c, d);
    return (c & bit_LZCNT) != 0;
}

}  // namespace tavu

#define TAVU_KERNEL(ret, name, params)                          \
    extern "C" {                                                \
    ret name##_v2 params;                                       \
    ret name##_v3 params;                                       \
    TAVU_UNINSTRUMENTED decltype(&name##_v2) name##_resolve() { \
        return tavu::cpu_has_v3() ? name##_v3 : name##_v2;      \
    }                                                           \
    ret name params __attribute__((ifunc(#name "_resolve")));   \
    }                                                           \
    ret name##_v2 params

#endif

#endif
