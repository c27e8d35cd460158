#include "simd/level.h"

#if defined(__x86_64__)

#include <cpuid.h>

namespace {

// Asked once, for cpuid takes microseconds on virtual machines. The exported tables name indirect
// functions, so that it is written while the library is relocated, and read-only ever after.
__attribute__((section(".data.rel.ro"))) int level = 0;

TAVU_UNINSTRUMENTED bool has_v3() {
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

}  // namespace

TAVU_UNINSTRUMENTED int tavu_cpu_level() {
    if (level == 0) level = has_v3() ? 3 : 2;
    return level;
}

#endif
