// The scalar forms that vector kernels fall back to, compiled once for all levels.
#ifndef TAVU_IMGP_RESIZE_FALLBACK_H
#define TAVU_IMGP_RESIZE_FALLBACK_H

#include "imgp/resize_model.h"

namespace tavu {

// Of pixels of 1, 3 or 4 bytes.
void resize_line_scalar(int bytes, const uint8_t *const rows[2], const uint8_t *weights,
                        int32_t dst_w, int32_t shift_x, int32_t next_x, int32_t step_x,
                        uint8_t *out);
void resize_full_scalar(int bytes, const Image &image, const uint8_t *weights);

}  // namespace tavu

#endif
