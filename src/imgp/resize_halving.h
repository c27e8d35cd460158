// Rows of half the width: the samples of neighbouring columns stand side by side.
#ifndef TAVU_IMGP_RESIZE_HALVING_H
#define TAVU_IMGP_RESIZE_HALVING_H

#include "imgp/resize_sink.h"

namespace tavu {
namespace {

// The step falls behind 2 by about 1 / width; then column i from the second on begins at 2 i - 1,
// until the loss sums up to another pixel.
constexpr int32_t HALVING = 2 << POSITION_BITS;
constexpr int32_t MAX_HALVED = 4096;  // positions have 13 bits before the point
constexpr int32_t HALVING_LOSS = 1 << (POSITION_BITS - 6);  // at 64 columns

inline bool halves(const Columns &columns) {
    const Step step = columns.step;
    return columns.bytes == 1 && step.shift == 0 && step.step < HALVING &&
           step.step >= HALVING - HALVING_LOSS && columns.next == 1 && columns.width <= MAX_HALVED;
}

class Halving {
  public:
    explicit Halving(const Columns &columns) {
        const int32_t end = (1 << POSITION_BITS) / (HALVING - columns.step.step) + 1;
        blocks_ = (end < columns.width ? end : columns.width) / LANES - 1;
        for (int32_t i = 0; i < blocks_ * LANES; i += 8) {
            set_weights(weights_ + 2 * i, columns.eighths(LANES + i, OFFSETS[0]));
        }
    }

    // Its columns are those from LANES up to here.
    int32_t end() const { return (blocks_ + 1) * LANES; }

    void make_row(const Sink &sink, const Rows &rows, const RowSource &from, uint8_t *out) const {
        sink.halve(RowPair(rows, sink.planes, from, 2 * LANES - 1), weights_, from.b, blocks_,
                   2 * rows.planes[0].stride, out + LANES * sink.bytes);
    }

  private:
    int32_t blocks_;
    alignas(LANES) uint8_t weights_[2 * MAX_HALVED];
};

}  // namespace
}  // namespace tavu

#endif
