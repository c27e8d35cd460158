#include "picture.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <stdexcept>
#include <string>
#include <utility>

namespace {

std::string format_name(int format) {
    const char *name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(format));
    return name ? name : "unknown";
}

/** Colour-space code of the same layout, or -1. */
int layout_code(int format) {
    switch (format) {
        case AV_PIX_FMT_GRAY8: return TAVU_CS_YUV400;
        case AV_PIX_FMT_YUV420P:
        case AV_PIX_FMT_YUVJ420P: return TAVU_CS_YUV420;
        case AV_PIX_FMT_YUV422P:
        case AV_PIX_FMT_YUVJ422P: return TAVU_CS_YUV422;
        case AV_PIX_FMT_YUV440P:
        case AV_PIX_FMT_YUVJ440P: return TAVU_CS_YUV440;
        case AV_PIX_FMT_YUV444P:
        case AV_PIX_FMT_YUVJ444P: return TAVU_CS_YUV444;
        default: return -1;
    }
}

/** The plain format of one whose name says full range, which is kept apart here. */
AVPixelFormat plain_format(int format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ411P: return AV_PIX_FMT_YUV411P;
        case AV_PIX_FMT_YUVJ420P: return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ422P: return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ440P: return AV_PIX_FMT_YUV440P;
        case AV_PIX_FMT_YUVJ444P: return AV_PIX_FMT_YUV444P;
        default: return static_cast<AVPixelFormat>(format);
    }
}

bool is_full_range(const AVFrame &frame) {
    if (frame.color_range != AVCOL_RANGE_UNSPECIFIED) return frame.color_range == AVCOL_RANGE_JPEG;
    return frame.format != plain_format(frame.format) || frame.format == AV_PIX_FMT_GRAY8;
}

AVColorSpace matrix(const AVFrame &frame) {
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED) return frame.colorspace;
    constexpr int HD_HEIGHT = 720;
    return frame.height >= HD_HEIGHT ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

bool is_full_range_420(const AVFrame &frame) {
    const AVColorSpace space = matrix(frame);
    return layout_code(frame.format) == TAVU_CS_YUV420 && is_full_range(frame) &&
           (space == AVCOL_SPC_BT470BG || space == AVCOL_SPC_SMPTE170M);
}

/** A converter to full-range 4:2:0 of the same size; null if it cannot be had. */
ScalerPtr make_scaler(const AVFrame &frame, AVPixelFormat format) {
    ScalerPtr scaler(sws_alloc_context());
    if (!scaler) return nullptr;
    const std::pair<const char *, int> options[] = {{"srcw", frame.width},
                                                    {"srch", frame.height},
                                                    {"src_format", format},
                                                    {"dstw", frame.width},
                                                    {"dsth", frame.height},
                                                    {"dst_format", AV_PIX_FMT_YUV420P},
                                                    {"src_range", is_full_range(frame)},
                                                    {"dst_range", 1},
                                                    {"sws_flags", SWS_BILINEAR | SWS_ACCURATE_RND}};
    // The ranges must be known from the start: told later they are not always followed.
    for (const auto &[name, value] : options) av_opt_set_int(scaler.get(), name, value, 0);
    if (sws_init_context(scaler.get(), nullptr, nullptr) < 0) return nullptr;
    constexpr int ONE = 1 << 16;
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(matrix(frame)), is_full_range(frame),
                             sws_getCoefficients(SWS_CS_ITU601), 1, 0, ONE, ONE);
    return scaler;
}

void copy_planes(const AVFrame &frame, const tavu_imgb_t &image) {
    for (int plane = 0; plane < 3 && image.addr[plane]; plane++) {
        const int bytes =
            av_image_get_linesize(static_cast<AVPixelFormat>(frame.format), frame.width, plane);
        const bool half_height =
            plane > 0 && (image.cs == TAVU_CS_YUV420 || image.cs == TAVU_CS_YUV440);
        av_image_copy_plane(image.addr[plane], image.stride[plane], frame.data[plane],
                            frame.linesize[plane], bytes,
                            half_height ? (frame.height + 1) / 2 : frame.height);
    }
}

}  // namespace

ImagePtr make_image(int width, int height, int cs) {
    // Rows of whole vectors, for converters may write a vector beyond the last pixel.
    constexpr uint32_t ROW = 32 << 16 | 1;
    constexpr uint32_t ALIGN[4] = {ROW, ROW, ROW, ROW};
    ImagePtr image(
        tavu_imgb_create(width, height, cs, 0, ALIGN, nullptr, nullptr, nullptr, nullptr));
    if (!image)
        throw std::runtime_error("no picture buffer of " + std::to_string(width) + "x" +
                                 std::to_string(height));
    return image;
}

ImagePtr copy_frame(const AVFrame &frame) {
    const int cs = layout_code(frame.format);
    if (cs < 0)
        throw std::runtime_error("pixel format " + format_name(frame.format) +
                                 " has no matching layout");
    ImagePtr image = make_image(frame.width, frame.height, cs);
    copy_planes(frame, *image);
    return image;
}

ImagePtr to_full_range_420(const AVFrame &frame) {
    if (is_full_range_420(frame)) return copy_frame(frame);
    ImagePtr image = make_image(frame.width, frame.height, TAVU_CS_YUV420);
    const ScalerPtr scaler = make_scaler(frame, plain_format(frame.format));
    if (!scaler)
        throw std::runtime_error("cannot convert pixel format " + format_name(frame.format));
    const int rows = sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height,
                               image->addr, image->stride);
    if (rows != frame.height) throw std::runtime_error("cannot convert a frame");
    return image;
}
