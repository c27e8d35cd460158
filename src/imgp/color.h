// Colour arithmetic of one pixel: the exact meaning of every conversion kernel.
#ifndef TAVU_IMGP_COLOR_H
#define TAVU_IMGP_COLOR_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace tavu {
namespace {

struct Rgb {
    uint8_t r, g, b;
};

constexpr uint8_t clamp255(int x) { return static_cast<uint8_t>(x < 0 ? 0 : x > 255 ? 255 : x); }

// ITU-R BT.601, full range, 8 fraction bits, rounded.
constexpr Rgb yuv_to_rgb(int y, int u, int v) {
    u -= 128;
    v -= 128;
    return {clamp255(y + ((359 * v + 128) >> 8)), clamp255(y - ((183 * v + 88 * u + 128) >> 8)),
            clamp255(y + ((454 * u + 128) >> 8))};
}

// The same with products and sums wrapped to 16 bits before the rounding shift, which does not wrap.
// Callers of the combined routines rely on these bytes.
constexpr Rgb yuv_to_rgb_wrap16(int y, int u, int v) {
    u -= 128;
    v -= 128;
    const auto shift = [](int x) { return (static_cast<int16_t>(x) + 128) >> 8; };
    return {clamp255(y + shift(359 * v)), clamp255(y - shift(183 * v + 88 * u)),
            clamp255(y + shift(454 * u))};
}

// Adds the bias of chroma to a difference of -127..128, saturated to 255.
constexpr uint8_t chroma(int t) { return static_cast<uint8_t>(t + 128 > 255 ? 255 : t + 128); }

struct Yuv {
    uint8_t y, u, v;
};

constexpr Yuv rgb_to_yuv(int r, int g, int b) {
    // The luma weights sum to 256, so the result is at most 255.
    return {static_cast<uint8_t>((77 * r + 150 * g + 29 * b + 128) >> 8),
            chroma((-43 * r - 85 * g + 128 * b + 128) >> 8),
            chroma((128 * r - 107 * g - 21 * b + 128) >> 8)};
}

constexpr uint32_t pack_565(Rgb p) {
    return static_cast<uint32_t>((p.r & 0xF8) << 8 | (p.g & 0xFC) << 3 | p.b >> 3);
}

// The colour space of three source samples.
struct FromYuv {
    static constexpr Rgb rgb(uint8_t y, uint8_t u, uint8_t v) { return yuv_to_rgb(y, u, v); }
};
struct FromRgb {
    static constexpr Rgb rgb(uint8_t r, uint8_t g, uint8_t b) { return {r, g, b}; }
};

}  // namespace
}  // namespace tavu

#endif
