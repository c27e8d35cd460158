#include "imgp/resize_vec.h"

#if TAVU_VEC

#include "imgp/resize_chunk.h"
#include "imgp/resize_halving.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {
namespace {

bool resize_half(const Sink &sink, const Columns &columns, const Rows &rows) {
    if (!halves(columns) || rows.grow()) return false;
    HalvedRow row = make_halved_row(columns);
    const int32_t rest = columns.width - row.rest;
    if (rest > WeighedRow::chunk_size(1)) return false;
    columns.make_taps(0, 1, row.first_taps);
    columns.make_taps(row.rest, (rest + LANES - 1) / LANES, row.rest_taps);
    rows.for_each([&](const RowSource &from, uint8_t *out) {
        sink.halve(RowPair(rows, sink.planes, from, 0), row, from.b, 2 * rows.planes[0].stride,
                   out);
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
