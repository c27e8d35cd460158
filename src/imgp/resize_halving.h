// Rows of half the width: the samples of neighbouring columns stand side by side.
#ifndef TAVU_IMGP_RESIZE_HALVING_H
#define TAVU_IMGP_RESIZE_HALVING_H

#include <algorithm>

#include "imgp/resize_sink.h"
#include "tavu.h"

namespace tavu {
namespace {

// The step falls behind 2 by about 1 / width. So column i from the second on begins at 2 i - 1, until
// the loss sums up to another pixel, and its weight falls by an eighth at a time.
constexpr int32_t HALVING = 2 << POSITION_BITS;
constexpr int32_t MIN_HALVED = 4 * LANES;  // narrower runs gain nothing
constexpr int32_t MAX_HALVED = 4096;       // positions have 13 bits before the point

inline bool halves(const Columns &columns) {
    const Step step = columns.step;
    return columns.bytes == 1 && columns.next == 1 && step.shift == 0 && step.step < HALVING &&
           columns.width >= MIN_HALVED && columns.width <= MAX_HALVED &&
           step.step >= HALVING - (1 << POSITION_BITS) / MIN_HALVED;
}

// The first column whose position has lost more than `eighths`.
inline int32_t column_behind(int32_t loss, int32_t eighths) {
    return eighths * (1 << (POSITION_BITS - 3)) / loss + 1;
}

inline HalvedRow make_halved_row(const Columns &columns) {
    const int32_t loss = HALVING - columns.step.step;
    HalvedRow row;
    row.runs = 0;
    row.rest = LANES;
    row.width = columns.width;
    for (int32_t eighth = 1; eighth <= 8; eighth++) {
        const int32_t room = std::min(column_behind(loss, 8), columns.width) - row.rest;
        const int32_t wanted = column_behind(loss, eighth) - row.rest;
        const int32_t blocks = std::min((wanted + LANES - 1) / LANES, room / LANES);
        if (blocks <= 0) continue;
        row.run[row.runs++] = {row.rest, blocks, tavu_tbl_bilinear_rszw + 32 * (8 - eighth)};
        row.rest += std::min(wanted, blocks * LANES);
    }
    return row;
}

}  // namespace
}  // namespace tavu

#endif
