// Rows of half the width: the samples of neighbouring columns stand side by side.
#ifndef TAVU_IMGP_RESIZE_HALVING_H
#define TAVU_IMGP_RESIZE_HALVING_H

#include "imgp/resize_rows.h"
#include "imgp/resize_taps.h"

namespace tavu {
namespace {

// The step falls behind 2 by about 1 / width; then column i from the second on begins at 2 i - 1,
// until the loss sums up to another pixel.
constexpr int32_t HALVING = 2 << POSITION_BITS;
constexpr int32_t MAX_HALVED = 4096;  // positions have 13 bits before the point
constexpr int32_t HALVING_LOSS = 1 << (POSITION_BITS - 6);  // at 64 columns

inline bool halves(const Columns<1> &columns) {
    const Step step = columns.step;
    return step.shift == 0 && step.step < HALVING && step.step >= HALVING - HALVING_LOSS &&
           columns.next == 1 && columns.width <= MAX_HALVED;
}

template <class Sink>
class Halving {
  public:
    explicit Halving(const Columns<1> &columns) {
        const int32_t end = (1 << POSITION_BITS) / (HALVING - columns.step.step) + 1;
        blocks_ = (end < columns.width ? end : columns.width) / LANES - 1;
        for (int32_t i = 0; i < blocks_ * LANES; i += 8) {
            set_weights(weights_ + 2 * i, columns.eighths(LANES + i, 0));
        }
    }

    // Its columns are those from LANES up to here.
    int32_t end() const { return (blocks_ + 1) * LANES; }

    void make_row(const Rows &rows, const RowSource &from, uint8_t *out) const {
        const ptrdiff_t ahead = 2 * rows.planes[0].stride;
        RowPair<Sink::PLANES> at(rows, from, 2 * LANES - 1);
        const uint8_t *weights = weights_;
        const uint16_t b = from.b;
        out += LANES * Sink::BYTES;
        for (int32_t n = blocks_; n > 0; n--) {
            const U8 w0 = load(weights), w1 = load(weights);
            UWide sums[Sink::PLANES];
#pragma GCC unroll 4
            for (int p = 0; p < Sink::PLANES; p++) {
                prefetch(at.top[p] + ahead);
                prefetch(at.bottom[p] + ahead);
                sums[p] = halve(at.top[p], at.bottom[p], w0, w1, b);
            }
            Sink::store(out, sums);
        }
    }

  private:
    int32_t blocks_;
    alignas(LANES) uint8_t weights_[2 * MAX_HALVED];
};

}  // namespace
}  // namespace tavu

#endif
