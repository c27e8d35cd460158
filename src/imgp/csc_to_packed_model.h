// Three or four planes to packed 8-bit RGB, scalar.
//
// Each pixel becomes Space::rgb() of its samples, in R, G, B or B, G, R order, and for four bytes
// its alpha sample or 255. Reads `width` bytes of each plane, writes exactly `width` pixels.
#ifndef TAVU_IMGP_CSC_TO_PACKED_MODEL_H
#define TAVU_IMGP_CSC_TO_PACKED_MODEL_H

#include "imgp/color.h"
#include "imgp/csc.h"

namespace tavu {
namespace {

template <class Space_, int Bytes, bool AlphaPlane = false>
struct Packed {
    using Space = Space_;
    static constexpr int BYTES = Bytes;
    static constexpr bool ALPHA_PLANE = AlphaPlane;

    static bool is_bgr(int32_t cs) {
        if (Bytes == 4) return cs == TAVU_CS_BGRA8888;
        // RGB planes take every code but that of R, G, B for B, G, R; callers rely on it.
        return std::is_same_v<Space, FromRgb> ? cs != TAVU_CS_RGB888 : cs == TAVU_CS_BGR888;
    }
};

template <class Format, bool Bgr>
struct ModelRow {
    static void convert(const uint8_t *const c[4], uint8_t *out, int32_t width) {
        for (int32_t x = 0; x < width; x++, out += Format::BYTES) {
            const Rgb p = Format::Space::rgb(c[0][x], c[1][x], c[2][x]);
            out[0] = Bgr ? p.b : p.r;
            out[1] = p.g;
            out[2] = Bgr ? p.r : p.b;
            if constexpr (Format::BYTES == 4) out[3] = Format::ALPHA_PLANE ? c[3][x] : 255;
        }
    }
};

// All source planes advance by the first stride, and B, G, R order goes through the third target
// pointer; callers rely on both.
template <class Format, bool Bgr, template <class, bool> class Row>
void convert_rows(const Csc &c) {
    uint8_t *out = c.dst[Bgr ? 2 : 0];
    const uint8_t *planes[4] = {c.src[0], c.src[1], c.src[2],
                                Format::ALPHA_PLANE ? c.src[3] : nullptr};
    for (int32_t y = 0; y < c.src_h; y++) {
        Row<Format, Bgr>::convert(planes, out, c.src_w);
        for (int p = 0; p < (Format::ALPHA_PLANE ? 4 : 3); p++) planes[p] += c.src_stride[0];
        out += c.dst_stride[0];
    }
}

template <class Format, template <class, bool> class Row = ModelRow>
void to_packed(const Csc &c) {
    if (Format::is_bgr(c.dst_cs)) {
        convert_rows<Format, true, Row>(c);
    } else {
        convert_rows<Format, false, Row>(c);
    }
}

}  // namespace
}  // namespace tavu

#endif
