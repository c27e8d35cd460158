#include "simd/level.h"

#include <cpuid.h>

namespace {

// Asked once, for cpuid takes microseconds on virtual machines. The exported tables name indirect
// functions, so that it is written while the library is relocated, and read-only ever after.
__attribute__((section(".data.rel.ro"))) int known_level = 0;

// The parts of registers that the system saves.
TAVU_UNINSTRUMENTED unsigned saved_state() {
    unsigned low, high;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

TAVU_UNINSTRUMENTED bool has_all(unsigned value, unsigned wanted) {
    return (value & wanted) == wanted;
}

TAVU_UNINSTRUMENTED int find_level() {
    unsigned a, b, c, d;
    __cpuid(0, a, b, c, d);  // not by the header's function, which would be instrumented
    if (a < 7) return 2;
    __cpuid(1, a, b, c, d);
    if (!has_all(c, bit_FMA | bit_MOVBE | bit_OSXSAVE | bit_AVX | bit_F16C)) return 2;
    const unsigned state = saved_state();
    constexpr unsigned YMM = 0x06, ZMM = 0xE6;
    if (!has_all(state, YMM)) return 2;
    unsigned extensions, more_extensions;
    __cpuid_count(7, 0, a, extensions, more_extensions, d);
    if (!has_all(extensions, bit_AVX2 | bit_BMI | bit_BMI2)) return 2;
    __cpuid(0x80000001, a, b, c, d);
    if (!has_all(c, bit_LZCNT)) return 2;
    constexpr unsigned V4 = bit_AVX512F | bit_AVX512BW | bit_AVX512CD | bit_AVX512DQ | bit_AVX512VL;
    const bool vbmi = has_all(more_extensions, bit_AVX512VBMI);
    return has_all(extensions, V4) && vbmi && has_all(state, ZMM) ? 4 : 3;
}

}  // namespace

TAVU_UNINSTRUMENTED int tavu_cpu_level() {
    if (known_level == 0) known_level = find_level();
    return known_level;
}
