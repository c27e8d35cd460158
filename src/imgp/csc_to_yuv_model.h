// Packed RGB to Y, U, V planes, scalar.
//
// Each channel has its own pointer and stride, with Step bytes from pixel to pixel. With Step 4 alpha
// is copied to a fourth plane. Reads `width` samples of each channel and writes `width` bytes of each
// plane.
#ifndef TAVU_IMGP_CSC_TO_YUV_MODEL_H
#define TAVU_IMGP_CSC_TO_YUV_MODEL_H

#include "imgp/color.h"
#include "imgp/csc.h"

namespace tavu {

// The channels and planes of one picture line.
struct YuvLine {
    const uint8_t *in[4];
    uint8_t *out[4];
};

namespace {

template <int Step>
struct ModelYuvRow {
    static void convert(const YuvLine &at, int32_t width) {
        for (int32_t x = 0; x < width; x++) {
            const Yuv p = rgb_to_yuv(at.in[0][x * Step], at.in[1][x * Step], at.in[2][x * Step]);
            at.out[0][x] = p.y;
            at.out[1][x] = p.u;
            at.out[2][x] = p.v;
            if constexpr (Step == 4) at.out[3][x] = at.in[3][x * Step];
        }
    }
};

template <int Step, template <int> class Row = ModelYuvRow>
void to_yuv(const Csc &c) {
    for (int32_t y = 0; y < c.src_h; y++) {
        YuvLine at = {};
        for (int p = 0; p < Step; p++) {
            at.in[p] = c.src_row(p, y);
            at.out[p] = c.dst_row(p, y);
        }
        Row<Step>::convert(at, c.src_w);
    }
}

}  // namespace
}  // namespace tavu

#endif
