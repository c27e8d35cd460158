#include "imgp/resize_model.h"
#include "kernels.h"

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

// Line kernels of one format pack otherwise than whole-image ones.
template <class Pixel, class LinePixel>
ResizeKernel pixels(const char *name, int32_t format,
                    const std::vector<Variant<tavu_irsz_full_t *>> &full,
                    const std::vector<Variant<tavu_irsz_line_t *>> &line,
                    const std::vector<Variant<tavu_irsz_fn>> &drivers) {
    ResizeKernel kernel{
        name,       format,           Pixel::SRC,
        Pixel::DST, Pixel::LINE_UNIT, {"model", model_full<Pixel>, model_line<LinePixel>, nullptr},
        {}};
    for (size_t i = 0; i < full.size(); i++) {
        kernel.variants.push_back({full[i].level, full[i].run, line[i].run, drivers[i].run});
    }
    return kernel;
}

}  // namespace

std::vector<ResizeKernel> resize_kernels() {
    return {
#define RESIZE(label, format, name, full, line)                                         \
    pixels<full, line>(label, format, variants<name##_full>(), variants<name##_line>(), \
                       variants<name>()),
#include "kernels.def"
    };
}
