#include <cstring>

#include "imgp/csc_resize_model.h"
#include "imgp/csc_to_565_model.h"
#include "imgp/csc_to_packed_model.h"
#include "imgp/csc_to_yuv_model.h"
#include "kernels.h"

namespace {

using namespace tavu;
using Variants = std::vector<CscVariant>;

// A model, which takes a record of arguments, as an exported routine.
template <void (*Convert)(const Csc &)>
void csc_model(uint8_t *const src[4], int32_t src_w, int32_t src_h, const int32_t src_stride[4],
               int32_t, uint8_t *const dst[4], int32_t dst_w, int32_t dst_h,
               const int32_t dst_stride[4], int32_t dst_cs) {
    Convert({src, src_w, src_h, src_stride, dst, dst_w, dst_h, dst_stride, dst_cs});
}

template <class Space, int Bytes, bool AlphaPlane = false>
CscKernel packed(const char *name, const Variants &variants) {
    constexpr auto run = csc_model<to_packed<Packed<Space, Bytes, AlphaPlane>>>;
    using Codes = std::vector<int32_t>;
    const Codes codes = Bytes == 3 ? Codes{400, 401} : Codes{500, 501};
    return {name, run, variants, AlphaPlane ? 4 : 3, 1, {Bytes}, codes};
}

template <class Space, Alpha Rule>
CscKernel packed_565(const char *name, const Variants &variants) {
    constexpr auto run = csc_model<to_565<To565<Space, Rule>>>;
    const auto planes = Rule == Alpha::NONE ? std::vector<int>{2} : std::vector<int>{2, 1};
    return {name, run, variants, Rule == Alpha::PLANE ? 4 : 3, 1, planes, {200}};
}

template <int Step>
CscKernel to_planes(const char *name, const Variants &variants) {
    constexpr auto run = csc_model<to_yuv<Step>>;
    return {name, run, variants, Step, Step, std::vector<int>(Step, 1), {13}};
}

template <class Space, int Bytes, bool AlphaPlane = false>
CscKernel combined(const char *name, const Variants &variants) {
    constexpr auto run = csc_model<convert_resize<Space, Bytes, AlphaPlane>>;
    return {name, run, variants, AlphaPlane ? 4 : 3, 1, {Bytes}, {400}, true};
}

}  // namespace

std::vector<CscKernel> csc_kernels() {
    return {
#define CONVERSION(name, ...) __VA_ARGS__(&#name[strlen("tavu_csc_")], variants<name>()),
#include "kernels.def"
    };
}

std::vector<CscKernel> csc_rsz_kernels() {
    return {
#define COMBINED(name, ...) __VA_ARGS__(&#name[strlen("tavu_csc_rsz_")], variants<name>()),
#include "kernels.def"
    };
}
