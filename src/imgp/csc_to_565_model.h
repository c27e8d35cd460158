// Planes to 5-6-5 units, with or without alpha, scalar.
//
// A unit is Space::rgb() of a pixel's samples, truncated: (R & 0xF8) << 8 | (G & 0xFC) << 3 | B >> 3,
// low byte first. Reads `width` bytes of each plane; writes 2 bytes and one alpha byte per pixel.
#ifndef TAVU_IMGP_CSC_TO_565_MODEL_H
#define TAVU_IMGP_CSC_TO_565_MODEL_H

#include "imgp/color.h"
#include "imgp/csc.h"

namespace tavu {

enum class Alpha { NONE, OPAQUE, PLANE };

// The rows of one picture line.
struct Lines565 {
    const uint8_t *c[4];
    uint8_t *out, *alpha;
};

namespace {

// Grey from the first plane; the other two are not read and may be missing. Callers rely on it.
struct GreyFromFirst {
    static constexpr Rgb rgb(uint8_t p, uint8_t, uint8_t) { return {p, p, p}; }
};

// AlphaStep: bytes from one alpha sample to the next in the second target plane.
template <class Space_, Alpha Alpha_ = Alpha::NONE, int AlphaStep = 1>
struct To565 {
    using Space = Space_;
    static constexpr Alpha ALPHA = Alpha_;
    static constexpr int ALPHA_STEP = AlphaStep;
};

// Each pixel's unit is written before its alpha, which matters where the two streams overlap.
template <class Format>
void row_565(const Lines565 &at, int32_t width) {
    for (int32_t x = 0; x < width; x++) {
        const uint32_t unit = pack_565(Format::Space::rgb(at.c[0][x], at.c[1][x], at.c[2][x]));
        at.out[2 * x] = static_cast<uint8_t>(unit);
        at.out[2 * x + 1] = static_cast<uint8_t>(unit >> 8);
        if constexpr (Format::ALPHA == Alpha::OPAQUE) at.alpha[x] = 255;
        if constexpr (Format::ALPHA == Alpha::PLANE) at.alpha[x * Format::ALPHA_STEP] = at.c[3][x];
    }
}

// Calls convert(lines) for each row.
template <class Convert>
void for_each_565_row(const Csc &c, bool grey, Alpha alpha, Convert convert) {
    // The distance between rows counts the padding twice. Callers rely on it.
    const ptrdiff_t row_bytes = 2 * (static_cast<ptrdiff_t>(c.dst_stride[0]) - c.src_w);
    uint8_t *out = c.dst[0];
    for (int32_t y = 0; y < c.src_h; y++, out += row_bytes) {
        Lines565 at = {};
        for (int p = 0; p < 3; p++) at.c[p] = c.src_row(grey ? 0 : p, y);
        if (alpha == Alpha::PLANE) at.c[3] = c.src_row(3, y);
        at.out = out;
        if (alpha != Alpha::NONE) at.alpha = c.dst_row(1, y);
        convert(at);
    }
}

template <class Format>
void to_565(const Csc &c) {
    constexpr bool GREY = std::is_same_v<typename Format::Space, GreyFromFirst>;
    for_each_565_row(c, GREY, Format::ALPHA,
                     [&](const Lines565 &at) { row_565<Format>(at, c.src_w); });
}

}  // namespace
}  // namespace tavu

#endif
