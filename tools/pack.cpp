#include "pack.h"

#include <stdexcept>
#include <string>

#include "commands.h"
#include "picture.h"
#include "routines.h"

namespace {

/** The output planes of a routine. */
struct Target {
    uint8_t *planes[4];
    int32_t strides[4];
};

/** `units` gets the 5-6-5 pixels of rgba5658, which its routine writes separately from alpha. */
Target target_of(const PixelLayout &to, uint8_t *out, uint8_t *units, int width, int height) {
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    switch (to.cs) {
        case TAVU_CS_YUV444:
        case TAVU_CS_YUV444A8:
            return {{out, out + pixels, out + 2 * pixels, out + 3 * pixels},
                    {width, width, width, width}};
        case TAVU_CS_RGB565A8: return {{out, out + 2 * pixels}, {2 * width, width}};
        case TAVU_CS_RGBA5658: return {{units, out + 2}, {2 * width, 3 * width}};
        // Routines write B, G, R order through the third pointer.
        default: return {{out, nullptr, out}, {to.bytes * width}};
    }
}

struct Conversion {
    tavu_fn_csc_t routine;
    int32_t from;
};

/** Prefers a routine that keeps alpha, if the picture has any; null if there is no routine. */
Conversion choose(const Planes &planes, const PixelLayout &to, bool resizing) {
    for (const bool alpha : {planes.alpha, !planes.alpha}) {
        const int32_t from = planes.code(alpha);
        if (const tavu_fn_csc_t routine = find_routine(from, to.cs, resizing))
            return {routine, from};
    }
    return {nullptr, 0};
}

/** Converts R, G, B planes to Y, U, V. */
Planes to_yuv(const Planes &planes) {
    const tavu_imgb_t &from = *planes.image;
    std::vector<uint8_t> rgba = pack(planes, *find_layout(TAVU_CS_RGBA8888), from.w, from.h);
    Planes yuv{make_image(from.w, from.h, from.cs), false, planes.alpha};
    uint8_t *const channels[4] = {&rgba[0], &rgba[1], &rgba[2], &rgba[3]};
    const int32_t stride = 4 * from.w, strides[4] = {stride, stride, stride, stride};
    // The lookup does not offer packed sources.
    tavu_csc_r8g8b8a8_to_yuv444a8(channels, from.w, from.h, strides, TAVU_CS_RGBA8888,
                                  yuv.image->addr, from.w, from.h, yuv.image->stride,
                                  yuv.image->cs);
    return yuv;
}

/** The combined routines do not check sizes; the resizer does, and has the same limits. */
void check_limits(const tavu_imgb_t &from, int width, int height) {
    tavu_irsz_param param{};
    param.fmt = TAVU_IRSZ_8B;
    param.mode = TAVU_IRSZ_MODE_FULL;
    param.src_w = from.w;
    param.src_h = from.h;
    param.dst_w = width;
    param.dst_h = height;
    const ResizerPtr resizer(tavu_irsz_create(&param, nullptr));
    if (!resizer)
        throw std::runtime_error("pictures of " + std::to_string(from.w) + "x" +
                                 std::to_string(from.h) + " are too large to scale to " +
                                 std::to_string(width) + "x" + std::to_string(height));
}

}  // namespace

std::vector<uint8_t> pack(const Planes &planes, const PixelLayout &to, int width, int height) {
    const tavu_imgb_t &from = *planes.image;
    const bool resizing = from.w != width || from.h != height;
    const Conversion conversion = choose(planes, to, resizing);
    if (!conversion.routine && planes.rgb) return pack(to_yuv(planes), to, width, height);
    if (!conversion.routine)
        throw UsageError(std::string("--one-pass: no routine resizes and converts to ") + to.name);
    if (resizing) check_limits(from, width, height);
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    std::vector<uint8_t> out(pixels * static_cast<size_t>(to.bytes)),
        units(to.cs == TAVU_CS_RGBA5658 ? 2 * pixels : 0);
    const Target target = target_of(to, out.data(), units.data(), width, height);
    conversion.routine(from.addr, from.w, from.h, from.stride, conversion.from, target.planes,
                       width, height, target.strides, to.cs);
    for (size_t i = 0; i < units.size(); i++) out[i / 2 * 3 + i % 2] = units[i];
    return out;
}
