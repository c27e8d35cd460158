#include "peers.h"

#if TAVU_HAVE_LIBYUV

#include <libyuv.h>

#include <map>
#include <vector>

#define ROUTINE(name)                                                                  \
    void name(uint8_t *const s[4], int32_t w, int32_t h, const int32_t ss[4], int32_t, \
              uint8_t *const d[4], int32_t, int32_t, const int32_t ds[4], int32_t)

namespace {

// The intermediate picture of conversions that the peer does in two steps.
uint8_t *intermediate(int32_t w, int32_t h) {
    static std::vector<uint8_t> picture;
    picture.resize(static_cast<size_t>(w) * static_cast<size_t>(h) * 4);
    return picture.data();
}

// The matrices are full-range BT.601; with U and V exchanged they give R, G, B order.
ROUTINE(yuv_to_rgb888) {
    libyuv::I444ToRGB24Matrix(s[0], ss[0], s[2], ss[2], s[1], ss[1], d[0], ds[0],
                              &libyuv::kYvuJPEGConstants, w, h);
}

ROUTINE(yuv_to_rgba8888) {
    libyuv::J444ToABGR(s[0], ss[0], s[1], ss[1], s[2], ss[2], d[0], ds[0], w, h);
}

ROUTINE(yuv_to_rgb565) {
    uint8_t *const argb = intermediate(w, h);
    libyuv::J444ToARGB(s[0], ss[0], s[1], ss[1], s[2], ss[2], argb, 4 * w, w, h);
    libyuv::ARGBToRGB565(argb, 4 * w, d[0], ds[0], w, h);
}

ROUTINE(planes_to_rgb888) {
    libyuv::MergeRGBPlane(s[0], ss[0], s[1], ss[1], s[2], ss[2], d[0], ds[0], w, h);
}

ROUTINE(planes_to_rgba8888) {
    libyuv::MergeARGBPlane(s[2], ss[2], s[1], ss[1], s[0], ss[0], nullptr, 0, d[0], ds[0], w, h);
}

ROUTINE(planes4_to_rgba8888) {
    libyuv::MergeARGBPlane(s[2], ss[2], s[1], ss[1], s[0], ss[0], s[3], ss[3], d[0], ds[0], w, h);
}

ROUTINE(rgb888_to_yuv) {
    uint8_t *const argb = intermediate(w, h);
    libyuv::RAWToARGB(s[0], ss[0], argb, 4 * w, w, h);
    libyuv::ARGBToI444(argb, 4 * w, d[0], ds[0], d[1], ds[1], d[2], ds[2], w, h);
}

}  // namespace

tavu_fn_csc_t csc_peer(const std::string &kernel) {
    static const std::map<std::string, tavu_fn_csc_t> PEERS = {
        {"yuv444_to_rgb888", yuv_to_rgb888},        {"yuv444_to_rgba8888", yuv_to_rgba8888},
        {"yuv444_to_rgb565", yuv_to_rgb565},        {"r8g8b8_to_rgb888", planes_to_rgb888},
        {"r8g8b8_to_rgba8888", planes_to_rgba8888}, {"r8g8b8a8_to_rgba8888", planes4_to_rgba8888},
        {"r8g8b8_to_yuv444", rgb888_to_yuv},
    };
    const auto found = PEERS.find(kernel);
    return found == PEERS.end() ? nullptr : found->second;
}

#else

tavu_fn_csc_t csc_peer(const std::string &) { return nullptr; }

#endif
