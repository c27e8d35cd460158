// The parts of a resize that do not depend on the target pixels: gathers, the horizontal pass, strips,
// the runs of a halved row, and the choice among these forms.
#include "imgp/resize_engine.h"

#if TAVU_VEC

#include <cstring>
#include <utility>

#include "imgp/resize_plan.h"

namespace tavu {
namespace {

// Gathers: the samples of the columns, in groups of 8 elements.

// Pixel and channel of the elements of a group that begins with channel `first` of pixel 0.
struct Offsets {
    alignas(16) int32_t pixel[8];
    uint16_t channel[8];
};

constexpr Offsets offsets_from(int bytes, int first) {
    Offsets o{};
    for (int i = 0; i < 8; i++) {
        o.pixel[i] = (first + i) / bytes;
        o.channel[i] = static_cast<uint16_t>((first + i) % bytes);
    }
    return o;
}

// Groups of 4-byte pixels always begin with channel 0.
constexpr Offsets OFFSETS[] = {offsets_from(1, 0), offsets_from(3, 0), offsets_from(3, 1),
                               offsets_from(3, 2), offsets_from(4, 0)};
constexpr int FIRST_OFFSETS[] = {0, 0, 0, 1, 4};  // by bytes

template <class Vector, class Scalar>
TAVU_VEC_INLINE Vector load_lanes(const Scalar *p) {
    Vector v;
    memcpy(&v, p, sizeof v);
    return v;
}

// The positions of a group from `pixel` on.
struct Positions {
    I32x4 lo, hi;

    TAVU_VEC_INLINE Positions(const Columns &columns, int32_t pixel, const Offsets &offsets)
        : lo(load_lanes<I32x4>(offsets.pixel)), hi(load_lanes<I32x4>(offsets.pixel + 4)) {
        const int32_t step = columns.step.step, first = pixel * step;
        lo = lo * step + first;
        hi = hi * step + first;
    }

    // The horizontal fractions in eighths.
    TAVU_VEC_INLINE U16x8 eighths() const {
        return narrow32(lo >> (POSITION_BITS - 3), hi >> (POSITION_BITS - 3)) & 7;
    }
    TAVU_VEC_INLINE U16x8 units() const {
        return narrow32(lo >> POSITION_BITS, hi >> POSITION_BITS);
    }
};

// Sets a group of a gather. Its windows start at the left sample of `pixel`, or earlier if they would
// reach beyond the row's last sample. Samples are near the start, so their products may wrap.
template <int Windows>
TAVU_VEC_INLINE void set_group(const Columns &columns, int32_t pixel, const Offsets &offsets,
                               int group, Gather<Windows> &gather) {
    const int32_t last_start = columns.end(columns.width - 1) - Windows * WINDOW;
    const int32_t left = columns.left(pixel), start = left < last_start ? left : last_start;
    const Positions at(columns, pixel, offsets);
    const auto unit = static_cast<uint16_t>(columns.bytes << columns.step.shift);
    const U16x8 samples =
        at.units() * unit + load_lanes<U16x8>(offsets.channel) - static_cast<uint16_t>(start);
    gather.offset[group] = start;
    set_positions(gather, group, samples,
                  samples + static_cast<uint16_t>(columns.next * columns.bytes));
    set_weights(gather.weight + 16 * group, at.eighths());
}

// The gathers of LANES elements from `first` on.
template <int Windows>
TAVU_VEC_INLINE void make_block(const Columns &columns, int32_t first, Gather<Windows> *gathers) {
    const int32_t bytes = columns.bytes, pixels = 8 / bytes, channels = 8 % bytes;
    int32_t pixel = first / bytes, channel = first % bytes;
    for (int i = 0; i < LANES / 8; i++) {
        set_group(columns, pixel, OFFSETS[FIRST_OFFSETS[bytes] + channel], i / 2, gathers[i % 2]);
        pixel += pixels;
        channel += channels;
        if (channel >= bytes) channel -= bytes, pixel++;
    }
}

// The gathers of `count` blocks from `element` on. A block that would exceed the row ends with it.
// Columns come by value: compilers would reload them from a reference after each store of bytes.
template <int Windows>
__attribute__((noinline)) void make_gathers(Columns columns, int32_t element, int32_t count,
                                            Gather<Windows> *gathers) {
    const int32_t last = columns.elements() - LANES;
    for (; count > 0; count--, element += LANES, gathers += 2) {
        make_block(columns, element < last ? element : last, gathers);
    }
}

// Strips: the gathers of a strip of columns serve all rows.

template <int Windows>
__attribute__((noinline)) void horizontal_pass(const uint8_t *src, const Gather<Windows> *gathers,
                                               int32_t count, uint16_t *sums) {
    for (; count > 0; count--, sums += OUTPUTS, gathers++) {
        store16(sums, lerp_columns<Windows>(src, load_gather(*gathers)));
    }
}

// A reduction takes both passes at once. In an enlargement target rows share source rows, so these are
// kept after the horizontal pass. So are rows whose samples span several windows, which saves every
// Output a loop for them.
template <int Windows>
class Strip {
  public:
    Strip(const Output &output, const Columns &columns, int32_t first, int32_t width)
        : output_(output), first_(first), width_(width) {
        make_gathers(columns, first, blocks(), gathers_);
    }

    // The strip of one target row.
    void make_row(const Rows &rows, const RowTaps &taps, uint8_t *out) {
        out += static_cast<ptrdiff_t>(first_) * output_.bytes;
        if constexpr (Windows == 1) {
            if (!rows.enlarge()) {
                return output_.both_passes(rows, taps, gathers_, width_, out);
            }
        }
        // Rows descend, so the lower row may become the upper one.
        if (upper_->row != taps.upper) std::swap(upper_, lower_);
        filter(rows, taps.upper, *upper_);
        filter(rows, taps.lower, *lower_);
        output_.vertical_pass(*upper_, *lower_, taps.b, width_, out);
    }

  private:
    int32_t blocks() const { return (width_ + LANES - 1) / LANES; }

    void filter(const Rows &rows, int32_t row, FilteredRow &filtered) {
        if (filtered.row == row) return;
        filtered.row = row;
        for (int p = 0; p < output_.planes; p++) {
            horizontal_pass(rows.planes[p].row(row), gathers_, 2 * blocks(),
                            filtered.sums + p * FilteredRow::PLANE_SIZE);
        }
    }

    const Output &output_;
    int32_t first_, width_;
    Gather<Windows> gathers_[2 * FilteredRow::strip_size(1) / LANES];
    FilteredRow filtered_[2];
    FilteredRow *upper_ = &filtered_[0], *lower_ = &filtered_[1];
};

template <int Windows>
void resize_strips(const Output &output, const Columns &columns, const Rows &rows) {
    const int32_t size = FilteredRow::strip_size(output.planes);
    for (int32_t first = 0; first < columns.elements(); first += size) {
        const int32_t rest = columns.elements() - first;
        Strip<Windows> strip(output, columns, first, rest < size ? rest : size);
        rows.for_each([&](const RowTaps &taps, uint8_t *out) { strip.make_row(rows, taps, out); });
    }
}

// Halving.

// By how much the step falls short of 2.
int32_t loss_of(const Columns &columns) { return (2 << POSITION_BITS) - columns.step.step; }

bool halves(const Columns &columns) {
    constexpr int32_t MIN_WIDTH = 4 * LANES;  // narrower rows gain nothing
    const int32_t loss = loss_of(columns), width = columns.width;
    return columns.bytes == 1 && columns.next == 1 && columns.step.shift == 0 && loss > 0 &&
           loss <= (1 << POSITION_BITS) / MIN_WIDTH && width >= MIN_WIDTH &&
           width <= HalvedRow::MAX_WIDTH && width * loss <= HalvedRow::MAX_RUNS << POSITION_BITS;
}

// The run of columns start..end-1. Column `start` is in its head.
void add_run(const Columns &columns, int32_t start, int32_t end, int32_t lag, HalvedRow &row) {
    Run &run = row.runs[row.run_count++];
    run.blocks = (end - start - 1) / LANES;
    run.first = end - run.blocks * LANES;
    run.source = 2 * run.first - lag;
    const int32_t last = columns.width - LANES;
    run.head = start < last ? start : last;
    make_gathers(columns, run.head, 1, run.gathers);
    uint8_t *weights = row.column_weights + 2 * LANES * row.block_count;
    for (int32_t column = run.first; column < end; column += 8, weights += 16) {
        set_weights(weights, Positions(columns, column, OFFSETS[0]).eighths());
    }
    row.block_count += run.blocks;
}

void make_runs(const Columns &columns, HalvedRow &row) {
    const int32_t loss = loss_of(columns), width = columns.width;
    row.run_count = row.block_count = 0;
    for (int32_t start = 0, lag = 1; start < width; lag++) {
        const int32_t end = (lag << POSITION_BITS) / loss + 1;
        add_run(columns, start, end < width ? end : width, lag, row);
        start = end;
    }
}

bool resize_half(const Output &output, const Columns &columns, const Rows &rows) {
    if (!halves(columns) || rows.enlarge()) return false;
    HalvedRow row;
    make_runs(columns, row);
    output.halve(rows, row);
    return true;
}

}  // namespace

// The two weights of a lane multiply as one 16-bit number, because no product exceeds 8 * 7 * 4.
void TAVU_LEVEL_NAMESPACE::multiply_weights(HalvedRow &row, uint16_t b, int scale) {
    const auto upper = static_cast<uint16_t>((8 - b) * scale);
    const auto lower = static_cast<uint16_t>(b * scale);
    const uint8_t *columns = row.column_weights;
    auto *out = reinterpret_cast<uint8_t *>(row.weights);
    const auto store_product = [&out](U8 pairs, uint16_t weight) {
        store_next(out, reinterpret_cast<U8>(reinterpret_cast<U16>(pairs) * weight));
    };
    for (int32_t n = row.block_count; n > 0; n--) {
        const U8 first = load_next(columns), second = load_next(columns);
        store_product(first, upper), store_product(second, upper);
        store_product(first, lower), store_product(second, lower);
    }
}

bool TAVU_LEVEL_NAMESPACE::resize_vec(const Output &output, const Columns &columns,
                                      const Rows &rows) {
    switch (rows.descend() ? columns.windows() : 0) {
        case 1:
            if (!resize_half(output, columns, rows)) resize_strips<1>(output, columns, rows);
            return true;
        case 2: resize_strips<2>(output, columns, rows); return true;
        case 4: resize_strips<4>(output, columns, rows); return true;
        default: return false;
    }
}

}  // namespace tavu

#endif
