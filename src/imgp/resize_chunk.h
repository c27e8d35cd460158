// Rows of a resize by taps, which are made once for a chunk of columns and serve all rows. Where
// the image grows, weighed rows are kept for the next target row; where samples are so far apart that
// they take several windows, rows are weighed first too, which spares a loop for every sink.
#ifndef TAVU_IMGP_RESIZE_CHUNK_H
#define TAVU_IMGP_RESIZE_CHUNK_H

#include <utility>

#include "imgp/resize_rows.h"
#include "imgp/resize_taps.h"

namespace tavu {
namespace {

// A sink makes target pixels of the sums of one element in each of its planes:
//     PLANES                planes that it takes
//     BYTES                 that it writes for an element
//     store(p, sums)        writes LANES elements and moves p on

template <int Windows>
__attribute__((noinline)) void weigh_row(const uint8_t *src, const Taps<Windows> *taps,
                                         int32_t count, uint16_t *sums) {
    for (; count > 0; count--, sums += OUTPUTS, taps++) {
        store16(sums, weigh<Windows>(src, load_taps(*taps)));
    }
}

TAVU_VEC_INLINE UWide mix_block(UWide top, UWide bottom, uint16_t b) {
    const auto rest = static_cast<uint16_t>(8 - b);
    return {mix(top.lo, bottom.lo, rest, b), mix(top.hi, bottom.hi, rest, b)};
}

// The weighed rows of one chunk, plane by plane.
template <int Planes>
struct WeighedRow {
    static constexpr int32_t SIZE = Planes == 1 ? 2048 : 1024;  // elements
    int32_t row = -1;
    uint16_t sums[Planes][SIZE];
};

// `width` elements; the sums of the last block are those of the anchored one.
template <class Sink>
__attribute__((noinline)) void mix_rows(const WeighedRow<Sink::PLANES> &upper,
                                        const WeighedRow<Sink::PLANES> &lower, uint16_t b,
                                        int32_t width, uint8_t *out) {
    struct Place {
        int32_t element;
        uint8_t *out;
        TAVU_VEC_INLINE void move(int32_t elements) { out += elements * Sink::BYTES; }
    };
    for_each_anchored_block(Place{0, out}, width, [&](Place &at) {
        const auto load = [&at](const uint16_t *row) {
            return UWide{load16(row + at.element), load16(row + at.element + OUTPUTS)};
        };
        UWide sums[Sink::PLANES];
#pragma GCC unroll 4
        for (int p = 0; p < Sink::PLANES; p++) {
            sums[p] = mix_block(load(upper.sums[p]), load(lower.sums[p]), b);
        }
        at.element += LANES;
        Sink::store(at.out, sums);
    });
}

template <class Sink, int Windows>
class Chunk {
  public:
    static constexpr int32_t SIZE = WeighedRow<Sink::PLANES>::SIZE;

    template <int Bytes>
    Chunk(const Columns<Bytes> &columns, int32_t first, int32_t width)
        : first_(first), width_(width) {
        columns.make_taps(first, blocks(), taps_);
    }

    // Its columns of one target row. One copy, for it is called from several places.
    __attribute__((noinline)) void make_row(const Rows &rows, const RowSource &from, uint8_t *out) {
        out += static_cast<ptrdiff_t>(first_) * Sink::BYTES;
        if (Windows > 1 || rows.grow()) {
            keep(rows, from);
            mix_rows<Sink>(*upper_, *lower_, from.b, width_, out);
        } else {
            weigh_and_mix({rows, from, 0}, from.b, out);
        }
    }

  private:
    static constexpr int PLANES = Sink::PLANES;

    using Weighed = WeighedRow<PLANES>;

    // The last block is anchored at the row's end; its taps are those of the anchored block.
    struct Place {
        const Taps<Windows> *taps;
        uint8_t *out;
        TAVU_VEC_INLINE void move(int32_t elements) { out += elements * Sink::BYTES; }
    };

    int32_t blocks() const { return (width_ + LANES - 1) / LANES; }

    void weigh_and_mix(const RowPair<PLANES> &rows, uint16_t b, uint8_t *out) {
        for_each_anchored_block(Place{taps_, out}, width_, [&](Place &at) {
            const auto &lo = load_taps(at.taps[0]), &hi = load_taps(at.taps[1]);
            UWide sums[PLANES];
#pragma GCC unroll 4
            for (int p = 0; p < PLANES; p++) {
                const UWide top{weigh<Windows>(rows.top[p], lo), weigh<Windows>(rows.top[p], hi)};
                const UWide bottom{weigh<Windows>(rows.bottom[p], lo),
                                   weigh<Windows>(rows.bottom[p], hi)};
                sums[p] = mix_block(top, bottom, b);
            }
            at.taps += 2;
            Sink::store(at.out, sums);
        });
    }

    // Rows come from top to bottom, so that a lower row may become the upper one.
    void keep(const Rows &rows, const RowSource &from) {
        if (upper_->row != from.top) std::swap(upper_, lower_);
        weigh_planes(rows, from.top, *upper_);
        weigh_planes(rows, from.bottom, *lower_);
    }

    void weigh_planes(const Rows &rows, int32_t row, Weighed &weighed) {
        if (weighed.row == row) return;
        weighed.row = row;
        for (int p = 0; p < PLANES; p++) {
            weigh_row(rows.planes[p].row(row), taps_, 2 * blocks(), weighed.sums[p]);
        }
    }

    int32_t first_, width_;
    Taps<Windows> taps_[2 * SIZE / LANES];
    Weighed kept_[2];
    Weighed *upper_ = &kept_[0], *lower_ = &kept_[1];
};

}  // namespace
}  // namespace tavu

#endif
