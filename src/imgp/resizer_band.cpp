// Band mode of the resizer.
#include "imgp/resizer_band.h"

#include <cstring>

#include "imgp/bilinear.h"

namespace tavu {
namespace {

// Band mode: the caller passes a power of two of source rows at a time, and each call makes the
// target rows whose source rows have come.
//
//   pending  the last target row begun has its upper source row in carry_buf and waits for the
//            band that holds the lower one, at carry_next
//   reuse    when growing, several target rows share an upper source row, and it is in carry_buf
//            while the bands have moved on
//
// Rows are found modulo the band. Offsets count as line_size does: bytes, or pixels where the
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

    // Finds the source rows of the next target row; false if one has not come or all are made.
    bool begin_row() { return rsz_->pending ? resume_row() : find_rows(); }

    bool resume_row() {
        if (rsz_->carry_next >= rsz_->band_size) return false;
        rsz_->pending = 0;
        rsz_->out_row--;
        rsz_->pos_y -= rsz_->step_y;
        top_ = rsz_->carry_buf;
        bottom_ = at(rsz_->carry_next);
        return true;
    }

    bool find_rows() {
        if (rsz_->out_row >= rsz_->dst_h) return false;
        const int32_t upper = (upper_row() & mask_) * rsz_->line_size;
        const int32_t lower = rsz_->reuse ? rsz_->carry_next : upper + rsz_->next_row;
        top_ = rsz_->reuse ? rsz_->carry_buf : at(upper);
        bottom_ = needs_lower() ? at(lower) : top_;
        if (lower < rsz_->band_size) return true;
        rsz_->carry_next = lower - rsz_->band_size;
        rsz_->pending = 1;
        rsz_->out_row++;
        rsz_->pos_y += rsz_->step_y;
        // line_size bytes, of a 5-6-5 row the left half; callers rely on it.
        memmove(rsz_->carry_buf, top_, static_cast<size_t>(rsz_->line_size));
        return false;
    }

    // A source of one row has no lower one.
    bool needs_lower() const {
        return rsz_->step_y != 0 ||
               weighs_lower(tavu_irsz_tbl_rsz_weight, rsz_->step_x, rsz_->dst_w);
    }

    void make_row() {
        const ptrdiff_t stride = static_cast<ptrdiff_t>(rsz_->dst_line) * line_unit_;
        const uint8_t *const source[2] = {top_, bottom_};
        make_line_(source, tavu_irsz_tbl_rsz_weight + weight_row(rsz_->pos_y), rsz_->dst_w,
                   rsz_->shift_x, rsz_->next_x, rsz_->step_x, rsz_->dst + rsz_->out_row * stride);
        rsz_->pos_y += rsz_->step_y;
        rsz_->out_row++;
    }

    tavu_irsz_t *rsz_;
    const uint8_t *src_, *top_ = nullptr, *bottom_ = nullptr;
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
