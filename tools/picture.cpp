#include "picture.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "plane.h"

namespace {

std::string format_name(int format) {
    const char *name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(format));
    return name ? name : "unknown";
}

struct Layout {
    int cs;
    AVPixelFormat plain, full_range;
};

constexpr Layout LAYOUTS[] = {
    {TAVU_CS_YUV400, AV_PIX_FMT_GRAY8, AV_PIX_FMT_GRAY8},
    {TAVU_CS_YUV420, AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUVJ420P},
    {TAVU_CS_YUV422, AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUVJ422P},
    {TAVU_CS_YUV440, AV_PIX_FMT_YUV440P, AV_PIX_FMT_YUVJ440P},
    {TAVU_CS_YUV444, AV_PIX_FMT_YUV444P, AV_PIX_FMT_YUVJ444P},
    {NO_LAYOUT, AV_PIX_FMT_YUV411P, AV_PIX_FMT_YUVJ411P},
};

AVColorSpace matrix(const AVFrame &frame) {
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED) return frame.colorspace;
    constexpr int HD_HEIGHT = 720;
    return frame.height >= HD_HEIGHT ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

const AVPixFmtDescriptor &description(const AVFrame &frame) {
    return *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
}

/** Reads one component, converted to 8-bit full range. */
void read_component(const AVFrame &frame, int component, bool full_range, const Plane &to) {
    const AVPixFmtDescriptor &format = description(frame);
    const int depth = format.comp[component].depth, unit = 1 << (depth - 8);
    const int black = full_range ? 0 : 16 * unit, span = full_range ? 256 * unit - 1 : 219 * unit;
    const uint8_t *data[4] = {frame.data[0], frame.data[1], frame.data[2], frame.data[3]};
    std::vector<uint16_t> row(static_cast<size_t>(to.width));
    for (int y = 0; y < to.height; y++) {
        av_read_image_line2(row.data(), data, frame.linesize, &format, 0, y, component, to.width, 0,
                            sizeof row[0]);
        uint8_t *out = to.at + static_cast<ptrdiff_t>(y) * to.stride;
        std::transform(row.begin(), row.end(), out, [=](int sample) {
            return static_cast<uint8_t>(
                std::clamp(((sample - black) * 255 + span / 2) / span, 0, 255));
        });
    }
}

/** A converter to full range at the same size; null if that is not supported. */
ScalerPtr make_scaler(const AVFrame &frame, AVPixelFormat format) {
    ScalerPtr scaler(sws_alloc_context());
    if (!scaler) return nullptr;
    // A change of matrix goes through RGB, where full chroma keeps the error below 2.
    constexpr int FLAGS = SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT;
    const std::pair<const char *, int> options[] = {{"srcw", frame.width},
                                                    {"srch", frame.height},
                                                    {"src_format", plain_format(frame.format)},
                                                    {"dstw", frame.width},
                                                    {"dsth", frame.height},
                                                    {"dst_format", format},
                                                    {"src_range", is_full_range(frame)},
                                                    {"dst_range", 1},
                                                    {"sws_flags", FLAGS}};
    // Ranges must be set before initialization: later changes do not always take effect.
    for (const auto &[name, value] : options) av_opt_set_int(scaler.get(), name, value, 0);
    if (sws_init_context(scaler.get(), nullptr, nullptr) < 0) return nullptr;
    constexpr int ONE = 1 << 16;
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(matrix(frame)), is_full_range(frame),
                             sws_getCoefficients(SWS_CS_ITU601), 1, 0, ONE, ONE);
    return scaler;
}

}  // namespace

int layout_code(int format) {
    for (const Layout &layout : LAYOUTS)
        if (format == layout.plain || format == layout.full_range) return layout.cs;
    return NO_LAYOUT;
}

AVPixelFormat plain_format(int format) {
    for (const Layout &layout : LAYOUTS)
        if (format == layout.full_range) return layout.plain;
    return static_cast<AVPixelFormat>(format);
}

bool is_grey(const AVFrame &frame) {
    const AVPixFmtDescriptor &format = description(frame);
    constexpr uint64_t OTHERS = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL |
                                AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_FLOAT;
    return !(format.flags & OTHERS) && (format.nb_components == 1 || format.nb_components == 2);
}

bool is_full_range(const AVFrame &frame) {
    if (frame.color_range != AVCOL_RANGE_UNSPECIFIED) return frame.color_range == AVCOL_RANGE_JPEG;
    return frame.format != plain_format(frame.format) || is_grey(frame);
}

bool has_luma_plane(const AVFrame &frame) {
    const AVPixFmtDescriptor &format = description(frame);
    constexpr uint64_t NO_LUMA =
        AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM;
    const AVComponentDescriptor &first = format.comp[0];
    return !(format.flags & NO_LUMA) && first.depth == 8 && first.step == 1;
}

ImagePtr make_image(int width, int height, int cs) {
    // Whole vectors per row, because converters may write a vector past the last pixel, and an even
    // number of rows, because chroma is doubled.
    constexpr uint32_t EVEN = 32 << 16 | 2;
    constexpr uint32_t ALIGN[4] = {EVEN, EVEN, EVEN, EVEN};
    ImagePtr image(
        tavu_imgb_create(width, height, cs, 0, ALIGN, nullptr, nullptr, nullptr, nullptr));
    if (!image)
        throw std::runtime_error("pictures of " + std::to_string(width) + "x" +
                                 std::to_string(height) + " are too large");
    return image;
}

ImagePtr copy_frame(const AVFrame &frame) {
    const int cs = layout_code(frame.format);
    if (cs == NO_LAYOUT)
        throw std::runtime_error("pixel format " + format_name(frame.format) +
                                 " has no matching layout");
    ImagePtr image = make_image(frame.width, frame.height, cs);
    for (int index = 0; index < 3 && image->addr[index]; index++) {
        const Plane to = plane_of(*image, index);
        copy_plane({frame.data[index], to.width, to.height, frame.linesize[index]}, to);
    }
    return image;
}

void convert_frame(const AVFrame &frame, AVPixelFormat format, uint8_t *const planes[4],
                   const int strides[4]) {
    const ScalerPtr scaler = make_scaler(frame, format);
    if (!scaler)
        throw std::runtime_error("cannot convert pixel format " + format_name(frame.format));
    const int rows =
        sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides);
    if (rows != frame.height) throw std::runtime_error("cannot convert a frame");
}

void read_grey(const AVFrame &frame, const tavu_imgb_t &to) {
    // swscale treats most grey frames as full range, whatever their tags.
    constexpr uint8_t NEUTRAL = 128;
    read_component(frame, 0, is_full_range(frame), plane_of(to, 0));
    for (const int index : {1, 2}) fill_plane(plane_of(to, index), NEUTRAL);
    if (description(frame).nb_components > 1 && to.addr[3])
        read_component(frame, 1, true, plane_of(to, 3));
}

ImagePtr to_full_range_420(const AVFrame &frame) {
    ImagePtr image = make_image(frame.width, frame.height, TAVU_CS_YUV420);
    if (is_grey(frame)) {
        read_grey(frame, *image);
    } else {
        convert_frame(frame, AV_PIX_FMT_YUV420P, image->addr, image->stride);
    }
    return image;
}
