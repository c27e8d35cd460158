// Rows of a resize by taps, which are made once for a chunk of columns and serve all rows. Where
// the image grows, weighed rows are kept for the next target row; where samples are so far apart that
// they take several windows, rows are weighed first too, which spares a loop for every sink.
#ifndef TAVU_IMGP_RESIZE_CHUNK_H
#define TAVU_IMGP_RESIZE_CHUNK_H

#include <utility>

#include "imgp/resize_sink.h"

namespace tavu {
namespace {

template <int Windows>
__attribute__((noinline)) void weigh_row(const uint8_t *src, const Taps<Windows> *taps,
                                         int32_t count, uint16_t *sums) {
    for (; count > 0; count--, sums += OUTPUTS, taps++) {
        store16(sums, weigh<Windows>(src, load_taps(*taps)));
    }
}

template <int Windows>
class Chunk {
  public:
    Chunk(const Sink &sink, const Columns &columns, int32_t first, int32_t width)
        : sink_(sink), first_(first), width_(width) {
        columns.make_taps(first, blocks(), taps_);
    }

    // Its columns of one target row.
    void make_row(const Rows &rows, const RowSource &from, uint8_t *out) {
        out += static_cast<ptrdiff_t>(first_) * sink_.bytes;
        if constexpr (Windows == 1) {
            if (!rows.grow()) {
                const RowPair pair(rows, sink_.planes, from, 0);
                return sink_.weigh_and_mix(pair, taps_, from.b, width_, out);
            }
        }
        keep(rows, from);
        sink_.mix(*upper_, *lower_, from.b, width_, out);
    }

  private:
    int32_t blocks() const { return (width_ + LANES - 1) / LANES; }

    // Rows come from top to bottom, so that a lower row may become the upper one.
    void keep(const Rows &rows, const RowSource &from) {
        if (upper_->row != from.top) std::swap(upper_, lower_);
        weigh_planes(rows, from.top, *upper_);
        weigh_planes(rows, from.bottom, *lower_);
    }

    void weigh_planes(const Rows &rows, int32_t row, WeighedRow &weighed) {
        if (weighed.row == row) return;
        weighed.row = row;
        for (int p = 0; p < sink_.planes; p++) {
            weigh_row(rows.planes[p].row(row), taps_, 2 * blocks(),
                      weighed.sums + p * WeighedRow::PLANE_SIZE);
        }
    }

    const Sink &sink_;
    int32_t first_, width_;
    Taps<Windows> taps_[2 * WeighedRow::chunk_size(1) / LANES];
    WeighedRow kept_[2];
    WeighedRow *upper_ = &kept_[0], *lower_ = &kept_[1];
};

}  // namespace
}  // namespace tavu

#endif
