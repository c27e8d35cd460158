// Bilinear resize in the vector form that suits the columns.
#ifndef TAVU_IMGP_RESIZE_VEC_H
#define TAVU_IMGP_RESIZE_VEC_H

#include "simd/vec.h"

#if TAVU_VEC

#include "imgp/resize_chunk.h"
#include "imgp/resize_halving.h"

namespace tavu {
namespace {

template <class Sink>
bool resize_half(const Columns<1> &columns, const Rows &rows) {
    if (!halves(columns) || rows.grow()) return false;
    Halving<Sink> halving(columns);
    const int32_t rest = columns.width - halving.end();
    if (rest > Chunk<Sink, 1>::SIZE) return false;
    Chunk<Sink, 1> first(columns, 0, LANES), last(columns, halving.end(), rest);
    rows.for_each([&](const RowSource &from, uint8_t *out) {
        first.make_row(rows, from, out);
        halving.make_row(rows, from, out);
        last.make_row(rows, from, out);
    });
    return true;
}

template <class Sink, int Windows, int Bytes>
void resize_chunks(const Columns<Bytes> &columns, const Rows &rows) {
    if constexpr (Bytes == 1 && Windows == 1) {
        if (resize_half<Sink>(columns, rows)) return;
    }
    constexpr int32_t SIZE = Chunk<Sink, Windows>::SIZE;
    for (int32_t first = 0; first < columns.elements(); first += SIZE) {
        const int32_t rest = columns.elements() - first;
        Chunk<Sink, Windows> chunk(columns, first, rest < SIZE ? rest : SIZE);
        rows.for_each(
            [&](const RowSource &from, uint8_t *out) { chunk.make_row(rows, from, out); });
    }
}

// False, and nothing is done, if columns cannot be made of taps or rows do not follow each other.
template <class Sink, int Bytes>
bool resize_vec(const Columns<Bytes> &columns, const Rows &rows) {
    switch (rows.from_top_to_bottom() ? columns.windows() : 0) {
        case 1: resize_chunks<Sink, 1>(columns, rows); return true;
        case 2: resize_chunks<Sink, 2>(columns, rows); return true;
        case 4: resize_chunks<Sink, 4>(columns, rows); return true;
        default: return false;
    }
}

}  // namespace
}  // namespace tavu

#endif

#endif
