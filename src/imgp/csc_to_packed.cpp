// Planes to packed 8-bit RGB, LANES pixels at a time. Narrower rows fall back to the next lower
// level, at the lowest to the scalar form. Reads and writes no byte outside the rows.
#include "imgp/color_vec.h"
#include "imgp/csc_fallback.h"
#include "imgp/csc_to_packed_model.h"

namespace tavu {
namespace {

#if TAVU_VEC

template <class Format>
using FormatCursor = Cursor<Format::TARGET.bytes, Format::TARGET.alpha_plane>;

template <class Format>
constexpr bool is_yuv = std::is_same_v<typename Format::Space, FromYuv>;

template <class Format>
TAVU_VEC_INLINE void store_next_pixels(FormatCursor<Format> &at, U8 first, U8 second, U8 third) {
    if constexpr (Format::TARGET.bytes == 3) {
        store_next_interleaved(at.out, first, second, third);
    } else if constexpr (Format::TARGET.alpha_plane) {
        store_next_interleaved(at.out, first, second, third, load_next(at.c3));
    } else {
        store_next_interleaved(at.out, first, second, third, splat(255));
    }
}

template <class Format, class Convert>
TAVU_VEC_INLINE void convert_rows(const Csc &csc, uint8_t *target, Convert convert_block) {
    for_each_packed_row(csc, Format::TARGET.planes(), target,
                        [&](const uint8_t *const c[4], uint8_t *out) {
                            const FormatCursor<Format> at = {c[0], c[1], c[2], c[3], out};
                            for_each_block(at, csc.src_w, convert_block);
                        });
}

template <class Format>
void convert(const Csc &c) {
    using At = FormatCursor<Format>;
    const bool bgr = Format::is_bgr(c.dst_cs);
    if (c.src_w < LANES) return to_packed_scalar(c, is_yuv<Format>, Format::TARGET, bgr);
    uint8_t *const target = packed_target(c, bgr);
    choose(bgr, [&](auto swapped) {
        convert_rows<Format>(c, target, [=](At &at) __attribute__((always_inline)) {
            const RgbBlock p = load_next_rgb<typename Format::Space>(at);
            store_next_pixels<Format>(at, pick(swapped, p.b, p.r), p.g, pick(swapped, p.r, p.b));
        });
    });
}

#else

template <class Format>
void convert(const Csc &c) {
    to_packed<Format>(c);
}

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC_FALLBACK(NARROW, tavu_csc_yuv444_to_rgb888, convert<Packed<FromYuv, 3>>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_yuv444_to_rgba8888, convert<Packed<FromYuv, 4>>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_yuv444a8_to_rgba8888, convert<Packed<FromYuv, 4, true>>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_r8g8b8_to_rgb888, convert<Packed<FromRgb, 3>>)
TAVU_CSC_FALLBACK(NARROW, tavu_csc_r8g8b8_to_rgba8888, convert<Packed<FromRgb, 4>>)
TAVU_CSC_FALLBACK(NARROW_AND_V4, tavu_csc_r8g8b8a8_to_rgba8888, convert<Packed<FromRgb, 4, true>>)
