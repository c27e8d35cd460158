// The plan of a bilinear resize: the source rows that make a target row and the samples that make a
// column.
#ifndef TAVU_IMGP_RESIZE_PLAN_H
#define TAVU_IMGP_RESIZE_PLAN_H

#include "imgp/bilinear.h"
#include "simd/resample.h"

#if TAVU_VEC

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

struct Plane {
    const uint8_t *data;
    ptrdiff_t stride;

    const uint8_t *row(int32_t y) const { return data + y * stride; }
};

// The two source rows of a target row, weighted 8 - b and b.
struct RowTaps {
    int32_t upper, lower;
    uint16_t b;
};

// The rows of planes with common positions.
struct Rows {
    Plane planes[4];
    Step step;
    int32_t first_position;
    int32_t height;  // of the target
    uint8_t *dst;
    ptrdiff_t dst_stride;

    // Whether rows go from top to bottom without overflow.
    bool descend() const {
        return step.step >= 0 && first_position + int64_t{step.step} * height <= INT32_MAX;
    }
    bool enlarge() const { return height > 1 && step.step < 1 << POSITION_BITS; }

    // Calls make_row(taps, out) for each target row.
    template <class MakeRow>
    void for_each(MakeRow make_row) const {
        uint8_t *out = dst;
        int32_t position = first_position;
        const int32_t next = step.next();
        for (int32_t n = height; n > 0; n--, out += dst_stride, position += step.step) {
            const int32_t upper = step.sample(position);
            const auto b = static_cast<uint16_t>(position >> (POSITION_BITS - 3) & 7);
            make_row(RowTaps{upper, upper + next, b}, out);
        }
    }
};

// Pointers to the source rows of a target row in each plane.
template <int Planes>
struct SourceRows {
    const uint8_t *upper[size_t{Planes}], *lower[size_t{Planes}];

    TAVU_VEC_INLINE SourceRows(const Rows &rows, const RowTaps &taps) {
#pragma GCC unroll 4
        for (int p = 0; p < Planes; p++) {
            upper[p] = rows.planes[p].row(taps.upper);
            lower[p] = rows.planes[p].row(taps.lower);
        }
    }

    TAVU_VEC_INLINE void move(ptrdiff_t bytes) {
#pragma GCC unroll 4
        for (int p = 0; p < Planes; p++) upper[p] += bytes, lower[p] += bytes;
    }
};

// The columns of a row of pixels of 1, 3 or 4 bytes. Each byte is an element of its own.
struct Columns {
    int32_t bytes;
    Step step;
    int32_t next;   // distance to the right-hand neighbour in pixels
    int32_t width;  // of the target in pixels

    int32_t elements() const { return width * bytes; }

    // Byte offsets of a target pixel's left sample and of the end of its right one.
    int32_t left(int32_t pixel) const { return step.sample(pixel * step.step) * bytes; }
    int32_t end(int32_t pixel) const { return left(pixel) + (next + 1) * bytes; }

    // Whether columns go from left to right without overflow and fill a block.
    bool ascend() const {
        if (width < 1 || step.step < 1 || next < 0) return false;
        const int64_t end_position = int64_t{step.step} * width, size = int64_t{bytes} * width;
        return end_position <= INT32_MAX && size <= INT32_MAX && size >= LANES;
    }

    // Bytes that the samples of 8 consecutive elements span at most.
    int64_t span() const {
        const int64_t more_pixels = bytes == 3 ? 3 : 7 / bytes;  // after the first
        const int64_t units = ((more_pixels * step.step - 1) >> POSITION_BITS) + 1;
        return (units * (1 << step.shift) + next + 1) * bytes;
    }

    // How many windows span the samples of a group of 8; 0 if these are too far apart to be gathered
    // or the windows do not fit in the row.
    int windows() const {
        if (!ascend()) return 0;
        const int64_t size = span();
        if (size > 4 * WINDOW) return 0;
        const int count = size <= WINDOW ? 1 : size <= 2 * WINDOW ? 2 : 4;
        return end(width - 1) < count * WINDOW ? 0 : count;
    }
};

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif

#endif
