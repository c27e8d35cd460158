#include "planes.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <vector>

#include "picture.h"
#include "plane.h"

namespace {

/**
 * Doubles one or both dimensions of a plane. The source is scaled with one more column and row,
 * which repeat the last ones: this puts target sample i exactly at i / 2.
 */
void enlarge(const Plane &from, const Plane &to) {
    const int width = from.width + 1, height = from.height + 1;
    std::vector<uint8_t> samples(static_cast<size_t>(width) * static_cast<size_t>(height));
    uint8_t *out = samples.data();
    for (int y = 0; y < height; y++, out += width) {
        const uint8_t *row =
            from.at + static_cast<ptrdiff_t>(std::min(y, from.height - 1)) * from.stride;
        std::copy_n(row, from.width, out);
        out[from.width] = row[from.width - 1];
    }
    const auto doubled = [](int half, int full) { return half < full ? 2 * half : full; };
    scale_plane({samples.data(), width, height, width},
                {to.at, doubled(from.width, to.width), doubled(from.height, to.height), to.stride});
}

void enlarge_chroma(const tavu_imgb_t &from, const tavu_imgb_t &to) {
    copy_plane(plane_of(from, 0), plane_of(to, 0));
    for (int index = 1; index < 3; index++) enlarge(plane_of(from, index), plane_of(to, index));
}

/** Reads packed pixels, to which swscale converts every kind of 8-bit RGB without loss. */
void read_rgb(const AVFrame &frame, const tavu_imgb_t &to) {
    const ImagePtr packed = make_image(frame.width, frame.height, TAVU_CS_RGBA8888);
    convert_frame(frame, AV_PIX_FMT_RGBA, packed->addr, packed->stride);
    for (int index = 0; index < 4; index++)
        for (int y = 0; y < frame.height; y++) {
            const uint8_t *in = packed->addr[0] + static_cast<ptrdiff_t>(y) * packed->stride[0];
            uint8_t *out = to.addr[index] + static_cast<ptrdiff_t>(y) * to.stride[index];
            for (int x = 0; x < frame.width; x++) out[x] = in[4 * x + index];
        }
}

void read_yuv(const AVFrame &frame, bool alpha, const tavu_imgb_t &to) {
    const int cs = layout_code(frame.format);
    if (cs == NO_LAYOUT || cs == TAVU_CS_YUV444)
        return convert_frame(frame, alpha ? AV_PIX_FMT_YUVA444P : AV_PIX_FMT_YUV444P, to.addr,
                             to.stride);
    const ImagePtr small = make_image(frame.width, frame.height, cs);
    convert_frame(frame, plain_format(frame.format), small->addr, small->stride);
    enlarge_chroma(*small, to);
}

}  // namespace

int32_t Planes::code(bool with_alpha) const {
    if (rgb) return with_alpha ? TAVU_CS_R8G8B8A8 : TAVU_CS_R8G8B8;
    return with_alpha ? TAVU_CS_YUV444A8 : TAVU_CS_YUV444;
}

Planes read_planes(const AVFrame &frame) {
    const uint64_t flags = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format))->flags;
    Planes planes;
    planes.image = make_image(frame.width, frame.height, TAVU_CS_YUV444A8);
    planes.rgb = (flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
    planes.alpha = (flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    if (planes.rgb) {
        read_rgb(frame, *planes.image);
    } else if (is_grey(frame)) {
        read_grey(frame, *planes.image);
    } else {
        read_yuv(frame, planes.alpha, *planes.image);
    }
    constexpr uint8_t OPAQUE = 255;
    if (!planes.alpha) fill_plane(plane_of(*planes.image, 3), OPAQUE);
    return planes;
}

Planes resize(const Planes &planes, int width, int height) {
    Planes resized{make_image(width, height, planes.image->cs), planes.rgb, planes.alpha};
    for (int index = 0; index < 4; index++)
        scale_plane(plane_of(*planes.image, index), plane_of(*resized.image, index));
    return resized;
}
