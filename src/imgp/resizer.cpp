// The resizer object, its band mode and its weights.
#include <cstdlib>
#include <cstring>

#include "core/integer.h"
#include "imgp/resize.h"

// The weights of the horizontal fraction a and the vertical fraction b in eighths: upper-left,
// upper-right, lower-left, lower-right. Macros, because a function cannot initialise an array.
#define GROUP(a, b) (8 - (a)) * (8 - (b)), (a) * (8 - (b)), (8 - (a)) * (b), (a) * (b)
#define GROUPS(a)                                                                              \
    GROUP(a, 0), GROUP(a, 1), GROUP(a, 2), GROUP(a, 3), GROUP(a, 4), GROUP(a, 5), GROUP(a, 6), \
        GROUP(a, 7)
#define WEIGHTS \
    GROUPS(0), GROUPS(1), GROUPS(2), GROUPS(3), GROUPS(4), GROUPS(5), GROUPS(6), GROUPS(7)

uint8_t tavu_irsz_tbl_rsz_weight[256] = {WEIGHTS};
const uint8_t tavu_tbl_bilinear_rszw[256] = {WEIGHTS};

namespace tavu {
namespace {

struct Format {
    int32_t fmt;
    int32_t src_unit, dst_unit;  // a pixel in the unit of line sizes
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
    constexpr int32_t MAX_UNITS = 8192;  // positions have 13 integer bits
    return src >= 1 && dst >= 1 && (src - 1) >> decimation_shift(src, dst) < MAX_UNITS;
}

bool is_valid(const tavu_irsz_param &p, const Format &f) {
    if (!axis_ok(p.src_w, p.dst_w) || !axis_ok(p.src_h, p.dst_h)) return false;
    // 4 is the largest pixel, 16 the distance to the farthest neighbour row.
    if (!fits(p.src_s, f.src_unit * 16) || !fits(p.dst_s, f.dst_unit)) return false;
    if (p.mode == TAVU_IRSZ_MODE_FULL) return true;
    return p.band_h >= 1 && (p.band_h & (p.band_h - 1)) == 0 && p.src_s >= 1 &&
           fits(static_cast<int64_t>(p.src_s) * f.src_unit, p.band_h + 16);
}

// Zeroed, and a whole row even where less is carried, so that the kernels stay inside. On failure the
// pointer is null; callers rely on creation succeeding.
uint8_t *new_carry_buffer(const tavu_irsz_param &p, const Format &f) {
    const int32_t pixels = p.src_s > p.src_w ? p.src_s : p.src_w;
    return static_cast<uint8_t *>(
        calloc(static_cast<size_t>(pixels), static_cast<size_t>(f.src_bytes)));
}

void set_steps(tavu_irsz_t *rsz, const tavu_irsz_param &p) {
    const Step x = step_for(p.src_w, p.dst_w);
    const Step y = step_for(p.src_h, p.dst_h);
    rsz->step_x = x.step;
    rsz->step_y = y.step;
    rsz->shift_x = x.shift;
    rsz->shift_y = y.shift;
}

void init(tavu_irsz_t *rsz, const tavu_irsz_param &p, const Format &f) {
    set_steps(rsz, p);
    rsz->fmt = p.fmt;
    rsz->mode = p.mode;
    rsz->next_x = 1 << rsz->shift_x;
    rsz->line_size = p.src_s * f.src_unit;
    rsz->next_row = rsz->line_size * (1 << rsz->shift_y);
    rsz->dst_w = p.dst_w;
    rsz->dst_h = p.dst_h;
    rsz->dst_line = p.dst_s * f.dst_unit;
    rsz->upscale = p.dst_w > p.src_w || p.dst_h > p.src_h;
    rsz->rsz_func = f.driver;
    rsz->dst = static_cast<uint8_t *>(p.dst);
    rsz->band_size = wrap_multiply(p.band_h, rsz->line_size);  // unused in full mode
    if (p.mode == TAVU_IRSZ_MODE_LINE) rsz->carry_buf = new_carry_buffer(p, f);
}

int32_t create(tavu_irsz_t *rsz, const tavu_irsz_param &p) {
    if (p.mode != TAVU_IRSZ_MODE_FULL && p.mode != TAVU_IRSZ_MODE_LINE) return TAVU_IRSZ_ERR_MODE;
    const Format *format = find_format(p.fmt);
    if (format == nullptr) return TAVU_IRSZ_ERR_FORMAT;
    if (!is_valid(p, *format)) return TAVU_ERR;
    init(rsz, p, *format);
    return TAVU_OK;
}

// Band mode: the caller passes a power of two of source rows at a time, and each call makes the
// target rows whose source rows have arrived.
//
//   pending  the last target row begun has its upper source row in carry_buf and waits for the
//            band with the lower one, at carry_next
//   reuse    in an enlargement several target rows share an upper source row, which is in carry_buf
//            once the bands have moved on
//
// Rows are found modulo the band. Offsets have the unit of line_size: bytes, or pixels where the
// source is 5-6-5.
class Band {
  public:
    Band(tavu_irsz_t *rsz, const uint8_t *src, int32_t first_row, int32_t rows, int line_unit,
         tavu_irsz_line_t *make_line)
        : rsz_(rsz),
          src_(src),
          end_(first_row + rows),
          mask_(rows - 1),
          line_unit_(line_unit),
          make_line_(make_line) {}

    void run() {
        while (upper_row() < end_ && begin_row()) {
            const int32_t made = rsz_->pos_y;
            make_row();
            if (rsz_->reuse && row_in_band(rsz_->pos_y) < row_in_band(made)) rsz_->reuse = 0;
        }
        const int32_t last = rsz_->pos_y - rsz_->step_y;
        if (rsz_->upscale && row_in_band(last ^ rsz_->pos_y) == 0) rsz_->reuse = 1;
    }

  private:
    int32_t upper_row() const { return (rsz_->pos_y >> POSITION_BITS) * (1 << rsz_->shift_y); }
    int32_t row_in_band(int32_t pos) const {
        return mask_ & pos >> (POSITION_BITS - rsz_->shift_y);
    }
    const uint8_t *at(int32_t offset) const {
        return src_ + static_cast<ptrdiff_t>(offset) * line_unit_;
    }

    // Finds the source rows of the next target row; false if one has not arrived or all are made.
    bool begin_row() { return rsz_->pending ? resume_row() : find_rows(); }

    bool resume_row() {
        if (rsz_->carry_next >= rsz_->band_size) return false;
        rsz_->pending = 0;
        rsz_->out_row--;
        rsz_->pos_y -= rsz_->step_y;
        upper_ = rsz_->carry_buf;
        lower_ = at(rsz_->carry_next);
        return true;
    }

    bool find_rows() {
        if (rsz_->out_row >= rsz_->dst_h) return false;
        const int32_t upper = (upper_row() & mask_) * rsz_->line_size;
        const int32_t lower = rsz_->reuse ? rsz_->carry_next : upper + rsz_->next_row;
        upper_ = rsz_->reuse ? rsz_->carry_buf : at(upper);
        lower_ = needs_lower() ? at(lower) : upper_;
        if (lower < rsz_->band_size) return true;
        rsz_->carry_next = lower - rsz_->band_size;
        rsz_->pending = 1;
        rsz_->out_row++;
        rsz_->pos_y += rsz_->step_y;
        // line_size bytes, of a 5-6-5 row the left half; callers rely on it.
        memmove(rsz_->carry_buf, upper_, static_cast<size_t>(rsz_->line_size));
        return false;
    }

    // A source of one row has no lower one.
    bool needs_lower() const {
        return rsz_->step_y != 0 ||
               weighs_lower(tavu_irsz_tbl_rsz_weight, rsz_->step_x, rsz_->dst_w);
    }

    void make_row() {
        const ptrdiff_t stride = static_cast<ptrdiff_t>(rsz_->dst_line) * line_unit_;
        const uint8_t *const source[2] = {upper_, lower_};
        make_line_(source, tavu_irsz_tbl_rsz_weight + weight_row(rsz_->pos_y), rsz_->dst_w,
                   rsz_->shift_x, rsz_->next_x, rsz_->step_x, rsz_->dst + rsz_->out_row * stride);
        rsz_->pos_y += rsz_->step_y;
        rsz_->out_row++;
    }

    tavu_irsz_t *rsz_;
    const uint8_t *src_, *upper_ = nullptr, *lower_ = nullptr;
    int32_t end_, mask_;
    int line_unit_;
    tavu_irsz_line_t *make_line_;
};

}  // namespace

void resize_band(tavu_irsz_t *rsz, const uint8_t *src, int32_t first_row, int32_t rows,
                 int line_unit, tavu_irsz_line_t *make_line) {
    Band(rsz, src, first_row, rows, line_unit, make_line).run();
}

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
