// Sums of absolute differences, a register of rows at a time. Reads no byte outside the blocks.
#include "metric/sad_model.h"
#include "metric/sum.h"

namespace tavu {
namespace {

template <int Columns, int Rows>
TAVU_VEC_INLINE int32_t sad_kernel(BlockPair at) {
#if TAVU_VEC
    constexpr int N = ROW_WIDTH<Columns>;
    if constexpr (Columns * Rows >= N) return sum_block<AbsSum<N>, Columns, Rows>(at);
#endif
    return sad<Columns, Rows>(at);
}

#if TAVU_VEC

template <int Columns>
TAVU_VEC_INLINE int32_t sad_columns(int32_t height, BlockPair at) {
    constexpr int32_t MOST = AbsSum<16>::MAX_BYTES / Columns;
    int32_t sum = 0;
    for (; height > MOST; height -= MOST) sum += sum_rows<AbsSum<16>, Columns>(MOST, at);
    return sum + sum_rows<AbsSum<16>, Columns>(height, at);
}

TAVU_VEC_INLINE int32_t sad_area_kernel(int32_t width, int32_t height, const BlockPair &at) {
    return width == 8 ? sad_columns<8>(height, at) : sad_columns<16>(height, at);
}

template <int W>
TAVU_VEC_INLINE void add_start(AbsSum<16> &sum, const BlockPair &at, int32_t x) {
    sum.add(load_start<W>(at.a + x), load_start<W>(at.b + x));
}

template <int Columns>
TAVU_VEC_INLINE void add_row(AbsSum<ROW_WIDTH<Columns>> &sum, BlockPair &at) {
    if constexpr (Columns > 8) {
        add_rows<Columns>(sum, at);
    } else {
        add_start<Columns>(sum, at, 0);
        at.next_row();
    }
}

// Any multiple of four columns.
TAVU_VEC_INLINE int32_t sum_row(int32_t width, const BlockPair &at) {
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
    BlockPair at{a, b, stride_a, stride_b};
    int32_t sum = 0;
    for (; height > 0; height--, at.next_row()) {
        sum += sum_row(width, at);
        if (sum > threshold) break;
    }
    return sum;
}

// Groups of four rows. The running sum never falls, so one comparison serves a group; the row is searched
// only if the group exceeds the threshold.
template <int Columns>
__attribute__((noinline)) int32_t skip_by_groups(int32_t height, const uint8_t *a, const uint8_t *b,
                                                 int32_t stride_a, int32_t stride_b,
                                                 int32_t threshold) {
    BlockPair at{a, b, stride_a, stride_b};
    using Sum = AbsSum<ROW_WIDTH<Columns>>;
    int32_t left = threshold;  // of the threshold after the rows so far
    for (; height >= 4; height -= 4) {
        // Without this the compiler keeps a pointer to each row in a register of its own, and saves as
        // many registers before the first load.
        __asm__("" : "+r"(at.a), "+r"(at.b));
        Sum one;
        add_row<Columns>(one, at);
        Sum two = one;
        add_row<Columns>(two, at);
        Sum three = two;
        add_row<Columns>(three, at);
        Sum four = three;
        add_row<Columns>(four, at);
        const int32_t sum = four.total();
        if (__builtin_expect(sum > left, 0)) {
            const int32_t before = threshold - left;
            if (three.total() <= left) return before + sum;
            if (two.total() <= left) return before + three.total();
            return before + (one.total() <= left ? two : one).total();
        }
        left -= sum;
    }
    for (; height > 0; height--) {
        Sum row;
        add_row<Columns>(row, at);
        const int32_t sum = row.total();
        if (sum > left) return threshold - left + sum;
        left -= sum;
    }
    return threshold - left;
}

// The paths are separate functions, so that none saves the registers of another.
TAVU_VEC_INLINE int32_t sad_eskip_kernel(int32_t width, int32_t height, const uint8_t *a,
                                         const uint8_t *b, int32_t stride_a, int32_t stride_b,
                                         int32_t threshold) {
    const auto skip = [=](auto *path) { return path(height, a, b, stride_a, stride_b, threshold); };
    if (width == 16) return skip(skip_by_groups<16>);
    if (width == 64) return skip(skip_by_groups<64>);
    if (width == 8) return skip(skip_by_groups<8>);
    if (width == 32) return skip(skip_by_groups<32>);
    return skip_by_rows(width, height, a, b, stride_a, stride_b, threshold);
}

#else

constexpr auto sad_area_kernel = sad_area;
int32_t sad_eskip_kernel(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                         int32_t stride_a, int32_t stride_b, int32_t threshold) {
    return sad_eskip(width, height, {a, b, stride_a, stride_b}, threshold);
}

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_METRIC_BLOCK(tavu_sad2x2, sad_kernel<2, 2>)
TAVU_METRIC_BLOCK(tavu_sad2x4, sad_kernel<2, 4>)
TAVU_METRIC_BLOCK(tavu_sad4x2, sad_kernel<4, 2>)
TAVU_METRIC_BLOCK(tavu_sad4x4, sad_kernel<4, 4>)
TAVU_METRIC_BLOCK(tavu_sad4x8, sad_kernel<4, 8>)
TAVU_METRIC_BLOCK(tavu_sad8x4, sad_kernel<8, 4>)
TAVU_METRIC_BLOCK(tavu_sad8x8, sad_kernel<8, 8>)
TAVU_METRIC_BLOCK(tavu_sad8x16, sad_kernel<8, 16>)
TAVU_METRIC_BLOCK(tavu_sad16x8, sad_kernel<16, 8>)
TAVU_METRIC_BLOCK(tavu_sad16x16, sad_kernel<16, 16>)
TAVU_METRIC_BLOCK(tavu_sad16x32, sad_kernel<16, 32>)
TAVU_METRIC_BLOCK(tavu_sad32x16, sad_kernel<32, 16>)
TAVU_METRIC_BLOCK(tavu_sad32x32, sad_kernel<32, 32>)
TAVU_METRIC_BLOCK(tavu_sad64x32, sad_kernel<64, 32>)
TAVU_METRIC_BLOCK(tavu_sad32x64, sad_kernel<32, 64>)
TAVU_METRIC_BLOCK(tavu_sad64x64, sad_kernel<64, 64>)
TAVU_METRIC_AREA(tavu_sad, sad_area_kernel)

TAVU_KERNEL(int32_t, tavu_sad_eskip,
            (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, int32_t stride_a,
             int32_t stride_b, int32_t threshold)) {
    return sad_eskip_kernel(width, height, a, b, stride_a, stride_b, threshold);
}
