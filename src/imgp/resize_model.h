// Bilinear resize of packed pixels, scalar.
//
//     out[k] = (w0 tl[k] + w1 tr[k] + w2 bl[k] + w3 br[k]) >> 6      for each channel k
//
// The sum is not rounded. Reads nothing beyond the neighbours of the last pixel and writes exactly
// dst_w pixels. With step 0 a neighbour without weight may not exist and is not read.
#ifndef TAVU_IMGP_RESIZE_MODEL_H
#define TAVU_IMGP_RESIZE_MODEL_H

#include "core/integer.h"
#include "imgp/resize.h"

namespace tavu {
namespace {

// Four neighbouring source pixels and their weights.
struct Quad {
    const uint8_t *tl, *tr, *bl, *br;
    const uint8_t *weights;

    // Weighted sum of byte k, with 6 fraction bits.
    uint32_t sum(int k) const {
        return static_cast<uint32_t>(weights[0] * tl[k] + weights[1] * tr[k] + weights[2] * bl[k] +
                                     weights[3] * br[k]);
    }
};

// A pixel format has the bytes of a source and of a target pixel, the unit in which line sizes are
// counted, and store(), which makes a target pixel.

// N channels of 8 bits.
template <int N>
struct Packed8 {
    static constexpr int SRC = N, DST = N, LINE_UNIT = 1;
    static void store(const Quad &q, uint8_t *out) {
        for (int k = 0; k < N; k++) out[k] = static_cast<uint8_t>(q.sum(k) >> 6);
    }
};

// 8-bit channels to 5-6-5, whole images: the upper bits of c1 are stored twice. Callers rely on it.
struct PackFull {
    static constexpr int SRC = 3, DST = 2, LINE_UNIT = 1;
    static void store(const Quad &q, uint8_t *out) {
        const uint32_t c0 = q.sum(0) >> 6, c1 = q.sum(1) >> 6, c2 = q.sum(2) >> 9;
        out[0] = static_cast<uint8_t>((c1 & 0xE0) | c2);
        out[1] = static_cast<uint8_t>((c0 & 0xF8) | c1 >> 5);
    }
};

// 8-bit channels to 5-6-5, lines: the bytes are swapped and a mask differs. Callers rely on it.
struct PackLine {
    static constexpr int SRC = 3, DST = 2, LINE_UNIT = 1;
    static void store(const Quad &q, uint8_t *out) {
        const uint32_t c0 = q.sum(0) >> 6, c1 = q.sum(1) >> 6, c2 = q.sum(2) >> 9;
        out[0] = static_cast<uint8_t>((c0 & 0x8F) | c1 >> 5);
        out[1] = static_cast<uint8_t>((c1 & 0xE0) | c2);
    }
};

// 5-6-5 to 5-6-5: channels are widened with zero low bits. Line sizes count pixels.
struct Rgb565 {
    static constexpr int SRC = 2, DST = 2, LINE_UNIT = 2;
    struct Wide {
        uint8_t rgb[3];
        explicit Wide(const uint8_t *p)
            : rgb{static_cast<uint8_t>(p[1] & 0xF8),
                  static_cast<uint8_t>(p[1] << 5 | (p[0] >> 3 & 0x1C)),
                  static_cast<uint8_t>(p[0] << 3)} {}
    };
    static void store(const Quad &q, uint8_t *out) {
        const Wide tl(q.tl), tr(q.tr), bl(q.bl), br(q.br);
        const Quad wide{tl.rgb, tr.rgb, bl.rgb, br.rgb, q.weights};
        const uint32_t r = wide.sum(0) >> 9, g = wide.sum(1) >> 8, b = wide.sum(2) >> 9;
        const uint32_t unit = r << 11 | g << 5 | b;
        out[0] = static_cast<uint8_t>(unit);
        out[1] = static_cast<uint8_t>(unit >> 8);
    }
};

template <class Pixel>
struct ModelResize {
    static constexpr int LINE_UNIT = Pixel::LINE_UNIT;

    // One target row. `next_x` is the distance to the right-hand neighbour in pixels.
    __attribute__((noinline)) static void line(const uint8_t *const rows[2], const uint8_t *weights,
                                               int32_t dst_w, int32_t shift_x, int32_t next_x,
                                               int32_t step_x, uint8_t *out) {
        const ptrdiff_t right = static_cast<ptrdiff_t>(next_x) * Pixel::SRC;
        if (step_x == 0) return repeat(rows, weights, dst_w, right, out);
        int32_t x = 0;
        for (int32_t i = 0; i < dst_w; i++, x = wrap_add(x, step_x), out += Pixel::DST) {
            const ptrdiff_t left =
                static_cast<ptrdiff_t>(Step{step_x, shift_x}.sample(x)) * Pixel::SRC;
            const uint8_t *upper = rows[0] + left, *lower = rows[1] + left;
            Pixel::store({upper, upper + right, lower, lower + right, weights + weight_column(x)},
                         out);
        }
    }

    // Step 0: all pixels are equal, and neighbours without weight may not exist.
    static void repeat(const uint8_t *const rows[2], const uint8_t *weights, int32_t dst_w,
                       ptrdiff_t right, uint8_t *out) {
        for (int32_t i = 0; i < dst_w; i++, out += Pixel::DST) {
            const auto at = [&](int n) {
                return weights[n] == 0 ? rows[0] : rows[n / 2] + n % 2 * right;
            };
            Pixel::store({rows[0], at(1), at(2), at(3), weights}, out);
        }
    }

    static void full(const Image &image, const uint8_t *weights) {
        const ptrdiff_t src_stride = static_cast<ptrdiff_t>(image.src_line) * LINE_UNIT;
        const ptrdiff_t dst_stride = static_cast<ptrdiff_t>(image.dst_line) * LINE_UNIT;
        const bool one_row = image.y.step == 0 && !weighs_lower(weights, image.x.step, image.dst_w);
        const ptrdiff_t next = one_row ? 0 : src_stride * (1 << image.y.shift);
        uint8_t *dst = image.dst;
        int32_t y = 0;
        for (int32_t j = 0; j < image.dst_h; j++, dst += dst_stride) {
            const uint8_t *upper = image.src + image.y.sample(y) * src_stride;
            const uint8_t *const rows[2] = {upper, upper + next};
            line(rows, weights + weight_row(y), image.dst_w, image.x.shift, 1 << image.x.shift,
                 image.x.step, dst);
            y = wrap_add(y, image.y.step);
        }
    }
};

}  // namespace
}  // namespace tavu

#endif
