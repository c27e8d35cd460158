#include "plane.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <stdexcept>
#include <string>

#include "handles.h"

Plane plane_of(const tavu_imgb_t &image, int index) {
    const bool chroma = index == 1 || index == 2;
    const bool half_w = chroma && (image.cs == TAVU_CS_YUV420 || image.cs == TAVU_CS_YUV422);
    const bool half_h = chroma && (image.cs == TAVU_CS_YUV420 || image.cs == TAVU_CS_YUV440);
    return {image.addr[index], half_w ? (image.w + 1) / 2 : image.w,
            half_h ? (image.h + 1) / 2 : image.h, image.stride[index]};
}

void copy_plane(const Plane &from, const Plane &to) {
    av_image_copy_plane(to.at, to.stride, from.at, from.stride, from.width, from.height);
}

void fill_plane(const Plane &plane, uint8_t value) {
    for (int y = 0; y < plane.height; y++)
        std::fill_n(plane.at + static_cast<ptrdiff_t>(y) * plane.stride, plane.width, value);
}

void scale_plane(const Plane &from, const Plane &to) {
    tavu_irsz_param param{};
    param.fmt = TAVU_IRSZ_8B;
    param.mode = TAVU_IRSZ_MODE_FULL;
    param.src_w = from.width;
    param.src_h = from.height;
    param.src_s = from.stride;
    param.dst_w = to.width;
    param.dst_h = to.height;
    param.dst_s = to.stride;
    param.dst = to.at;
    const ResizerPtr resizer(tavu_irsz_create(&param, nullptr));
    if (!resizer)
        throw std::runtime_error("pictures of " + std::to_string(from.width) + "x" +
                                 std::to_string(from.height) + " are too large to scale");
    tavu_irsz(resizer.get(), from.at, 0, 0);
}
