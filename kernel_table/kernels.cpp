#include "kernels.h"

#include "csc_model.h"
#include "imgp/csc_to_565_model.h"
#include "imgp/csc_to_packed_model.h"
#include "imgp/csc_to_yuv_model.h"

namespace {

using namespace tavu;

template <class Space, int Bytes, bool AlphaPlane = false>
CscKernel packed(const char *name, const CscVariants &variants) {
    constexpr auto run = csc_model<to_packed<Packed<Space, Bytes, AlphaPlane>>>;
    using Codes = std::vector<int32_t>;
    const Codes codes = Bytes == 3 ? Codes{400, 401} : Codes{500, 501};
    return {name, run, variants, AlphaPlane ? 4 : 3, 1, {Bytes}, codes};
}

template <class Space, Alpha alpha = Alpha::NONE>
CscKernel units(const char *name, const CscVariants &variants) {
    constexpr auto run = csc_model<to_565<To565<Space, alpha>>>;
    const auto planes = alpha == Alpha::NONE ? std::vector<int>{2} : std::vector<int>{2, 1};
    return {name, run, variants, alpha == Alpha::PLANE ? 4 : 3, 1, planes, {200}};
}

template <int Step>
CscKernel to_planes(const char *name, const CscVariants &variants) {
    constexpr auto run = csc_model<to_yuv<Step>>;
    return {name, run, variants, Step, Step, std::vector<int>(Step, 1), {13}};
}

}  // namespace

std::vector<CscKernel> csc_kernels() {
    return {
        packed<FromYuv, 3>("yuv444_to_rgb888", variants<tavu_csc_yuv444_to_rgb888>()),
        packed<FromYuv, 4>("yuv444_to_rgba8888", variants<tavu_csc_yuv444_to_rgba8888>()),
        packed<FromYuv, 4, true>("yuv444a8_to_rgba8888", variants<tavu_csc_yuv444a8_to_rgba8888>()),
        packed<FromRgb, 3>("r8g8b8_to_rgb888", variants<tavu_csc_r8g8b8_to_rgb888>()),
        packed<FromRgb, 4>("r8g8b8_to_rgba8888", variants<tavu_csc_r8g8b8_to_rgba8888>()),
        packed<FromRgb, 4, true>("r8g8b8a8_to_rgba8888", variants<tavu_csc_r8g8b8a8_to_rgba8888>()),
        units<FromYuv>("yuv444_to_rgb565", variants<tavu_csc_yuv444_to_rgb565>()),
        units<FromYuv, Alpha::OPAQUE>("yuv444_to_rgb565a8",
                                      variants<tavu_csc_yuv444_to_rgb565a8>()),
        units<FromYuv, Alpha::PLANE>("yuv444a8_to_rgb565a8",
                                     variants<tavu_csc_yuv444a8_to_rgb565a8>()),
        units<FromRgb>("r8g8b8_to_rgb565", variants<tavu_csc_r8g8b8_to_rgb565>()),
        units<FromRgb, Alpha::OPAQUE>("x8y8z8_to_xyz565a8",
                                      variants<tavu_csc_x8y8z8_to_xyz565a8>()),
        units<FromRgb, Alpha::PLANE>("x8y8z8a8_to_xyz565a8",
                                     variants<tavu_csc_x8y8z8a8_to_xyz565a8>()),
        to_planes<3>("r8g8b8_to_yuv444", variants<tavu_csc_r8g8b8_to_yuv444>()),
        to_planes<4>("r8g8b8a8_to_yuv444a8", variants<tavu_csc_r8g8b8a8_to_yuv444a8>()),
    };
}
