#include "variants.h"

#if TAVU_TEST_LEVELS

// The first ones of a list that ends with the highest level.
template <class Routine>
static std::vector<Variant<Routine>> runnable(std::vector<Variant<Routine>> all) {
    const bool v3 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
    const size_t levels = !v3 ? 1 : __builtin_cpu_supports("avx512vbmi") ? 3 : 2;
    if (all.size() > 1 + levels) all.resize(1 + levels);
    return all;
}

#define KERNEL(name)                                                     \
    extern "C" decltype(name) name##_v2, name##_v3;                      \
    template <>                                                          \
    std::vector<Variant<decltype(&name)>> variants<name>() {             \
        return runnable<decltype(&name)>(                                \
            {{"exported", name}, {"v2", name##_v2}, {"v3", name##_v3}}); \
    }
#define KERNEL4(name)                                                                       \
    extern "C" decltype(name) name##_v2, name##_v3, name##_v4;                              \
    template <>                                                                             \
    std::vector<Variant<decltype(&name)>> variants<name>() {                                \
        return runnable<decltype(&name)>(                                                   \
            {{"exported", name}, {"v2", name##_v2}, {"v3", name##_v3}, {"v4", name##_v4}}); \
    }

#else

#define KERNEL(name)                                         \
    template <>                                              \
    std::vector<Variant<decltype(&name)>> variants<name>() { \
        return {{"exported", name}};                         \
    }
#define KERNEL4 KERNEL

#endif

KERNEL4(tavu_csc_yuv444_to_rgb888)
KERNEL4(tavu_csc_yuv444_to_rgba8888)
KERNEL4(tavu_csc_yuv444a8_to_rgba8888)
KERNEL4(tavu_csc_r8g8b8_to_rgb888)
KERNEL4(tavu_csc_r8g8b8_to_rgba8888)
KERNEL4(tavu_csc_r8g8b8a8_to_rgba8888)
KERNEL4(tavu_csc_yuv444_to_rgb565)
KERNEL4(tavu_csc_yuv444_to_rgb565a8)
KERNEL4(tavu_csc_yuv444a8_to_rgb565a8)
KERNEL4(tavu_csc_r8g8b8_to_rgb565)
KERNEL4(tavu_csc_x8y8z8_to_xyz565a8)
KERNEL4(tavu_csc_x8y8z8a8_to_xyz565a8)
KERNEL4(tavu_csc_r8g8b8_to_yuv444)
KERNEL4(tavu_csc_r8g8b8a8_to_yuv444a8)

KERNEL(tavu_csc_rsz_r8g8b8_to_rgb888)
KERNEL(tavu_csc_rsz_r8g8b8_to_rgba8888)
KERNEL(tavu_csc_rsz_r8g8b8a8_to_rgba8888)
KERNEL(tavu_csc_rsz_yuv444_to_rgb888)
KERNEL(tavu_csc_rsz_yuv444_to_rgba8888)
KERNEL(tavu_csc_rsz_yuv444a8_to_rgba8888)

KERNEL(tavu_irsz8b)
KERNEL(tavu_irsz8b_full)
KERNEL(tavu_irsz8b_line)
KERNEL(tavu_irsz8b8b8b)
KERNEL(tavu_irsz8b8b8b_full)
KERNEL(tavu_irsz8b8b8b_line)
KERNEL(tavu_irsz8b8b8b8b)
KERNEL(tavu_irsz8b8b8b8b_full)
KERNEL(tavu_irsz8b8b8b8b_line)

KERNEL(tavu_mclr_x64)
KERNEL(tavu_mset_x64)
KERNEL(tavu_mset_x64a)
KERNEL(tavu_mset_x128)
KERNEL(tavu_mset_x32)
KERNEL(tavu_mset_x32ax4)

KERNEL(tavu_is_vkeyfrm)

KERNEL4(tavu_sad2x2)
KERNEL4(tavu_sad2x4)
KERNEL4(tavu_sad4x2)
KERNEL4(tavu_sad4x4)
KERNEL4(tavu_sad4x8)
KERNEL4(tavu_sad8x4)
KERNEL4(tavu_sad8x8)
KERNEL4(tavu_sad8x16)
KERNEL4(tavu_sad16x8)
KERNEL4(tavu_sad16x16)
KERNEL4(tavu_sad16x32)
KERNEL4(tavu_sad32x16)
KERNEL4(tavu_sad32x32)
KERNEL4(tavu_sad64x32)
KERNEL4(tavu_sad32x64)
KERNEL4(tavu_sad64x64)
KERNEL4(tavu_sad)
KERNEL4(tavu_sad_eskip)
KERNEL4(tavu_diff2x2)
KERNEL4(tavu_diff4x4)
KERNEL4(tavu_diff8x8)
KERNEL4(tavu_diff16x16)
KERNEL4(tavu_diff32x32)
KERNEL4(tavu_diff64x64)
KERNEL4(tavu_diff)
KERNEL4(tavu_ssd)
KERNEL4(tavu_hadamard4x4)
KERNEL4(tavu_satd4x4)
KERNEL4(tavu_satd8x8)
KERNEL4(tavu_satd)
KERNEL4(tavu_satd1)
KERNEL4(tavu_satd2)
