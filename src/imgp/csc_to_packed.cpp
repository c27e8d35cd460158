// Planes to packed 8-bit RGB, LANES pixels at a time; rows narrower than that take the scalar form.
// Reads and writes no byte outside the rows.
#include "imgp/color_vec.h"
#include "imgp/csc_to_packed_model.h"

namespace tavu {
namespace {

#if TAVU_VEC

template <class Format>
using FormatCursor = Cursor<Format::BYTES, Format::ALPHA_PLANE>;

template <class Format, bool Bgr>
TAVU_VEC_INLINE void convert_block(FormatCursor<Format> &at) {
    const RgbBlock p = load_rgb<typename Format::Space>(at);
    const U8 first = Bgr ? p.b : p.r, third = Bgr ? p.r : p.b;
    if constexpr (Format::BYTES == 3) {
        store_interleaved(at.out, first, p.g, third);
    } else if constexpr (Format::ALPHA_PLANE) {
        store_interleaved(at.out, first, p.g, third, load(at.c3));
    } else {
        store_interleaved(at.out, first, p.g, third, splat(255));
    }
}

template <class Format, bool Bgr>
struct BestRow {
    static void convert(const uint8_t *const c[4], uint8_t *out, int32_t width) {
        if (width < LANES) return ModelRow<Format, Bgr>::convert(c, out, width);
        using Place = FormatCursor<Format>;
        for_each_block(Place{c[0], c[1], c[2], c[3], out}, width,
                       [](Place &at) { convert_block<Format, Bgr>(at); });
    }
};

#else

template <class Format, bool Bgr>
using BestRow = ModelRow<Format, Bgr>;

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_yuv444_to_rgb888, to_packed<Packed<FromYuv, 3>, BestRow>)
TAVU_CSC(tavu_csc_yuv444_to_rgba8888, to_packed<Packed<FromYuv, 4>, BestRow>)
TAVU_CSC(tavu_csc_yuv444a8_to_rgba8888, to_packed<Packed<FromYuv, 4, true>, BestRow>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgb888, to_packed<Packed<FromRgb, 3>, BestRow>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgba8888, to_packed<Packed<FromRgb, 4>, BestRow>)
TAVU_CSC(tavu_csc_r8g8b8a8_to_rgba8888, to_packed<Packed<FromRgb, 4, true>, BestRow>)
