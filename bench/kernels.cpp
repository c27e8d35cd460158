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

using Variants = std::vector<CscVariant>;

#if TAVU_TEST_LEVELS
#define VARIANTS(name)                                                             \
    (has_v3() ? Variants{{"exported", name}, {"v2", name##_v2}, {"v3", name##_v3}} \
              : Variants{{"exported", name}, {"v2", name##_v2}})
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

namespace {

template <class Space, int Bytes, bool AlphaPlane = false>
CscKernel packed(const char *name, Variants variants, int src_planes) {
    using Codes = std::vector<int32_t>;
    return {name,  model<tavu::Packed<Space, Bytes, AlphaPlane>>, variants, src_planes,
            Bytes, Bytes == 3 ? Codes{400, 401} : Codes{500, 501}};
}

}  // namespace

std::vector<CscKernel> csc_kernels() {
    using tavu::FromRgb, tavu::FromYuv;
    return {
        packed<FromYuv, 3>("yuv444_to_rgb888", VARIANTS(tavu_csc_yuv444_to_rgb888), 3),
        packed<FromYuv, 4>("yuv444_to_rgba8888", VARIANTS(tavu_csc_yuv444_to_rgba8888), 3),
        packed<FromYuv, 4, true>("yuv444a8_to_rgba8888", VARIANTS(tavu_csc_yuv444a8_to_rgba8888),
                                 4),
        packed<FromRgb, 3>("r8g8b8_to_rgb888", VARIANTS(tavu_csc_r8g8b8_to_rgb888), 3),
        packed<FromRgb, 4>("r8g8b8_to_rgba8888", VARIANTS(tavu_csc_r8g8b8_to_rgba8888), 3),
        packed<FromRgb, 4, true>("r8g8b8a8_to_rgba8888", VARIANTS(tavu_csc_r8g8b8a8_to_rgba8888),
                                 4),
    };
}
