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

// Columns from `first` on, which begin `behind` bytes before their doubles.
__attribute__((noinline)) void add_piece(const Columns &columns, HalvedRow &row, int32_t first,
                                         int32_t behind, int32_t blocks) {
    row.piece[row.pieces++] = {first, 2 * first - behind, blocks};
    uint8_t *weights = row.horizontal + 2 * LANES * row.blocks;
    row.blocks += blocks;
    for (int32_t i = 0; i < blocks * LANES; i += 8, weights += 16) {
        set_weights(weights, columns.eighths(first + i, OFFSETS[0]));
    }
}

// From right to left, for the first block of a piece may reach into the piece before it. That of the
// first piece would reach beyond column 1, which its own stands for.
inline void make_halved_row(const Columns &columns, HalvedRow &row) {
    const int32_t loss = loss_of(columns);
    row.pieces = row.blocks = row.b = 0;
    int32_t end = columns.width, behind = 2 * (end - 1) - columns.left(end - 1);
    for (; behind > 1; behind--) {
        const int32_t first = ((behind - 1) << POSITION_BITS) / loss + 1;
        const int32_t blocks = (end - first + LANES - 1) / LANES;
        add_piece(columns, row, end - blocks * LANES, behind, blocks);
        end = first;
    }
    add_piece(columns, row, end - LANES, 1, 1);
    add_piece(columns, row, 1, 1, (end - 1) / LANES);
}

TAVU_VEC_INLINE U16 load_pairs(const uint8_t *&p) { return reinterpret_cast<U16>(load_next(p)); }

TAVU_VEC_INLINE void store_pairs(uint8_t *&p, U16 v) { store_next(p, reinterpret_cast<U8>(v)); }

// Makes the blocks' weights for a vertical fraction. Pairs of bytes multiply as one: no product
// exceeds 255, for b is neither 0 nor 8.
__attribute__((noinline)) void weigh_blocks(HalvedRow &row, uint16_t b, int unit) {
    const auto top = static_cast<uint16_t>((8 - b) * unit),
               bottom = static_cast<uint16_t>(b * unit);
    const uint8_t *p = row.horizontal;
    auto *weights = reinterpret_cast<uint8_t *>(row.weights);
    for (int32_t n = row.blocks; n > 0; n--) {
        const U16 x = load_pairs(p), y = load_pairs(p);
        store_pairs(weights, x * top), store_pairs(weights, y * top);
        store_pairs(weights, x * bottom), store_pairs(weights, y * bottom);
    }
    row.b = b;
}

// `ahead` bytes on is what comes next.
TAVU_VEC_INLINE void halve_bytes(const Plane &plane, const RowSource &from, const HalvedRow &row,
                                 ptrdiff_t ahead, uint8_t *out) {
    const uint8_t *top = plane.row(from.top), *bottom = plane.row(from.bottom);
    *out = static_cast<uint8_t>(((8 - from.b) * *top + from.b * *bottom) >> 3);
    const HalfWeights *weights = row.weights;
    const Piece *piece = row.piece;
    for (int n = row.pieces; n > 0; n--, piece++) {
        halve_to_bytes(top + piece->source, bottom + piece->source, weights, piece->blocks, ahead,
                       out + piece->first);
    }
}

}  // namespace
}  // namespace tavu

#endif
