// Planes to 5-6-5 units, LANES pixels at a time; rows narrower than that and the formats of two
// streams take the scalar form. Reads and writes no byte outside the rows.
//
//     high byte = (R & 0xF8) | (G >> 5),  low byte = ((G << 3) & 0xE0) | (B >> 3)
#include "imgp/csc_to_565_model.h"

#include <cstring>

#include "imgp/color_vec.h"

namespace tavu {
namespace {

#if TAVU_VEC

template <class Format>
struct BestRow565 {
    static void convert(const Lines565 &at, int32_t width) {
        if (width < LANES) return ModelRow565<Format>::convert(at, width);
        using Place = Cursor<2>;
        for_each_block(Place{at.c[0], at.c[1], at.c[2], nullptr, at.out}, width, [](Place &place) {
            const RgbBlock p = load_rgb<typename Format::Space>(place);
            const U8 high = (p.r & 0xF8) | (p.g >> 5);
            const U8 low = (p.g << 3 & 0xE0) | (p.b >> 3);
            store_interleaved(place.out, low, high);
        });
        const auto size = static_cast<size_t>(width);
        if constexpr (Format::ALPHA == Alpha::OPAQUE) memset(at.alpha, 255, size);
        if constexpr (Format::ALPHA == Alpha::PLANE) memcpy(at.alpha, at.c[3], size);
    }
};

#else

template <class Format>
using BestRow565 = ModelRow565<Format>;

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_yuv444_to_rgb565, to_565<To565<FromYuv>, BestRow565>)
TAVU_CSC(tavu_csc_yuv444_to_rgb565a8, to_565<To565<FromYuv, Alpha::OPAQUE>, BestRow565>)
TAVU_CSC(tavu_csc_yuv444a8_to_rgb565a8, to_565<To565<FromYuv, Alpha::PLANE>, BestRow565>)
TAVU_CSC(tavu_csc_r8g8b8_to_rgb565, to_565<To565<FromRgb>, BestRow565>)
TAVU_CSC(tavu_csc_x8y8z8_to_xyz565a8, to_565<To565<FromRgb, Alpha::OPAQUE>, BestRow565>)
TAVU_CSC(tavu_csc_x8y8z8a8_to_xyz565a8, to_565<To565<FromRgb, Alpha::PLANE>, BestRow565>)
// Two streams, units 2 bytes apart and alpha 3; callers rely on it.
TAVU_CSC(tavu_csc_yuv444a8_to_rgba5658, to_565<To565<FromYuv, Alpha::PLANE, 3>>)
TAVU_CSC(tavu_csc_r8g8b8a8_to_rgba5658, to_565<To565<GreyFromFirst, Alpha::PLANE, 3>>)
