#include "imgp/resize_engine.h"

#if TAVU_VEC

#include "imgp/resize_chunk.h"
#include "imgp/resize_halving.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {
namespace {

// A row whose lower one has no weight is the mean of itself and itself, which spares weights of 64.
RowSource spread(const RowSource &from) {
    return from.b > 0 ? from : RowSource{from.top, from.top, 4};
}

// Calls halve(from, out) for each target row, with weights for it.
template <class Halve>
TAVU_VEC_INLINE void for_each_half(const Rows &rows, HalvedRow &row, int unit, Halve halve) {
    rows.for_each([&](const RowSource &place, uint8_t *out) {
        const RowSource from = spread(place);
        if (from.b != row.b) weigh_blocks(row, from.b, unit);
        halve(from, out);
    });
}

bool resize_half(const Sink &sink, const Columns &columns, const Rows &rows) {
    if (!halves(columns) || rows.grow()) return false;
    HalvedRow row;
    make_halved_row(columns, row);
    const Plane plane = rows.planes[0];
    const ptrdiff_t ahead = 2 * plane.stride;
    if (sink.planes == 1) {
        for_each_half(rows, row, BYTES_UNIT, [&](const RowSource &from, uint8_t *out) {
            halve_bytes(plane, from, row, ahead, out);
        });
        return true;
    }
    columns.make_taps(0, 1, row.first_taps);
    for_each_half(rows, row, 1, [&](const RowSource &from, uint8_t *out) {
        sink.halve(RowPair(rows, sink.planes, from, 0), row, ahead, out);
    });
    return true;
}

template <int Windows>
void resize_chunks(const Sink &sink, const Columns &columns, const Rows &rows) {
    const int32_t size = WeighedRow::chunk_size(sink.planes);
    for (int32_t first = 0; first < columns.elements(); first += size) {
        const int32_t rest = columns.elements() - first;
        Chunk<Windows> chunk(sink, columns, first, rest < size ? rest : size);
        rows.for_each(
            [&](const RowSource &from, uint8_t *out) { chunk.make_row(rows, from, out); });
    }
}

}  // namespace

bool resize_vec(const Sink &sink, const Columns &columns, const Rows &rows) {
    switch (rows.from_top_to_bottom() ? columns.windows() : 0) {
        case 1:
            if (!resize_half(sink, columns, rows)) resize_chunks<1>(sink, columns, rows);
            return true;
        case 2: resize_chunks<2>(sink, columns, rows); return true;
        case 4: resize_chunks<4>(sink, columns, rows); return true;
        default: return false;
    }
}

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif
