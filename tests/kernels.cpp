#include "kernels.h"

#include "imgp/csc_to_packed_model.h"

namespace {

template <class Format>
void model(uint8_t *const src[4], int32_t src_w, int32_t src_h, const int32_t src_stride[4],
           int32_t, uint8_t *const dst[4], int32_t dst_w, int32_t dst_h,
           const int32_t dst_stride[4], int32_t dst_cs) {
    tavu::to_packed<Format>(
        tavu::Csc{src, src_w, src_h, src_stride, dst, dst_w, dst_h, dst_stride, dst_cs});
}

}  // namespace

#if TAVU_TEST_LEVELS
#define VARIANTS(name) \
    (has_v3() ? Variants{{"v2", name##_v2}, {"v3", name##_v3}} : Variants{{"v2", name##_v2}})
#define DECLARE(name) extern "C" tavu_csc_routine_t name##_v2, name##_v3;

DECLARE(tavu_csc_yuv444_to_rgb888)
DECLARE(tavu_csc_yuv444_to_rgba8888)
DECLARE(tavu_csc_yuv444a8_to_rgba8888)
DECLARE(tavu_csc_r8g8b8_to_rgb888)
DECLARE(tavu_csc_r8g8b8_to_rgba8888)
DECLARE(tavu_csc_r8g8b8a8_to_rgba8888)

static bool has_v3() { return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2"); }
#else
#define VARIANTS(name) (Variants{{"exported", name}})
#endif

std::vector<CscKernel> csc_kernels() {
    using namespace tavu;
    using Variants = std::vector<CscVariant>;
#define KERNEL(name, Format, planes, bytes, ...)                                          \
    {                                                                                     \
#name, model < Format>, VARIANTS(tavu_csc_##name), planes, bytes, { __VA_ARGS__ } \
    }
    using YuvToRgb = Packed<FromYuv, 3>;
    using YuvToRgba = Packed<FromYuv, 4>;
    using YuvaToRgba = Packed<FromYuv, 4, true>;
    using PlanesToRgb = Packed<FromRgb, 3>;
    using PlanesToRgba = Packed<FromRgb, 4>;
    using Planes4ToRgba = Packed<FromRgb, 4, true>;
    return {
        KERNEL(yuv444_to_rgb888, YuvToRgb, 3, 3, 400, 401),
        KERNEL(yuv444_to_rgba8888, YuvToRgba, 3, 4, 500, 501),
        KERNEL(yuv444a8_to_rgba8888, YuvaToRgba, 4, 4, 500, 501),
        KERNEL(r8g8b8_to_rgb888, PlanesToRgb, 3, 3, 400, 401),
        KERNEL(r8g8b8_to_rgba8888, PlanesToRgba, 3, 4, 500, 501),
        KERNEL(r8g8b8a8_to_rgba8888, Planes4ToRgba, 4, 4, 500, 501),
    };
}
