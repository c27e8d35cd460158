#include "imgp/resize_fallback.h"

namespace tavu {

void resize_line_scalar(int bytes, const uint8_t *const rows[2], const uint8_t *weights,
                        int32_t dst_w, int32_t shift_x, int32_t next_x, int32_t step_x,
                        uint8_t *out) {
    const auto line = bytes == 1   ? ModelResize<Bytes<1>>::line
                      : bytes == 3 ? ModelResize<Bytes<3>>::line
                                   : ModelResize<Bytes<4>>::line;
    line(rows, weights, dst_w, shift_x, next_x, step_x, out);
}

void resize_full_scalar(int bytes, const Image &image, const uint8_t *weights) {
    const auto full = bytes == 1   ? ModelResize<Bytes<1>>::full
                      : bytes == 3 ? ModelResize<Bytes<3>>::full
                                   : ModelResize<Bytes<4>>::full;
    full(image, weights);
}

}  // namespace tavu
