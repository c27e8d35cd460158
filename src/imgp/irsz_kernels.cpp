// The resize kernels, one pair for each pixel format.
#include "imgp/bilinear_weights.h"
#include "imgp/irsz_model.h"
#include "simd/kernel.h"
#include "tavu.h"

uint8_t tavu_irsz_tbl_rsz_weight[256] = {TAVU_WEIGHTS};
const uint8_t tavu_tbl_bilinear_rszw[256] = {TAVU_WEIGHTS};

#define TAVU_IRSZ_LINE(name, Pixel)                                                              \
    TAVU_KERNEL(void, name,                                                                      \
                (const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w,               \
                 int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out)) {               \
        tavu::resize_line<tavu::Pixel>(rows[0], rows[1], wrow, dst_w, {step_x, shift_x}, next_x, \
                                       out);                                                     \
    }

#define TAVU_IRSZ_FULL(name, Pixel)                                                                \
    TAVU_KERNEL(void, name,                                                                        \
                (const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h,               \
                 int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y)) {            \
        tavu::resize_full<tavu::Pixel>(src, src_line, dst_w, dst_h, dst_line, dst,                 \
                                       tavu::Step::unpack(packed_x), tavu::Step::unpack(packed_y), \
                                       tavu_irsz_tbl_rsz_weight);                                  \
    }

TAVU_IRSZ_LINE(tavu_irsz8b_line, Bytes<1>)
TAVU_IRSZ_FULL(tavu_irsz8b_full, Bytes<1>)
TAVU_IRSZ_LINE(tavu_irsz8b8b8b_line, Bytes<3>)
TAVU_IRSZ_FULL(tavu_irsz8b8b8b_full, Bytes<3>)
TAVU_IRSZ_LINE(tavu_irsz8b8b8b8b_line, Bytes<4>)
TAVU_IRSZ_FULL(tavu_irsz8b8b8b8b_full, Bytes<4>)
TAVU_IRSZ_LINE(tavu_irsz8b8b8b_5b6b5b_line, PackLine)
TAVU_IRSZ_FULL(tavu_irsz8b8b8b_5b6b5b_full, PackFull)
TAVU_IRSZ_LINE(tavu_irsz5b6b5b_line, Rgb565)
TAVU_IRSZ_FULL(tavu_irsz5b6b5b_full, Rgb565)
