// Planes to 5-6-5 units, with or without alpha.
#include "imgp/color.h"
#include "imgp/csc.h"

namespace tavu {
namespace {

struct GreyFromFirst {
    static constexpr Rgb rgb(uint8_t p, uint8_t, uint8_t) { return {p, p, p}; }
};

enum class Alpha { NONE, OPAQUE, PLANE };

template <class Space>
void row_to_565(const uint8_t *c0, const uint8_t *c1, const uint8_t *c2, uint8_t *out,
                int32_t width) {
    for (int32_t x = 0; x < width; x++) {
        const uint32_t unit = pack_565(Space::rgb(c0[x], c1[x], c2[x]));
        out[2 * x] = static_cast<uint8_t>(unit);
        out[2 * x + 1] = static_cast<uint8_t>(unit >> 8);
    }
}

// AlphaStep: bytes from one alpha sample to the next in the second target plane.
template <class Space, Alpha alpha = Alpha::NONE, int AlphaStep = 1>
void to_565(const Csc &c) {
    // Distance of two rows: the padding counts twice. Callers rely on it.
    const ptrdiff_t row_bytes = 2 * (static_cast<ptrdiff_t>(c.dst_stride[0]) - c.src_w);
    uint8_t *out = c.dst[0];
    for (int32_t y = 0; y < c.src_h; y++, out += row_bytes) {
        const uint8_t *c0 = c.src_row(0, y);
        // The grey source has no need of planes 1 and 2, which may be missing.
        constexpr bool GREY = std::is_same_v<Space, GreyFromFirst>;
        row_to_565<Space>(c0, GREY ? c0 : c.src_row(1, y), GREY ? c0 : c.src_row(2, y), out,
                          c.src_w);
        if constexpr (alpha != Alpha::NONE) {
            const uint8_t *from = alpha == Alpha::PLANE ? c.src_row(3, y) : nullptr;
            uint8_t *to = c.dst_row(1, y);
            for (int32_t x = 0; x < c.src_w; x++)
                to[x * AlphaStep] = from != nullptr ? from[x] : 255;
        }
    }
}

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_yuv444_to_rgb565, to_565<FromYuv>)
TAVU_CSC(tavu_csc_yuv444_to_rgb565a8, to_565<FromYuv, Alpha::OPAQUE>)
TAVU_CSC(tavu_csc_yuv444a8_to_rgb565a8, to_565<FromYuv, Alpha::PLANE>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgb565, to_565<FromRgb>)
TAVU_CSC(tavu_csc_x8y8z8_to_xyz565a8, to_565<FromRgb, Alpha::OPAQUE>)
TAVU_CSC(tavu_csc_x8y8z8a8_to_xyz565a8, to_565<FromRgb, Alpha::PLANE>)
// Two streams that overlap as a rule: units 2 bytes apart, alpha 3. Callers rely on it.
TAVU_CSC(tavu_csc_yuv444a8_to_rgba5658, to_565<FromYuv, Alpha::PLANE, 3>)
// Grey from plane 0; callers rely on it.
TAVU_CSC(tavu_csc_r8g8b8a8_to_rgba5658, to_565<GreyFromFirst, Alpha::PLANE, 3>)
