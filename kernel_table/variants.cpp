#include "variants.h"

#include <cstddef>

// A level that the build or the kernel does not have is null.
#define KERNEL(name) \
    extern "C" __attribute__((weak)) decltype(name) name##_v2, name##_v3, name##_v4;
#include "kernels.def"

namespace {

// As many of v2, v3 and v4 as the processor has the instructions for.
size_t levels() {
#if defined(__x86_64__) || defined(__i386__)
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("bmi2")) return 1;
    return __builtin_cpu_supports("avx512vbmi") ? 3 : 2;
#else
    return 0;
#endif
}

template <class Routine>
std::vector<Variant<Routine>> runnable(Routine exported, const Variant<Routine> (&compiled)[3]) {
    std::vector<Variant<Routine>> all = {{"exported", exported}};
    for (size_t i = 0; i < levels(); i++) {
        if (compiled[i].run != nullptr) all.push_back(compiled[i]);
    }
    return all;
}

}  // namespace

#define KERNEL(name)                                                          \
    template <>                                                               \
    std::vector<Variant<decltype(&name)>> variants<name>() {                  \
        return runnable<decltype(&name)>(                                     \
            name, {{"v2", name##_v2}, {"v3", name##_v3}, {"v4", name##_v4}}); \
    }
#include "kernels.def"
