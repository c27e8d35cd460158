// Bilinear resize of planes that share their columns, in blocks of LANES elements.
//
//     sum = (8 - b) * ((8 - a) tl + a tr) + b * ((8 - a) bl + a br)
//
// is the weighted sum of the scalar form, for its weights are products; it is at most 64 * 255 and
// fits 16 bits. Reads nothing beyond a row's samples and writes nothing beyond the target rows.
#ifndef TAVU_IMGP_RESIZE_ROWS_H
#define TAVU_IMGP_RESIZE_ROWS_H

#include "imgp/bilinear.h"
#include "simd/vec.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

struct Plane {
    const uint8_t *data;
    ptrdiff_t stride;

    const uint8_t *row(int32_t y) const { return data + y * stride; }
};

// The source rows of a target row, and the weight of the lower one in eighths.
struct RowSource {
    int32_t top, bottom;
    uint16_t b;
};

// Which source rows each target row is made of.
struct Rows {
    Plane planes[4];
    Step step;
    int32_t first_position;
    int32_t height;  // of the target
    uint8_t *dst;
    ptrdiff_t dst_stride;

    bool from_top_to_bottom() const {
        return step.step >= 0 && first_position + int64_t{step.step} * height <= INT32_MAX;
    }
    bool grow() const { return height > 1 && step.step < 1 << POSITION_BITS; }

    // Calls make_row(source, out) for each target row.
    template <class MakeRow>
    void for_each(MakeRow make_row) const {
        uint8_t *out = dst;
        int32_t position = first_position;
        for (int32_t j = 0; j < height; j++, out += dst_stride, position += step.step) {
            const int32_t top = step.sample(position);
            const auto b = static_cast<uint16_t>(position >> (POSITION_BITS - 3) & 7);
            make_row(RowSource{top, top + step.next(), b}, out);
        }
    }
};

// The places of the source rows of one target row in the first `planes` planes, from byte `x` on.
struct RowPair {
    const uint8_t *top[4], *bottom[4];

    RowPair(const Rows &rows, int planes, const RowSource &from, int32_t x) : top(), bottom() {
        for (int p = 0; p < planes; p++) {
            top[p] = rows.planes[p].row(from.top) + x;
            bottom[p] = rows.planes[p].row(from.bottom) + x;
        }
    }
};

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif
