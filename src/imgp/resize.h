// Exporting the three routines of a pixel format: a row, a whole image, and the driver of both.
#ifndef TAVU_IMGP_RESIZE_H
#define TAVU_IMGP_RESIZE_H

#include "imgp/resize_model.h"
#include "imgp/resizer_band.h"
#include "simd/kernel.h"

namespace tavu {
namespace {

// The driver algorithm of every format.
inline int32_t drive(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows,
                     int line_unit, void (*full)(const Image &, const uint8_t *weights),
                     tavu_irsz_line_t *line) {
    const auto *pixels = static_cast<const uint8_t *>(src);
    if (rsz->mode == TAVU_IRSZ_MODE_FULL) {
        // Steps are not packed: packing would lose the upper bits of steps of 1024 units and more.
        full({pixels,
              rsz->line_size,
              rsz->dst_w,
              rsz->dst_h,
              rsz->dst_line,
              rsz->dst,
              {rsz->step_x, rsz->shift_x},
              {rsz->step_y, rsz->shift_y}},
             tavu_irsz_tbl_rsz_weight);
    } else {
        resize_band(rsz, pixels, first_row, rows, line_unit, line);
    }
    return 0;
}

}  // namespace
}  // namespace tavu

// Full and Line are classes that have full() and line(), for formats that pack in two ways.
#define TAVU_IRSZ(name, Full, Line)                                                            \
    TAVU_KERNEL(void, name##_line,                                                             \
                (const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w,             \
                 int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out)) {             \
        tavu::Line::line(rows, wrow, dst_w, shift_x, next_x, step_x, out);                     \
    }                                                                                          \
    TAVU_KERNEL(void, name##_full,                                                             \
                (const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h,           \
                 int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y)) {        \
        tavu::Full::full({src, src_line, dst_w, dst_h, dst_line, dst,                          \
                          tavu::Step::unpack(packed_x), tavu::Step::unpack(packed_y)},         \
                         tavu_irsz_tbl_rsz_weight);                                            \
    }                                                                                          \
    TAVU_KERNEL(int32_t, name,                                                                 \
                (tavu_irsz_t * rsz, const void *src, int32_t first_row, int32_t rows)) {       \
        return tavu::drive(rsz, src, first_row, rows, tavu::Line::LINE_UNIT, tavu::Full::full, \
                           tavu::Line::line);                                                  \
    }

#endif
