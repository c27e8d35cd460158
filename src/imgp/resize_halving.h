// Rows of half the width: the samples of neighbouring columns stand side by side.
#ifndef TAVU_IMGP_RESIZE_HALVING_H
#define TAVU_IMGP_RESIZE_HALVING_H

#include "imgp/resize_sink.h"

namespace tavu {
namespace {

// The step falls behind 2 by about 1 / width, so that column i begins at 2 i - behind(i).
constexpr int32_t HALVING = 2 << POSITION_BITS;
constexpr int32_t MIN_HALVED = 4 * LANES;  // narrower rows gain nothing

inline int32_t loss_of(const Columns &columns) { return HALVING - columns.step.step; }

inline bool halves(const Columns &columns) {
    const int32_t loss = loss_of(columns);
    return columns.bytes == 1 && columns.next == 1 && columns.step.shift == 0 && loss > 0 &&
           loss <= (1 << POSITION_BITS) / MIN_HALVED && columns.width >= MIN_HALVED &&
           columns.width <= HalvedRow::MAX_WIDTH &&
           columns.width * loss <= HalvedRow::MAX_BEHIND << POSITION_BITS;
}

inline void add_piece(const Columns &columns, HalvedRow &row, const Piece &piece) {
    row.piece[row.pieces++] = piece;
    uint8_t *weights = row.horizontal + 2 * LANES * row.blocks;
    row.blocks += piece.blocks;
    for (int32_t i = 0; i < piece.blocks * LANES; i += 8, weights += 16) {
        set_weights(weights, columns.eighths(piece.first + i, OFFSETS[0]));
    }
}

// From right to left, for the first block of a piece may reach into the piece before it. That of the
// first piece would reach beyond column 1, which its own stands for.
inline void make_halved_row(const Columns &columns, HalvedRow &row) {
    const int32_t loss = loss_of(columns);
    row.pieces = row.blocks = 0;
    int32_t end = columns.width, behind = 2 * (end - 1) - columns.left(end - 1);
    for (; behind > 1; behind--) {
        const int32_t first = ((behind - 1) << POSITION_BITS) / loss + 1;
        const int32_t blocks = (end - first + LANES - 1) / LANES;
        add_piece(columns, row, {end - blocks * LANES, behind, blocks});
        end = first;
    }
    add_piece(columns, row, {end - LANES, 1, 1});
    add_piece(columns, row, {1, 1, (end - 1) / LANES});
}

// Makes the blocks' weights for a vertical fraction. Pairs of bytes multiply as one: no product
// exceeds 255, for b is neither 0 nor 8.
inline void weigh_blocks(HalvedRow &row, uint16_t b, int unit) {
    const auto top = static_cast<uint16_t>((8 - b) * unit),
               bottom = static_cast<uint16_t>(b * unit);
    const uint8_t *p = row.horizontal;
    for (int32_t i = 0; i < row.blocks; i++, p += 2 * LANES) {
        const U16 x = load_lanes<U16>(p), y = load_lanes<U16>(p + LANES);
        row.weights[i] = {{x * top, y * top}, {x * bottom, y * bottom}};
    }
    row.b = b;
}

}  // namespace
}  // namespace tavu

#endif
