// Planes to 5-6-5 units, LANES pixels at a time. Narrower rows fall back to the next lower level, at
// the lowest to the scalar form. Reads and writes no byte outside the rows.
//
//     high byte = (R & 0xF8) | (G >> 5),  low byte = ((G << 3) & 0xE0) | (B >> 3)
#include <cstring>

#include "imgp/color_vec.h"
#include "imgp/csc_fallback.h"

namespace tavu {
namespace {

#if TAVU_VEC

template <class Space>
void convert_row(const Lines565 &at, int32_t width) {
    const Cursor<2> start = {at.c[0], at.c[1], at.c[2], nullptr, at.out};
    for_each_block(start, width, [](Cursor<2> &cursor) {
        const RgbBlock p = load_next_rgb<Space>(cursor);
        const U8 high = (p.r & 0xF8) | (p.g >> 5);
        const U8 low = (p.g << 3 & 0xE0) | (p.b >> 3);
        store_next_interleaved(cursor.out, low, high);
    });
}

template <class Space>
TAVU_ONE_COPY void convert_rows(const Csc &c, Alpha alpha) {
    if (c.src_w < LANES) return to_565_scalar(c, std::is_same_v<Space, FromYuv>, alpha);
    const auto size = static_cast<size_t>(c.src_w);
    for_each_565_row(c, false, alpha, [&](const Lines565 &at) {
        convert_row<Space>(at, c.src_w);
        if (alpha == Alpha::OPAQUE) memset(at.alpha, 255, size);
        if (alpha == Alpha::PLANE) memcpy(at.alpha, at.c[3], size);
    });
}

template <class Space, Alpha A = Alpha::NONE>
void convert(const Csc &c) {
    convert_rows<Space>(c, A);
}

#else

template <class Space, Alpha A = Alpha::NONE>
void convert(const Csc &c) {
    using Format = To565<Space, A>;
    to_565<Format>(c);
}

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC_FALLBACK(NARROW, tavu_csc_yuv444_to_rgb565, convert<FromYuv>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_yuv444_to_rgb565a8, convert<FromYuv, Alpha::OPAQUE>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_yuv444a8_to_rgb565a8, convert<FromYuv, Alpha::PLANE>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_r8g8b8_to_rgb565, convert<FromRgb>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_x8y8z8_to_xyz565a8, convert<FromRgb, Alpha::OPAQUE>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_x8y8z8a8_to_xyz565a8, convert<FromRgb, Alpha::PLANE>)
