// To planar YUV: from packed RGB, and plane copies.
#include <cstddef>
#include <cstring>

#include "imgp/color.h"
#include "imgp/csc.h"

namespace tavu {
namespace {

// Source pixels are Step bytes; each channel has its own pointer and stride.
template <int Step>
void to_yuv(const Csc &c) {
    constexpr bool ALPHA = Step == 4;
    for (int32_t row = 0; row < c.src_h; row++) {
        const uint8_t *r = c.src_row(0, row), *g = c.src_row(1, row), *b = c.src_row(2, row);
        const uint8_t *a = ALPHA ? c.src_row(3, row) : nullptr;
        uint8_t *y = c.dst_row(0, row), *u = c.dst_row(1, row), *v = c.dst_row(2, row);
        uint8_t *alpha = ALPHA ? c.dst_row(3, row) : nullptr;
        for (int32_t x = 0; x < c.src_w; x++) {
            const Yuv p = rgb_to_yuv(r[x * Step], g[x * Step], b[x * Step]);
            y[x] = p.y;
            u[x] = p.u;
            v[x] = p.v;
            if constexpr (ALPHA) alpha[x] = a[x * Step];
        }
    }
}

void copy_plane(const Csc &c, int plane) {
    if (c.src_w < 1) return;
    for (int32_t row = 0; row < c.src_h; row++) {
        memcpy(c.dst_row(plane, row), c.src_row(plane, row), static_cast<size_t>(c.src_w));
    }
}

void copy_planes(const Csc &c) {
    for (int plane = 0; plane < 3; plane++) copy_plane(c, plane);
    if (c.dst_cs == TAVU_CS_YUV444A8 && c.src[3] != nullptr) copy_plane(c, 3);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_r8g8b8_to_yuv444, to_yuv<3>)
TAVU_CSC(tavu_csc_r8g8b8a8_to_yuv444a8, to_yuv<4>)
TAVU_CSC(tavu_csc_yuv444x_to_yuv444x, copy_planes)
