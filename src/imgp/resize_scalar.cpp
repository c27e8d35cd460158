// The scalar resize kernels, compiled once for all levels: 5-6-5 pixels, and the fallback of the
// vector kernels.
#include "imgp/resize_model.h"

namespace tavu {

void resize_line_scalar(int bytes, const uint8_t *const rows[2], const uint8_t *weights,
                        int32_t dst_w, int32_t shift_x, int32_t next_x, int32_t step_x,
                        uint8_t *out) {
    const auto line = bytes == 1   ? ModelResize<Packed8<1>>::line
                      : bytes == 3 ? ModelResize<Packed8<3>>::line
                                   : ModelResize<Packed8<4>>::line;
    line(rows, weights, dst_w, shift_x, next_x, step_x, out);
}

void resize_full_scalar(int bytes, const Image &image, const uint8_t *weights) {
    const auto full = bytes == 1   ? ModelResize<Packed8<1>>::full
                      : bytes == 3 ? ModelResize<Packed8<3>>::full
                                   : ModelResize<Packed8<4>>::full;
    full(image, weights);
}

}  // namespace tavu

using namespace tavu;

TAVU_IRSZ(tavu_irsz8b8b8b_5b6b5b, ModelResize<PackFull>, ModelResize<PackLine>)
TAVU_IRSZ(tavu_irsz5b6b5b, ModelResize<Rgb565>, ModelResize<Rgb565>)
