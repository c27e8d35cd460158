// Three or four planes to packed 8-bit RGB, scalar.
//
// Each pixel becomes Space::rgb() of its samples, in R, G, B or B, G, R order. A fourth byte is its
// alpha sample or 255. Reads `width` bytes of each plane and writes exactly `width` pixels.
#ifndef TAVU_IMGP_CSC_TO_PACKED_MODEL_H
#define TAVU_IMGP_CSC_TO_PACKED_MODEL_H

#include "imgp/color.h"
#include "imgp/csc.h"

namespace tavu {
namespace {

template <class Space_, int Bytes, bool AlphaPlane = false>
struct Packed {
    using Space = Space_;
    static constexpr PackedTarget TARGET = {Bytes, AlphaPlane};

    static bool is_bgr(int32_t cs) {
        if (Bytes == 4) return cs == TAVU_CS_BGRA8888;
        // RGB planes take every code except that of R, G, B as B, G, R; callers rely on it.
        return std::is_same_v<Space, FromRgb> ? cs != TAVU_CS_RGB888 : cs == TAVU_CS_BGR888;
    }
};

// B, G, R order goes through the third target pointer; callers rely on it.
inline uint8_t *packed_target(const Csc &c, bool bgr) { return c.dst[bgr ? 2 : 0]; }

// Calls convert(planes, out) for each row. All source planes advance by the first stride; callers rely
// on it.
template <class Convert>
TAVU_VEC_INLINE void for_each_packed_row(const Csc &c, int planes, uint8_t *out, Convert convert) {
    const uint8_t *at[4] = {};
    for (int p = 0; p < planes; p++) at[p] = c.src[p];
    for (int32_t y = 0; y < c.src_h; y++) {
        convert(at, out);
        for (int p = 0; p < planes; p++) at[p] += c.src_stride[0];
        out += c.dst_stride[0];
    }
}

template <class Space>
void to_packed_as(const Csc &csc, const PackedTarget &target, bool bgr) {
    const auto convert_row = [&](const uint8_t *const c[4], uint8_t *out) {
        for (int32_t x = 0; x < csc.src_w; x++, out += target.bytes) {
            const Rgb p = Space::rgb(c[0][x], c[1][x], c[2][x]);
            out[0] = bgr ? p.b : p.r;
            out[1] = p.g;
            out[2] = bgr ? p.r : p.b;
            if (target.bytes == 4) out[3] = target.alpha_plane ? c[3][x] : 255;
        }
    };
    for_each_packed_row(csc, target.planes(), packed_target(csc, bgr), convert_row);
}

template <class Format>
void to_packed(const Csc &c) {
    to_packed_as<typename Format::Space>(c, Format::TARGET, Format::is_bgr(c.dst_cs));
}

}  // namespace
}  // namespace tavu

#endif
