#include "variants.h"

#if TAVU_TEST_LEVELS

static bool has_v3() { return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2"); }

#define KERNEL(name)                                                       \
    extern "C" decltype(name) name##_v2, name##_v3;                        \
    template <>                                                            \
    std::vector<Variant<decltype(&name)>> variants<name>() {               \
        if (!has_v3()) return {{"exported", name}, {"v2", name##_v2}};     \
        return {{"exported", name}, {"v2", name##_v2}, {"v3", name##_v3}}; \
    }

#else

#define KERNEL(name)                                         \
    template <>                                              \
    std::vector<Variant<decltype(&name)>> variants<name>() { \
        return {{"exported", name}};                         \
    }

#endif

KERNEL(tavu_csc_yuv444_to_rgb888)
KERNEL(tavu_csc_yuv444_to_rgba8888)
KERNEL(tavu_csc_yuv444a8_to_rgba8888)
KERNEL(tavu_csc_r8g8b8_to_rgb888)
KERNEL(tavu_csc_r8g8b8_to_rgba8888)
KERNEL(tavu_csc_r8g8b8a8_to_rgba8888)
KERNEL(tavu_csc_yuv444_to_rgb565)
KERNEL(tavu_csc_yuv444_to_rgb565a8)
KERNEL(tavu_csc_yuv444a8_to_rgb565a8)
KERNEL(tavu_csc_r8g8b8_to_rgb565)
KERNEL(tavu_csc_x8y8z8_to_xyz565a8)
KERNEL(tavu_csc_x8y8z8a8_to_xyz565a8)
KERNEL(tavu_csc_r8g8b8_to_yuv444)
KERNEL(tavu_csc_r8g8b8a8_to_yuv444a8)

KERNEL(tavu_sad2x2)
KERNEL(tavu_sad2x4)
KERNEL(tavu_sad4x2)
KERNEL(tavu_sad4x4)
KERNEL(tavu_sad4x8)
KERNEL(tavu_sad8x4)
KERNEL(tavu_sad8x8)
KERNEL(tavu_sad8x16)
KERNEL(tavu_sad16x8)
KERNEL(tavu_sad16x16)
KERNEL(tavu_sad16x32)
KERNEL(tavu_sad32x16)
KERNEL(tavu_sad32x32)
KERNEL(tavu_sad64x32)
KERNEL(tavu_sad32x64)
KERNEL(tavu_sad64x64)
KERNEL(tavu_sad)
KERNEL(tavu_sad_eskip)
KERNEL(tavu_diff2x2)
KERNEL(tavu_diff4x4)
KERNEL(tavu_diff8x8)
KERNEL(tavu_diff16x16)
KERNEL(tavu_diff32x32)
KERNEL(tavu_diff64x64)
KERNEL(tavu_diff)
KERNEL(tavu_ssd)
KERNEL(tavu_hadamard4x4)
KERNEL(tavu_satd4x4)
KERNEL(tavu_satd8x8)
KERNEL(tavu_satd)
KERNEL(tavu_satd1)
KERNEL(tavu_satd2)
