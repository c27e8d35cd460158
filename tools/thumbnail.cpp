#include "thumbnail.h"

#include <stdexcept>
#include <string>

#include "picture.h"

namespace {

void scale_plane(const tavu_imgb_t &from, const tavu_imgb_t &to, int plane) {
    tavu_irsz_param param{};
    param.fmt = TAVU_IRSZ_8B;
    param.mode = TAVU_IRSZ_MODE_FULL;
    param.src_w = plane == 0 ? from.w : (from.w + 1) / 2;
    param.src_h = plane == 0 ? from.h : (from.h + 1) / 2;
    param.src_s = from.stride[plane];
    param.dst_w = to.w;
    param.dst_h = to.h;
    param.dst_s = to.stride[plane];
    param.dst = to.addr[plane];
    const ResizerPtr resizer(tavu_irsz_create(&param, nullptr));
    if (!resizer)
        throw std::runtime_error("pictures of " + std::to_string(from.w) + "x" +
                                 std::to_string(from.h) + " are too large to scale");
    tavu_irsz(resizer.get(), from.addr[plane], 0, 0);
}

}  // namespace

ImagePtr make_thumbnail(const tavu_imgb_t &picture, int width, int height) {
    const ImagePtr scaled = make_image(width, height, TAVU_CS_YUV444);
    for (int plane = 0; plane < 3; plane++) scale_plane(picture, *scaled, plane);
    ImagePtr rgb = make_image(width, height, TAVU_CS_RGB888);
    const tavu_fn_csc_t convert =
        tavu_imgp_get_fn_csc(width, height, scaled->cs, width, height, rgb->cs, nullptr);
    if (!convert) throw std::runtime_error("no conversion to RGB");
    convert(scaled->addr, width, height, scaled->stride, scaled->cs, rgb->addr, width, height,
            rgb->stride, rgb->cs);
    return rgb;
}
