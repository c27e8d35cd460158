// The level is chosen from the results of cpuid, and the dynamic linker binds every kernel to it.
// The test detects the processor with the compiler's builtins, not with the library's code.
#include <cpuid.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "cases.h"
#include "simd/x86/level_choice.h"
#include "variants.h"

namespace {

// A processor with made-up cpuid results. The test fails on queries for which a real processor
// raises a signal or returns meaningless values.
struct MadeUpProcessor {
    struct Leaves {
        tavu::CpuidResult basic, features, extended, more;
        unsigned xcr0;
    } leaves;

    tavu::CpuidResult cpuid(unsigned leaf) const {
        if (leaf == 0) return leaves.basic;
        if (leaf == 1) return leaves.features;
        if (leaf == 0x80000001) return leaves.more;
        EXPECT_EQ(leaf, 7U);
        EXPECT_LE(leaf, leaves.basic.eax);
        return leaves.extended;
    }
    unsigned saved_state() const {
        EXPECT_NE(leaves.features.ecx & 1U << 27, 0U) << "xgetbv is an invalid instruction";
        return leaves.xcr0;
    }
};

TEST(LevelChoice, NeedsEveryFeatureOfALevel) {
    using Leaves = MadeUpProcessor::Leaves;
    constexpr tavu::CpuidResult ALL = {~0U, ~0U, ~0U, ~0U};
    Leaves all = {ALL, ALL, ALL, ALL, ~0U}, needed = {{7, 0, 0, 0}, {}, {}, {}, 0};
    struct Needed {
        unsigned &(*in)(Leaves &);
        int level;  // level of a processor that lacks any of the bits
        std::vector<int> bits;
    };
    const Needed table[] = {
        // FMA, MOVBE, OSXSAVE, AVX, F16C; BMI1, AVX2, BMI2; LZCNT; registers of 16 and 32 bytes
        {[](Leaves &l) -> unsigned & { return l.features.ecx; }, 2, {12, 22, 27, 28, 29}},
        {[](Leaves &l) -> unsigned & { return l.extended.ebx; }, 2, {3, 5, 8}},
        {[](Leaves &l) -> unsigned & { return l.more.ecx; }, 2, {5}},
        {[](Leaves &l) -> unsigned & { return l.xcr0; }, 2, {1, 2}},
        // AVX-512 F, DQ, CD, BW, VL; VBMI; masks and registers of 64 bytes
        {[](Leaves &l) -> unsigned & { return l.extended.ebx; }, 3, {16, 17, 28, 30, 31}},
        {[](Leaves &l) -> unsigned & { return l.extended.ecx; }, 3, {1}},
        {[](Leaves &l) -> unsigned & { return l.xcr0; }, 3, {5, 6, 7}}};
    for (const Needed &row : table)
        for (const int bit : row.bits) row.in(needed) |= 1U << bit;
    for (const Leaves &complete : {all, needed}) {
        EXPECT_EQ(tavu::level_of(MadeUpProcessor{complete}), 4);
        for (const Needed &row : table) {
            for (const int bit : row.bits) {
                Leaves lacking = complete;
                row.in(lacking) &= ~(1U << bit);
                EXPECT_EQ(tavu::level_of(MadeUpProcessor{lacking}), row.level) << bit;
            }
        }
        Leaves old = complete;
        old.basic.eax = 6;
        EXPECT_EQ(tavu::level_of(MadeUpProcessor{old}), 2);
    }
}

bool has_v3() {
    unsigned a, b, features, extended, d;
    if (__get_cpuid(1, &a, &b, &features, &d) == 0) return false;
    if (__get_cpuid(0x80000001, &a, &b, &extended, &d) == 0) return false;
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
           __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
           (features & bit_F16C) != 0 && (features & bit_MOVBE) != 0 && (extended & bit_LZCNT) != 0;
}

bool has_v4() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi");
}

// The environment variable is for emulators, whose processor is known.
int processor_level() {
    if (const char *expected = std::getenv("TAVU_EXPECTED_LEVEL")) return expected[0] - '0';
    return !has_v3() ? 2 : has_v4() ? 4 : 3;
}

template <class Routine>
std::string bound_level(const std::vector<Variant<Routine>> &variants) {
    const auto bound = std::find_if(variants.begin() + 1, variants.end(), [&](const auto &variant) {
        return variant.run == variants[0].run;
    });
    return bound == variants.end() ? "none" : bound->level;
}

// Levels that a kernel is compiled for are found by their symbols.
TEST(Dispatch, BindsTheHighestLevelThatKernelAndProcessorHave) {
    int checked = 0;
    const auto expect_bound = [&](const char *name, const auto &variants) {
        if (variants.size() == 1) return;
        const std::string own = "v" + std::to_string(processor_level());
        const std::string highest = variants.back().level;
        EXPECT_EQ(bound_level(variants), std::min(own, highest)) << name;
        checked++;
    };
#define KERNEL(name) expect_bound(#name, variants<name>());
#include "kernels.def"
    EXPECT_GT(checked, 60);
}

// Whether any register has bits set above its lower 16 bytes.
bool upper_halves_in_use() {
    constexpr unsigned AVX = 1U << 2;
    unsigned low, high;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(1));
    return (low & AVX) != 0;
}

bool can_tell_upper_halves() {
#if !defined(NDEBUG)
    return false;  // compilers clear them only in optimised code
#endif
    constexpr unsigned XGETBV_OF_1 = 1U << 2;
    unsigned a = 0, b, c, d;
    if (!has_v3() || __get_cpuid_count(0xD, 1, &a, &b, &c, &d) == 0) return false;
    if ((a & XGETBV_OF_1) == 0) return false;
    __asm__ volatile("vpcmpeqd %%ymm1, %%ymm1, %%ymm1" ::: "xmm1");
    const bool used = upper_halves_in_use();
    __asm__ volatile("vzeroupper" ::: "xmm1");
    return used && !upper_halves_in_use();
}

// Otherwise later code with 16-byte registers, ours or the caller's, takes three times as long.
TEST(Levels, LeaveTheUpperHalvesOfRegistersClear) {
    if (!can_tell_upper_halves()) GTEST_SKIP() << "not optimised, or not reported by the processor";
    for (const NamedCase &kernel : kernel_cases()) {
        const Case prepared = kernel.prepare();
        for (size_t form = 1; form < prepared.forms.size(); form++) {
            prepared.forms[form].run(1);
            EXPECT_FALSE(upper_halves_in_use()) << kernel.name << ' ' << prepared.forms[form].level;
            __asm__ volatile("vzeroupper" ::: "xmm1");
        }
    }
}

}  // namespace
