// The choice of the x86-64 level, a function of the processor's answers alone.
#ifndef TAVU_SIMD_X86_LEVEL_CHOICE_H
#define TAVU_SIMD_X86_LEVEL_CHOICE_H

#include <cpuid.h>

#include "simd/x86/cpu_level.h"

namespace tavu {
namespace {

struct CpuidResult {
    unsigned eax, ebx, ecx, edx;
};

TAVU_UNINSTRUMENTED inline bool has_all(unsigned value, unsigned wanted) {
    return (value & wanted) == wanted;
}

// A Processor has cpuid(leaf), of subleaf 0, and saved_state(), the low half of xcr0. Leaf 7 exists
// only where leaf 0 says so, and xgetbv is an invalid instruction without OSXSAVE.
template <class Processor>
TAVU_UNINSTRUMENTED int level_of(const Processor &processor) {
    if (processor.cpuid(0).eax < 7) return 2;
    constexpr unsigned V3 = bit_FMA | bit_MOVBE | bit_OSXSAVE | bit_AVX | bit_F16C;
    if (!has_all(processor.cpuid(1).ecx, V3)) return 2;
    constexpr unsigned YMM = 0x06, ZMM = 0xE6;  // registers that the system saves
    const unsigned state = processor.saved_state();
    if (!has_all(state, YMM)) return 2;
    const CpuidResult extended = processor.cpuid(7);
    if (!has_all(extended.ebx, bit_AVX2 | bit_BMI | bit_BMI2)) return 2;
    if (!has_all(processor.cpuid(0x80000001).ecx, bit_LZCNT)) return 2;
    constexpr unsigned V4 = bit_AVX512F | bit_AVX512BW | bit_AVX512CD | bit_AVX512DQ | bit_AVX512VL;
    const bool v4 = has_all(extended.ebx, V4) && has_all(extended.ecx, bit_AVX512VBMI);
    return v4 && has_all(state, ZMM) ? 4 : 3;
}

}  // namespace
}  // namespace tavu

#endif
