#include "resize_kernels.h"

#include "csc_model.h"
#include "imgp/csc_resize_model.h"
#include "imgp/resize_model.h"

namespace {

using namespace tavu;

template <class Pixel>
void model_full(const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h,
                int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y) {
    ModelResize<Pixel>::full({src, src_line, dst_w, dst_h, dst_line, dst, Step::unpack(packed_x),
                              Step::unpack(packed_y)},
                             tavu_irsz_tbl_rsz_weight);
}

template <class Pixel>
void model_line(const uint8_t *const rows[2], const uint8_t *weights, int32_t dst_w,
                int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out) {
    ModelResize<Pixel>::line(rows, weights, dst_w, shift_x, next_x, step_x, out);
}

}  // namespace

namespace {

// Both kernels of a format, level by level.
template <auto *Full, auto *Line>
std::vector<ResizeVariant> resize_variants() {
    const auto full = variants<Full>();
    const auto line = variants<Line>();
    std::vector<ResizeVariant> both;
    for (size_t i = 0; i < full.size(); i++) {
        both.push_back({full[i].level, full[i].run, line[i].run});
    }
    return both;
}

// Line kernels of one format pack otherwise than whole-image ones.
template <class Pixel, class LinePixel = Pixel>
ResizeKernel pixels(const char *name, const std::vector<ResizeVariant> &variants) {
    return {name,
            Pixel::SRC,
            Pixel::DST,
            Pixel::LINE_UNIT,
            {"model", model_full<Pixel>, model_line<LinePixel>},
            variants};
}

template <class Space, int Bytes, bool AlphaPlane = false>
CscKernel combined(const char *name, const std::vector<CscVariant> &variants) {
    constexpr auto run = csc_model<convert_resize<Space, Bytes, AlphaPlane>>;
    return {name, run, variants, AlphaPlane ? 4 : 3, 1, {Bytes}, {400}};
}

}  // namespace

std::vector<ResizeKernel> resize_kernels() {
    return {
        pixels<Packed8<1>>("1byte", resize_variants<tavu_irsz8b_full, tavu_irsz8b_line>()),
        pixels<Packed8<3>>("3bytes", resize_variants<tavu_irsz8b8b8b_full, tavu_irsz8b8b8b_line>()),
        pixels<Packed8<4>>("4bytes",
                           resize_variants<tavu_irsz8b8b8b8b_full, tavu_irsz8b8b8b8b_line>()),
        pixels<PackFull, PackLine>("3bytes_to_565", {{"exported", tavu_irsz8b8b8b_5b6b5b_full,
                                                      tavu_irsz8b8b8b_5b6b5b_line}}),
        pixels<Rgb565>("565", {{"exported", tavu_irsz5b6b5b_full, tavu_irsz5b6b5b_line}}),
    };
}

std::vector<CscKernel> csc_rsz_kernels() {
    return {
        combined<FromRgb, 3>("r8g8b8_to_rgb888", variants<tavu_csc_rsz_r8g8b8_to_rgb888>()),
        combined<FromRgb, 4>("r8g8b8_to_rgba8888", variants<tavu_csc_rsz_r8g8b8_to_rgba8888>()),
        combined<FromRgb, 4, true>("r8g8b8a8_to_rgba8888",
                                   variants<tavu_csc_rsz_r8g8b8a8_to_rgba8888>()),
        combined<FromYuv, 3>("yuv444_to_rgb888", variants<tavu_csc_rsz_yuv444_to_rgb888>()),
        combined<FromYuv, 4>("yuv444_to_rgba8888", variants<tavu_csc_rsz_yuv444_to_rgba8888>()),
        combined<FromYuv, 4, true>("yuv444a8_to_rgba8888",
                                   variants<tavu_csc_rsz_yuv444a8_to_rgba8888>()),
    };
}
