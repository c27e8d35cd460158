// Sums of absolute differences, a register of rows at a time. Reads no byte outside the blocks.
#include "metric/sad_model.h"
#include "metric/sum.h"

namespace tavu {
namespace {

template <int Columns, int Rows>
TAVU_VEC_INLINE int32_t best_sad(Blocks at) {
#if TAVU_VEC
    constexpr int N = ROW_WIDTH<Columns>;
    if constexpr (Columns * Rows >= N) return sum_block<AbsSum<N>, Columns, Rows>(at);
#endif
    return sad<Columns, Rows>(at);
}

#if TAVU_VEC

template <int Columns>
TAVU_VEC_INLINE int32_t sad_columns(int32_t height, Blocks at) {
    constexpr int32_t MOST = AbsSum<16>::MAX_BYTES / Columns;
    int32_t sum = 0;
    for (; height > MOST; height -= MOST) sum += sum_rows<AbsSum<16>, Columns>(MOST, at);
    return sum + sum_rows<AbsSum<16>, Columns>(height, at);
}

TAVU_VEC_INLINE int32_t best_sad_area(int32_t width, int32_t height, const Blocks &at) {
    return width == 8 ? sad_columns<8>(height, at) : sad_columns<16>(height, at);
}

template <int W>
TAVU_VEC_INLINE void add_start(AbsSum<16> &sum, const Blocks &at, int32_t x) {
    sum.add(load_start<W>(at.a + x), load_start<W>(at.b + x));
}

template <int Columns>
TAVU_VEC_INLINE void add_row(AbsSum<ROW_WIDTH<Columns>> &sum, Blocks &at) {
    if constexpr (Columns > 8) {
        add_rows<Columns>(sum, at);
    } else {
        add_start<Columns>(sum, at, 0);
        at.next_row();
    }
    // Else the compiler keeps a pointer to each row of a group in a register of its own, and saves
    // as many registers before the first load.
    __asm__("" : "+r"(at.a), "+r"(at.b));
}

// Any multiple of four columns.
TAVU_VEC_INLINE int32_t sum_row(int32_t width, const Blocks &at) {
    AbsSum<16> sum = AbsSum<16>::zero();
    int32_t x = 0;
    for (; x + 16 <= width; x += 16) add_start<16>(sum, at, x);
    if (width & 8) add_start<8>(sum, at, x);
    if (width & 4) add_start<4>(sum, at, x + (width & 8));
    return sum.total();
}

__attribute__((noinline)) int32_t skip_by_rows(int32_t width, int32_t height, const uint8_t *a,
                                               const uint8_t *b, int32_t stride_a, int32_t stride_b,
                                               int32_t threshold) {
    Blocks at{a, b, stride_a, stride_b};
    int32_t sum = 0;
    for (; height > 0; height--, at.next_row()) {
        sum += sum_row(width, at);
        if (sum > threshold) break;
    }
    return sum;
}

// Groups of four rows: a running sum never falls, so that one test serves a group. Only where it
// exceeds, the row is looked for.
template <int Columns>
TAVU_VEC_INLINE int32_t skip_by_groups(int32_t height, Blocks at, int32_t threshold) {
    int32_t sum = 0;
    for (; height >= 4; height -= 4) {
        AbsSum<ROW_WIDTH<Columns>> one;
        add_row<Columns>(one, at);
        auto two = one;
        add_row<Columns>(two, at);
        auto three = two;
        add_row<Columns>(three, at);
        auto four = three;
        add_row<Columns>(four, at);
        const int32_t before = sum;
        sum += four.total();
        if (__builtin_expect(sum > threshold, 0)) {
            if (before + three.total() <= threshold) return sum;
            if (before + two.total() <= threshold) return before + three.total();
            if (before + one.total() <= threshold) return before + two.total();
            return before + one.total();
        }
    }
    for (; height > 0; height--) {
        AbsSum<ROW_WIDTH<Columns>> row;
        add_row<Columns>(row, at);
        sum += row.total();
        if (sum > threshold) break;
    }
    return sum;
}

TAVU_VEC_INLINE int32_t best_sad_eskip(int32_t width, int32_t height, const Blocks &at,
                                       int32_t threshold) {
    if (width == 16) return skip_by_groups<16>(height, at, threshold);
    if (width == 64) return skip_by_groups<64>(height, at, threshold);
    if (width == 8) return skip_by_groups<8>(height, at, threshold);
    if (width == 32) return skip_by_groups<32>(height, at, threshold);
    return skip_by_rows(width, height, at.a, at.b, at.stride_a, at.stride_b, threshold);
}

#else

constexpr auto best_sad_area = sad_area;
constexpr auto best_sad_eskip = sad_eskip;

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_METRIC_BLOCK(tavu_sad2x2, best_sad<2, 2>)
TAVU_METRIC_BLOCK(tavu_sad2x4, best_sad<2, 4>)
TAVU_METRIC_BLOCK(tavu_sad4x2, best_sad<4, 2>)
TAVU_METRIC_BLOCK(tavu_sad4x4, best_sad<4, 4>)
TAVU_METRIC_BLOCK(tavu_sad4x8, best_sad<4, 8>)
TAVU_METRIC_BLOCK(tavu_sad8x4, best_sad<8, 4>)
TAVU_METRIC_BLOCK(tavu_sad8x8, best_sad<8, 8>)
TAVU_METRIC_BLOCK(tavu_sad8x16, best_sad<8, 16>)
TAVU_METRIC_BLOCK(tavu_sad16x8, best_sad<16, 8>)
TAVU_METRIC_BLOCK(tavu_sad16x16, best_sad<16, 16>)
TAVU_METRIC_BLOCK(tavu_sad16x32, best_sad<16, 32>)
TAVU_METRIC_BLOCK(tavu_sad32x16, best_sad<32, 16>)
TAVU_METRIC_BLOCK(tavu_sad32x32, best_sad<32, 32>)
TAVU_METRIC_BLOCK(tavu_sad64x32, best_sad<64, 32>)
TAVU_METRIC_BLOCK(tavu_sad32x64, best_sad<32, 64>)
TAVU_METRIC_BLOCK(tavu_sad64x64, best_sad<64, 64>)
TAVU_METRIC_AREA(tavu_sad, best_sad_area)

TAVU_KERNEL(int32_t, tavu_sad_eskip,
            (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, int32_t stride_a,
             int32_t stride_b, int32_t threshold)) {
    return best_sad_eskip(width, height, {a, b, stride_a, stride_b}, threshold);
}
