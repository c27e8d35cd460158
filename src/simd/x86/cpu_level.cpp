#include "simd/x86/cpu_level.h"

#include "simd/x86/level_choice.h"

namespace tavu {
namespace {

struct ThisProcessor {
    TAVU_UNINSTRUMENTED CpuidResult cpuid(unsigned leaf) const {
        CpuidResult r;
        // Not by the functions of cpuid.h, which would be instrumented.
        __cpuid_count(leaf, 0, r.eax, r.ebx, r.ecx, r.edx);
        return r;
    }

    TAVU_UNINSTRUMENTED unsigned saved_state() const {
        unsigned low, high;
        __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
        return low;
    }
};

// cpuid takes microseconds on virtual machines, so the processor is asked once. The answer is in
// ordinary data: where libtavu.a is linked into a shared object that is bound lazily, the first
// resolver runs at the first call of a kernel, when data relocated at load is read-only already.
// Resolvers of several threads may race; all of them write the same value.
int known_level = 0;

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_UNINSTRUMENTED int tavu_cpu_level() {
    int level = __atomic_load_n(&known_level, __ATOMIC_RELAXED);
    if (level == 0) {
        level = level_of(ThisProcessor());
        __atomic_store_n(&known_level, level, __ATOMIC_RELAXED);
    }
    return level;
}
