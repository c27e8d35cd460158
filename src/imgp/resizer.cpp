// The resizer object.
#include <cstdlib>

#include "imgp/bilinear.h"
#include "imgp/bilinear_weights.h"
#include "tavu.h"

uint8_t tavu_irsz_tbl_rsz_weight[256] = {TAVU_WEIGHTS};
const uint8_t tavu_tbl_bilinear_rszw[256] = {TAVU_WEIGHTS};

namespace tavu {
namespace {

struct Format {
    int32_t fmt;
    int32_t src_unit, dst_unit;  // what line sizes count per pixel
    int32_t src_bytes;           // per pixel
    tavu_irsz_fn driver;
};

constexpr Format FORMATS[] = {
    {TAVU_IRSZ_8B, 1, 1, 1, tavu_irsz8b},
    {TAVU_IRSZ_8B8B8B, 3, 3, 3, tavu_irsz8b8b8b},
    {TAVU_IRSZ_8B8B8B_5B6B5B, 3, 2, 3, tavu_irsz8b8b8b_5b6b5b},
    {TAVU_IRSZ_5B6B5B, 1, 1, 2, tavu_irsz5b6b5b},
    {TAVU_IRSZ_8B8B8B8B, 4, 4, 4, tavu_irsz8b8b8b8b},
};

const Format *find_format(int32_t fmt) {
    for (const Format &f : FORMATS) {
        if (f.fmt == fmt) return &f;
    }
    return nullptr;
}

bool fits(int64_t a, int64_t b) { return a * b <= INT32_MAX && a * b >= INT32_MIN; }

bool axis_ok(int32_t src, int32_t dst) {
    constexpr int32_t MAX_UNITS = 8192;  // positions have 13 bits before the point
    return src >= 1 && dst >= 1 && (src - 1) >> decimation_shift(src, dst) < MAX_UNITS;
}

bool is_valid(const tavu_irsz_param &p, const Format &f) {
    if (!axis_ok(p.src_w, p.dst_w) || !axis_ok(p.src_h, p.dst_h)) return false;
    // 4 is the largest pixel, 16 the farthest neighbour row.
    if (!fits(p.src_s, f.src_unit * 16) || !fits(p.dst_s, f.dst_unit)) return false;
    if (p.mode == TAVU_IRSZ_MODE_FULL) return true;
    return p.band_h >= 1 && (p.band_h & (p.band_h - 1)) == 0 && p.src_s >= 1 &&
           fits(static_cast<int64_t>(p.src_s) * f.src_unit, p.band_h + 16);
}

void init(tavu_irsz_t *rsz, const tavu_irsz_param &p, const Format &f) {
    const Step x = step_for(p.src_w, p.dst_w);
    const Step y = step_for(p.src_h, p.dst_h);
    rsz->fmt = p.fmt;
    rsz->mode = p.mode;
    rsz->step_x = x.step;
    rsz->step_y = y.step;
    rsz->shift_x = x.shift;
    rsz->shift_y = y.shift;
    rsz->next_x = 1 << x.shift;
    rsz->line_size = p.src_s * f.src_unit;
    rsz->next_row = rsz->line_size * (1 << y.shift);
    rsz->dst_w = p.dst_w;
    rsz->dst_h = p.dst_h;
    rsz->dst_line = p.dst_s * f.dst_unit;
    rsz->upscale = p.dst_w > p.src_w || p.dst_h > p.src_h;
    rsz->rsz_func = f.driver;
    rsz->dst = static_cast<uint8_t *>(p.dst);
    rsz->band_size = wrap_multiply(p.band_h, rsz->line_size);  // means nothing in full mode
    if (p.mode == TAVU_IRSZ_MODE_LINE) {
        // Zeroed, and a whole row even where less is carried, so that the kernels stay inside. A
        // failure shows as null; callers rely on creation succeeding.
        const int32_t pixels = p.src_s > p.src_w ? p.src_s : p.src_w;
        rsz->carry_buf = static_cast<uint8_t *>(
            calloc(static_cast<size_t>(pixels), static_cast<size_t>(f.src_bytes)));
    }
}

int32_t create(tavu_irsz_t *rsz, const tavu_irsz_param &p) {
    if (p.mode != TAVU_IRSZ_MODE_FULL && p.mode != TAVU_IRSZ_MODE_LINE) return TAVU_IRSZ_ERR_MODE;
    const Format *format = find_format(p.fmt);
    if (format == nullptr) return TAVU_IRSZ_ERR_FORMAT;
    if (!is_valid(p, *format)) return TAVU_ERR;
    init(rsz, p, *format);
    return TAVU_OK;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_irsz_t *tavu_irsz_create(const tavu_irsz_param *param, int32_t *err) {
    auto *rsz = static_cast<tavu_irsz_t *>(calloc(1, sizeof(tavu_irsz_t)));
    const int32_t status = rsz == nullptr ? TAVU_IRSZ_ERR_ALLOC : create(rsz, *param);
    if (err != nullptr) *err = status;
    if (status == TAVU_OK) return rsz;
    free(rsz);
    return nullptr;
}

int32_t tavu_irsz(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows) {
    return rsz->rsz_func(rsz, src, first_row, rows);
}

void tavu_irsz_delete(tavu_irsz_t *rsz) {
    if (rsz == nullptr) return;
    free(rsz->carry_buf);
    free(rsz);
}

int32_t bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h,
                               int32_t *step_x, int32_t *step_y) {
    *step_x = step_for(src_w, dst_w).pack();
    *step_y = step_for(src_h, dst_h).pack();
    return 0;
}
