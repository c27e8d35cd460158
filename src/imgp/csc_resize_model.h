// Conversion and bilinear resize in one pass, scalar.
//
// Each plane is interpolated as by the resizer, (w0 tl + w1 tr + w2 bl + w3 br) >> 6. In a row of YUV
// samples the full groups of eight pixels are converted in wrapping 16-bit arithmetic and the
// remainder exactly; callers rely on both. Reads nothing beyond the neighbours of the last pixel and
// writes exactly dst_w pixels per row.
#ifndef TAVU_IMGP_CSC_RESIZE_MODEL_H
#define TAVU_IMGP_CSC_RESIZE_MODEL_H

#include "core/integer.h"
#include "imgp/bilinear.h"
#include "imgp/color.h"
#include "imgp/csc.h"

namespace tavu {
namespace {

struct WeightTable {
    uint8_t bytes[256];
};

// The resizer's weights. Its own table may be written by callers.
constexpr WeightTable bilinear_weights() {
    WeightTable table{};
    for (int i = 0; i < 256; i++) {
        const int a = i / 32, b = i / 4 % 8;
        table.bytes[i] = static_cast<uint8_t>((i & 1 ? a : 8 - a) * (i & 2 ? b : 8 - b));
    }
    return table;
}
constexpr WeightTable WEIGHTS = bilinear_weights();

// One source plane at one target row.
struct PlaneRows {
    const uint8_t *upper, *lower;

    uint8_t interpolate(int32_t left, int32_t right, const uint8_t *w) const {
        return static_cast<uint8_t>(
            (w[0] * upper[left] + w[1] * upper[right] + w[2] * lower[left] + w[3] * lower[right]) >>
            6);
    }
};

template <class Space>
Rgb convert_pixel(const uint8_t (&c)[4], bool in_group) {
    if constexpr (std::is_same_v<Space, FromYuv>) {
        if (in_group) return yuv_to_rgb_wrap16(c[0], c[1], c[2]);
    }
    return Space::rgb(c[0], c[1], c[2]);
}

// Target pixels from `first` on.
template <class Space>
void convert_resize_row(const PlaneRows *planes, const uint8_t *weights, Step step,
                        const PackedTarget &target, int32_t first, int32_t width, uint8_t *out) {
    const int32_t grouped = width & ~7;
    out += static_cast<ptrdiff_t>(first) * target.bytes;
    for (int32_t i = first; i < width; i++, out += target.bytes) {
        const int32_t x = wrap_multiply(i, step.step);
        const int32_t left = step.sample(x), right = left + step.next();
        uint8_t c[4] = {0, 0, 0, 255};
        for (int p = 0; p < target.planes(); p++) {
            c[p] = planes[p].interpolate(left, right, weights + weight_column(x));
        }
        const Rgb rgb = convert_pixel<Space>(c, i < grouped);
        out[0] = rgb.r;
        out[1] = rgb.g;
        out[2] = rgb.b;
        if (target.bytes == 4) out[3] = c[3];
    }
}

template <class Space>
void convert_resize_from(const Csc &c, const PackedTarget &target, int32_t first) {
    const Step step_x = step_for(c.src_w, c.dst_w);
    const Step step_y = step_for(c.src_h, c.dst_h);
    int32_t y = 0;
    for (int32_t j = 0; j < c.dst_h; j++, y = wrap_add(y, step_y.step)) {
        PlaneRows planes[4] = {};
        for (int p = 0; p < target.planes(); p++) {
            const int32_t row = step_y.sample(y);
            planes[p] = {c.src_row(p, row), c.src_row(p, row + step_y.next())};
        }
        convert_resize_row<Space>(planes, WEIGHTS.bytes + weight_row(y), step_x, target, first,
                                  c.dst_w, c.dst_row(0, j));
    }
}

template <class Space, int Bytes, bool AlphaPlane = false>
void convert_resize(const Csc &c) {
    convert_resize_from<Space>(c, {Bytes, AlphaPlane}, 0);
}

}  // namespace
}  // namespace tavu

#endif
