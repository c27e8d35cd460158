// Bilinear resize of planes that share their columns, in blocks of LANES elements.
//
//     horizontal pass:  f(row) = (8 - a) * left + a * right
//     vertical pass:    sum = (8 - b) * f(upper) + b * f(lower)
//
// This is the weighted sum of the model, whose weights are the products of these. It is exact in
// 16-bit lanes: weights add up to 8 in each pass, so that a lane is at most 8 * 255 after the first
// and 64 * 255 after the second. Reads nothing beyond a row's samples and writes nothing beyond the
// target rows.
#ifndef TAVU_IMGP_RESIZE_ENGINE_H
#define TAVU_IMGP_RESIZE_ENGINE_H

#include "imgp/resize_plan.h"
#include "simd/row_loop.h"

#if TAVU_VEC

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

// A row of each plane after the horizontal pass, for a strip of columns.
struct FilteredRow {
    static constexpr int32_t PLANE_SIZE = 1024;  // elements

    int32_t row = -1;
    uint16_t sums[4 * PLANE_SIZE];

    // A single plane takes the space of two.
    static constexpr int32_t strip_size(int planes) {
        return planes == 1 ? 2 * PLANE_SIZE : PLANE_SIZE;
    }
};

struct HalvedRow;

// The loops for one kind of target pixels. Everything else is compiled once. The passes make a target
// row of `width` elements; the gathers or sums of a last block that is not full are those of the block
// that ends with the row.
struct Output {
    int planes;  // of the source
    int bytes;   // of the target per element
    void (*both_passes)(const Rows &rows, const RowTaps &taps, const Gather<1> *gathers,
                        int32_t width, uint8_t *out);
    void (*vertical_pass)(const FilteredRow &upper, const FilteredRow &lower, uint16_t b,
                          int32_t width, uint8_t *out);
    void (*halve)(const Rows &rows, HalvedRow &row);  // makes all rows
};

// Resizes. Returns false and writes nothing if columns cannot be gathered or rows do not descend.
bool resize_vec(const Output &output, const Columns &columns, const Rows &rows);

// Target pixels are a class with
//     PLANES, BYTES         as in Output
//     write_next(p, sums)   writes LANES elements, given the sums of each plane, and moves p on

TAVU_VEC_INLINE UWide lerp_rows(UWide upper, UWide lower, uint16_t b) {
    return {lerp_rows(upper.lo, lower.lo, b), lerp_rows(upper.hi, lower.hi, b)};
}

TAVU_VEC_INLINE UWide load_sums(const uint16_t *sums) {
    return {load16(sums), load16(sums + OUTPUTS)};
}

template <class Loaded>
TAVU_VEC_INLINE UWide lerp_columns(const uint8_t *row, const Loaded &lo, const Loaded &hi) {
    return {lerp_columns<1>(row, lo), lerp_columns<1>(row, hi)};
}

// Both passes of LANES elements, whose sums stay in registers.
template <class Pixels>
TAVU_VEC_INLINE void both_passes_block(SourceRows<Pixels::PLANES> rows, uint16_t b,
                                       const Gather<1> *gathers, uint8_t *&out) {
    const auto &lo = load_gather(gathers[0]), &hi = load_gather(gathers[1]);
    UWide sums[Pixels::PLANES];
#pragma GCC unroll 4
    for (int p = 0; p < Pixels::PLANES; p++) {
        sums[p] =
            lerp_rows(lerp_columns(rows.upper[p], lo, hi), lerp_columns(rows.lower[p], lo, hi), b);
    }
    Pixels::write_next(out, sums);
}

template <class Pixels>
TAVU_ONE_COPY void both_passes(const Rows &rows, const RowTaps &taps, const Gather<1> *gathers,
                               int32_t width, uint8_t *out) {
    struct Cursor {
        const Gather<1> *gathers;
        uint8_t *out;
        TAVU_VEC_INLINE void move(int32_t elements) { out += elements * Pixels::BYTES; }
    };
    const SourceRows<Pixels::PLANES> source(rows, taps);
    const uint16_t b = taps.b;
    for_each_block(Cursor{gathers, out}, width, [=](Cursor &at) __attribute__((always_inline)) {
        both_passes_block<Pixels>(source, b, at.gathers, at.out);
        at.gathers += 2;
    });
}

template <class Pixels>
void vertical_pass(const FilteredRow &upper, const FilteredRow &lower, uint16_t b, int32_t width,
                   uint8_t *out) {
    struct Cursor {
        const uint16_t *upper, *lower;
        uint8_t *out;
        TAVU_VEC_INLINE void move(int32_t elements) { out += elements * Pixels::BYTES; }
    };
    const Cursor start{upper.sums, lower.sums, out};
    for_each_block(start, width, [b](Cursor &at) __attribute__((always_inline)) {
        UWide sums[Pixels::PLANES];
#pragma GCC unroll 4
        for (int p = 0; p < Pixels::PLANES; p++) {
            const int32_t plane = p * FilteredRow::PLANE_SIZE;
            sums[p] = lerp_rows(load_sums(at.upper + plane), load_sums(at.lower + plane), b);
        }
        at.upper += LANES;
        at.lower += LANES;
        Pixels::write_next(at.out, sums);
    });
}

// Halving: in a row of half the width the samples of neighbouring columns are adjacent.
//
// The step falls short of 2 by about 1 / width. Column i begins at byte 2 i - lag: the lag is 0 for
// column 0, then 1 until the differences add up to more than a byte, and so on. Columns of one lag are
// a run. Its whole blocks end with it and take their samples from byte `source` on. The columns before
// them, among them column 0, are in the block at column `head`, which is gathered. Where blocks
// overlap, they write equal bytes.
struct Run {
    int32_t head, first, source, blocks;  // first: column of the first whole block
    Gather<1> gathers[2];                 // of the head
};

struct HalvedRow {
    static constexpr int32_t MAX_WIDTH = 4096, MAX_RUNS = 3, MAX_BLOCKS = MAX_WIDTH / LANES;

    int32_t run_count, block_count;
    Run runs[MAX_RUNS];
    uint8_t column_weights[2 * LANES * MAX_BLOCKS];
    Weights2x2 weights[MAX_BLOCKS];  // those of the columns times those of the rows
};

// Sets the weights for a vertical fraction of 1 to 7 eighths, times `scale`.
void multiply_weights(HalvedRow &row, uint16_t b, int scale);

// The whole blocks of a run of several planes.
template <class Pixels>
TAVU_VEC_INLINE void lerp_blocks_2x2(SourceRows<Pixels::PLANES> at, const Weights2x2 *weights,
                                     int32_t blocks, ptrdiff_t distance, uint8_t *out) {
    for (; blocks > 0; blocks--, weights++) {
        UWide sums[Pixels::PLANES];
#pragma GCC unroll 4
        for (int p = 0; p < Pixels::PLANES; p++) {
            prefetch(at.upper[p] + distance);
            prefetch(at.lower[p] + distance);
            sums[p] = lerp_next_2x2(at.upper[p], at.lower[p], *weights);
        }
        Pixels::write_next(out, sums);
    }
}

template <class Pixels>
TAVU_VEC_INLINE void halve_run(const Rows &rows, const RowTaps &taps, const Run &run,
                               const Weights2x2 *weights, uint8_t *out) {
    const ptrdiff_t distance = 2 * rows.planes[0].stride;  // to the next source rows
    SourceRows<Pixels::PLANES> at(rows, taps);
    uint8_t *head = out + run.head * Pixels::BYTES;
    both_passes_block<Pixels>(at, taps.b, run.gathers, head);
    if (run.blocks == 0) return;
    at.move(run.source);
    out += run.first * Pixels::BYTES;
    if constexpr (Pixels::PLANES == 1) {
        lerp_row_2x2(at.upper[0], at.lower[0], weights, run.blocks, distance, out);
    } else {
        lerp_blocks_2x2<Pixels>(at, weights, run.blocks, distance, out);
    }
}

template <class Pixels>
void halve(const Rows &rows, HalvedRow &row) {
    constexpr int PLANES = Pixels::PLANES, SCALE = PLANES == 1 ? ROW_SCALE_2X2 : 1;
    uint16_t b = 0;  // that the weights are for
    rows.for_each([&](RowTaps taps, uint8_t *out) {
        // Without weight for the lower row, the upper one twice: a weight of 64 would not fit.
        if (taps.b == 0) taps = {taps.upper, taps.upper, 4};
        if (taps.b != b) multiply_weights(row, b = taps.b, SCALE);
        const Weights2x2 *weights = row.weights;
        const Run *run = row.runs;
        for (int32_t n = row.run_count; n > 0; n--, weights += run->blocks, run++) {
            halve_run<Pixels>(rows, taps, *run, weights, out);
        }
    });
}

template <class Pixels>
constexpr Output OUTPUT = {Pixels::PLANES, Pixels::BYTES, both_passes<Pixels>,
                           vertical_pass<Pixels>, halve<Pixels>};

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif

#endif
