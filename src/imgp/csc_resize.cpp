// Combined conversion and resizing to packed 8-bit RGB. The weighted sums of the planes are converted
// in registers, LANES pixels at a time. Narrow rows and the pixels of YUV rows after the last full
// group of eight take the scalar fallback.
#include "imgp/color_vec.h"
#include "imgp/csc_fallback.h"
#include "imgp/resize_engine.h"

namespace tavu {
namespace {

#if TAVU_VEC

TAVU_VEC_INLINE I16 as_signed(U16 v) { return reinterpret_cast<I16>(v); }

// From weighted sums. Products and sums of 16-bit lanes wrap as in the model.
TAVU_VEC_INLINE void wrap16_lanes(U16 y6, U16 u6, U16 v6, I16 *r, I16 *g, I16 *b) {
    const I16 y = as_signed(y6 >> 6);
    const U16 u = (u6 >> 6) - 128, v = (v6 >> 6) - 128;
    *r = y + round_shift8(as_signed(v * 359));
    *g = y - round_shift8(as_signed(v * 183 + u * 88));
    *b = y + round_shift8(as_signed(u * 454));
}

TAVU_VEC_INLINE RgbBlock sums_to_rgb(FromYuv, const UWide *sums) {
    const UWide y = sums[0], u = sums[1], v = sums[2];
    Wide r, g, b;
    wrap16_lanes(y.lo, u.lo, v.lo, &r.lo, &g.lo, &b.lo);
    wrap16_lanes(y.hi, u.hi, v.hi, &r.hi, &g.hi, &b.hi);
    return {narrow(r), narrow(g), narrow(b)};
}

TAVU_VEC_INLINE RgbBlock sums_to_rgb(FromRgb, const UWide *sums) {
    return {narrow6(sums[0]), narrow6(sums[1]), narrow6(sums[2])};
}

template <class Space, int Bytes, bool AlphaPlane>
struct ConvertedPixels {
    static constexpr int PLANES = AlphaPlane ? 4 : 3, BYTES = Bytes;
    TAVU_VEC_INLINE static void write_next(uint8_t *&out, const UWide *sums) {
        const RgbBlock p = sums_to_rgb(Space{}, sums);
        if constexpr (Bytes == 3) {
            store_next_interleaved(out, p.r, p.g, p.b);
        } else if constexpr (AlphaPlane) {
            store_next_interleaved(out, p.r, p.g, p.b, narrow6(sums[3]));
        } else {
            store_next_interleaved(out, p.r, p.g, p.b, splat(255));
        }
    }
};

// One copy serves all targets.
__attribute__((noinline)) void resize_into(const Output &output, bool yuv, const Csc &c) {
    const Step x = step_for(c.src_w, c.dst_w);
    const int32_t width = yuv ? c.dst_w & ~7 : c.dst_w;
    Rows rows{{}, step_for(c.src_h, c.dst_h), 0, c.dst_h, c.dst[0], c.dst_stride[0]};
    for (int p = 0; p < output.planes; p++) rows.planes[p] = {c.src[p], c.src_stride[p]};
    const bool done = resize_vec(output, Columns{1, x, x.next(), width}, rows);
    if (!done || width < c.dst_w) {
        convert_resize_scalar(c, yuv, {output.bytes, output.planes == 4}, done ? width : 0);
    }
}

template <class Space, int Bytes, bool AlphaPlane = false>
void convert_and_resize(const Csc &c) {
    resize_into(OUTPUT<ConvertedPixels<Space, Bytes, AlphaPlane>>, std::is_same_v<Space, FromYuv>,
                c);
}

#else

template <class Space, int Bytes, bool AlphaPlane = false>
void convert_and_resize(const Csc &c) {
    convert_resize_scalar(c, std::is_same_v<Space, FromYuv>, {Bytes, AlphaPlane}, 0);
}

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_rsz_r8g8b8_to_rgb888, convert_and_resize<FromRgb, 3>)
TAVU_CSC(tavu_csc_rsz_r8g8b8_to_rgba8888, convert_and_resize<FromRgb, 4>)
TAVU_CSC(tavu_csc_rsz_r8g8b8a8_to_rgba8888, convert_and_resize<FromRgb, 4, true>)
TAVU_CSC(tavu_csc_rsz_yuv444_to_rgb888, convert_and_resize<FromYuv, 3>)
TAVU_CSC(tavu_csc_rsz_yuv444_to_rgba8888, convert_and_resize<FromYuv, 4>)
TAVU_CSC(tavu_csc_rsz_yuv444a8_to_rgba8888, convert_and_resize<FromYuv, 4, true>)
