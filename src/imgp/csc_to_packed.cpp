// Planes to packed 8-bit RGB, LANES pixels at a time; rows narrower than that take the scalar form.
// Reads and writes no byte outside the rows.
#include "imgp/color_vec.h"
#include "imgp/csc_scalar.h"
#include "imgp/csc_to_packed_model.h"

namespace tavu {
namespace {

#if TAVU_VEC

template <class Format>
using FormatCursor = Cursor<Format::TARGET.bytes, Format::TARGET.alpha_plane>;

template <class Format, bool Bgr>
TAVU_VEC_INLINE void convert_block(FormatCursor<Format> &at) {
    const RgbBlock p = load_rgb<typename Format::Space>(at);
    const U8 first = Bgr ? p.b : p.r, third = Bgr ? p.r : p.b;
    if constexpr (Format::TARGET.bytes == 3) {
        store_interleaved(at.out, first, p.g, third);
    } else if constexpr (Format::TARGET.alpha_plane) {
        store_interleaved(at.out, first, p.g, third, load(at.c3));
    } else {
        store_interleaved(at.out, first, p.g, third, splat(255));
    }
}

template <class Format, bool Bgr>
void convert_rows(const Csc &csc) {
    // Planes of R, G, B are put in order as they are read.
    constexpr bool RGB = std::is_same_v<typename Format::Space, FromRgb>;
    const int first = RGB && Format::is_bgr(csc.dst_cs) ? 2 : 0;
    const auto convert_row = [&](const uint8_t *const c[4], uint8_t *out) {
        for_each_block(FormatCursor<Format>{c[first], c[1], c[2 - first], c[3], out}, csc.src_w,
                       [](FormatCursor<Format> &at) { convert_block<Format, Bgr>(at); });
    };
    for_each_packed_row(csc, Format::TARGET.planes(), first == 2 || Bgr, convert_row);
}

template <class Format>
void best_to_packed(const Csc &c) {
    constexpr bool YUV = std::is_same_v<typename Format::Space, FromYuv>;
    if (c.src_w < LANES) {
        to_packed_scalar(c, YUV, Format::TARGET, Format::is_bgr(c.dst_cs));
    } else if (YUV && Format::is_bgr(c.dst_cs)) {
        convert_rows<Format, YUV>(c);
    } else {
        convert_rows<Format, false>(c);
    }
}

#else

template <class Format>
void best_to_packed(const Csc &c) {
    to_packed<Format>(c);
}

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_yuv444_to_rgb888, best_to_packed<Packed<FromYuv, 3>>)
TAVU_CSC(tavu_csc_yuv444_to_rgba8888, best_to_packed<Packed<FromYuv, 4>>)
TAVU_CSC(tavu_csc_yuv444a8_to_rgba8888, best_to_packed<Packed<FromYuv, 4, true>>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgb888, best_to_packed<Packed<FromRgb, 3>>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgba8888, best_to_packed<Packed<FromRgb, 4>>)
TAVU_CSC(tavu_csc_r8g8b8a8_to_rgba8888, best_to_packed<Packed<FromRgb, 4, true>>)
