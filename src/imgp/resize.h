// The arguments and the export of resize kernels. A pixel format has three routines: a row, a whole
// image, and the driver that calls either for the resizer.
#ifndef TAVU_IMGP_RESIZE_H
#define TAVU_IMGP_RESIZE_H

#include "imgp/bilinear.h"
#include "simd/kernel.h"
#include "tavu.h"

namespace tavu {

// The arguments of a whole-image kernel.
struct Image {
    const uint8_t *src;
    int32_t src_line;
    int32_t dst_w, dst_h, dst_line;
    uint8_t *dst;
    Step x, y;
};

// Band mode: makes the target rows whose source rows have arrived. Line sizes count units of
// `line_unit` bytes.
void resize_band(tavu_irsz_t *rsz, const uint8_t *src, int32_t first_row, int32_t rows,
                 int line_unit, tavu_irsz_line_t *make_line);

// The scalar fallback for pixels of 1, 3 or 4 bytes, compiled once for all levels.
void resize_line_scalar(int bytes, const uint8_t *const rows[2], const uint8_t *weights,
                        int32_t dst_w, int32_t shift_x, int32_t next_x, int32_t step_x,
                        uint8_t *out);
void resize_full_scalar(int bytes, const Image &image, const uint8_t *weights);

namespace {

// The driver of every format.
inline int32_t drive(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows,
                     int line_unit, void (*full)(const Image &, const uint8_t *weights),
                     tavu_irsz_line_t *line) {
    const auto *pixels = static_cast<const uint8_t *>(src);
    if (rsz->mode == TAVU_IRSZ_MODE_FULL) {
        // Steps are not packed: packing would lose the upper bits of steps of 1024 units and more.
        const Step x{rsz->step_x, rsz->shift_x}, y{rsz->step_y, rsz->shift_y};
        full({pixels, rsz->line_size, rsz->dst_w, rsz->dst_h, rsz->dst_line, rsz->dst, x, y},
             tavu_irsz_tbl_rsz_weight);
    } else {
        resize_band(rsz, pixels, first_row, rows, line_unit, line);
    }
    return 0;
}

}  // namespace
}  // namespace tavu

// Exports NAME, NAME_line and NAME_full, with the names of tavu in scope. Full has full(), Line has
// line() and LINE_UNIT; they differ for a format that packs images and lines in two ways.
#define TAVU_IRSZ(name, Full, Line)                                                       \
    TAVU_KERNEL(void, name##_line,                                                        \
                (const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w,        \
                 int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out)) {        \
        Line::line(rows, wrow, dst_w, shift_x, next_x, step_x, out);                      \
    }                                                                                     \
    TAVU_KERNEL(void, name##_full,                                                        \
                (const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h,      \
                 int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y)) {   \
        Full::full({src, src_line, dst_w, dst_h, dst_line, dst, Step::unpack(packed_x),   \
                    Step::unpack(packed_y)},                                              \
                   tavu_irsz_tbl_rsz_weight);                                             \
    }                                                                                     \
    TAVU_KERNEL(int32_t, name,                                                            \
                (tavu_irsz_t * rsz, const void *src, int32_t first_row, int32_t rows)) {  \
        return drive(rsz, src, first_row, rows, Line::LINE_UNIT, Full::full, Line::line); \
    }

#endif
