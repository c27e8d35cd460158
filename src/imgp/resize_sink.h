// The row loops of a resize, one set for each kind of target pixels: what sums become. All else is
// compiled once.
#ifndef TAVU_IMGP_RESIZE_SINK_H
#define TAVU_IMGP_RESIZE_SINK_H

#include "imgp/resize_rows.h"
#include "imgp/resize_taps.h"
#include "simd/row_loop.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

// The weighed rows of one chunk, plane by plane. A single plane takes the room of two.
struct WeighedRow {
    static constexpr int32_t PLANE_SIZE = 1024;  // elements
    int32_t row = -1;
    uint16_t sums[4 * PLANE_SIZE];

    static constexpr int32_t chunk_size(int planes) {
        return planes == 1 ? 2 * PLANE_SIZE : PLANE_SIZE;
    }
};

// Blocks of columns whose samples stand side by side: those of column `first` at byte `source`.
struct Piece {
    int32_t first, source, blocks;
};

// A row of half the width. All columns but the first lie in pieces, of which later ones overwrite.
struct HalvedRow {
    static constexpr int32_t MAX_WIDTH = 4096, MAX_BEHIND = 3;
    static constexpr int32_t MAX_PIECES = MAX_BEHIND + 1;
    static constexpr int32_t MAX_BLOCKS = MAX_WIDTH / LANES + MAX_PIECES;
    int pieces;
    int32_t blocks;
    uint16_t b;  // that the weights are for
    Piece piece[MAX_PIECES];
    Taps<1> first_taps[2];  // of the first block
    uint8_t horizontal[2 * LANES * MAX_BLOCKS];
    HalfWeights weights[MAX_BLOCKS];
};

struct Sink {
    int planes, bytes;  // that it takes, and that it writes for an element
    // Rows of `width` elements. The sums and taps of a last block that is not full are those of the
    // anchored one.
    void (*weigh_and_mix)(const RowPair &rows, const Taps<1> *taps, uint16_t b, int32_t width,
                          uint8_t *out);
    void (*mix)(const WeighedRow &upper, const WeighedRow &lower, uint16_t b, int32_t width,
                uint8_t *out);
    // Of several planes; `ahead` bytes on is what comes next. A single plane gives bytes.
    void (*halve)(const RowPair &rows, const HalvedRow &row, ptrdiff_t ahead, uint8_t *out);
};

// Target pixels of a kind are made by a class that has
//     PLANES, BYTES         as in Sink
//     store_next(p, sums)        writes LANES elements, given the sums of each plane, and moves p on

TAVU_VEC_INLINE UWide mix_block(UWide top, UWide bottom, uint16_t b) {
    const auto rest = static_cast<uint16_t>(8 - b);
    return {mix(top.lo, bottom.lo, rest, b), mix(top.hi, bottom.hi, rest, b)};
}

TAVU_VEC_INLINE UWide load_sums(const uint16_t *sums) {
    return {load16(sums), load16(sums + OUTPUTS)};
}

template <class Pixels>
TAVU_ONE_COPY void weigh_and_mix_row(const RowPair &rows, const Taps<1> *taps, uint16_t b,
                                     int32_t width, uint8_t *out) {
    struct Place {
        const Taps<1> *taps;
        uint8_t *out;
        TAVU_VEC_INLINE void move(int32_t elements) { out += elements * Pixels::BYTES; }
    };
    constexpr int PLANES = Pixels::PLANES;
    const uint8_t *top[size_t{PLANES}], *bottom[size_t{PLANES}];
#pragma GCC unroll 4
    for (int p = 0; p < PLANES; p++) top[p] = rows.top[p], bottom[p] = rows.bottom[p];
    for_each_block(Place{taps, out}, width, [&](Place &at) __attribute__((always_inline)) {
        const auto &lo = load_taps(at.taps[0]), &hi = load_taps(at.taps[1]);
        UWide sums[size_t{PLANES}];
#pragma GCC unroll 4
        for (int p = 0; p < PLANES; p++) {
            sums[p] = mix_block({weigh<1>(top[p], lo), weigh<1>(top[p], hi)},
                                {weigh<1>(bottom[p], lo), weigh<1>(bottom[p], hi)}, b);
        }
        at.taps += 2;
        Pixels::store_next(at.out, sums);
    });
}

template <class Pixels>
void mix_row(const WeighedRow &upper, const WeighedRow &lower, uint16_t b, int32_t width,
             uint8_t *out) {
    struct Place {
        const uint16_t *upper, *lower;
        uint8_t *out;
        TAVU_VEC_INLINE void move(int32_t elements) { out += elements * Pixels::BYTES; }
    };
    for_each_block(
        Place{upper.sums, lower.sums, out}, width, [b](Place &at) __attribute__((always_inline)) {
            UWide sums[Pixels::PLANES];
#pragma GCC unroll 4
            for (int p = 0; p < Pixels::PLANES; p++) {
                const int32_t plane = p * WeighedRow::PLANE_SIZE;
                sums[p] = mix_block(load_sums(at.upper + plane), load_sums(at.lower + plane), b);
            }
            at.upper += LANES;
            at.lower += LANES;
            Pixels::store_next(at.out, sums);
        });
}

template <class Pixels>
TAVU_VEC_INLINE void halve_piece(const RowPair &rows, const Piece &piece,
                                 const HalfWeights *&weights, ptrdiff_t ahead, uint8_t *out) {
    constexpr int PLANES = Pixels::PLANES;
    const uint8_t *top[size_t{PLANES}], *bottom[size_t{PLANES}];
#pragma GCC unroll 4
    for (int p = 0; p < PLANES; p++) {
        top[p] = rows.top[p] + piece.source;
        bottom[p] = rows.bottom[p] + piece.source;
    }
    out += piece.first * Pixels::BYTES;
    for (int32_t n = piece.blocks; n > 0; n--, weights++) {
        UWide sums[size_t{PLANES}];
#pragma GCC unroll 4
        for (int p = 0; p < PLANES; p++) {
            prefetch(top[p] + ahead);
            prefetch(bottom[p] + ahead);
            sums[p] = halve(top[p], bottom[p], *weights);
        }
        Pixels::store_next(out, sums);
    }
}

template <class Pixels>
void halve_row(const RowPair &rows, const HalvedRow &row, ptrdiff_t ahead, uint8_t *out) {
    weigh_and_mix_row<Pixels>(rows, row.first_taps, row.b, LANES, out);
    const HalfWeights *weights = row.weights;
    for (int i = 0; i < row.pieces; i++) {
        halve_piece<Pixels>(rows, row.piece[i], weights, ahead, out);
    }
}

template <class Pixels>
constexpr auto halve_of() {
    if constexpr (Pixels::PLANES > 1) return halve_row<Pixels>;
    if constexpr (Pixels::PLANES == 1) return nullptr;
}

template <class Pixels>
constexpr Sink SINK = {Pixels::PLANES, Pixels::BYTES, weigh_and_mix_row<Pixels>, mix_row<Pixels>,
                       halve_of<Pixels>()};

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif
