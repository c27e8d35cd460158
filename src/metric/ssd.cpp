// Sums of squared differences, a register of rows at a time. Reads no byte outside the blocks.
#include "metric/ssd_model.h"
#include "metric/sum.h"

#if TAVU_VEC

namespace tavu {
namespace {

// Several narrow rows fill a register, because squaring costs more than joining them.
template <int Columns>
constexpr int SSD_WIDTH = Columns == 4 || LANES == 16 ? 16
                          : Columns == 64             ? LANES
                                                      : 32;

template <int Columns>
TAVU_VEC_INLINE int32_t ssd_rows(int32_t rows, BlockPair at) {
    return sum_rows<SquareSum<SSD_WIDTH<Columns>>, Columns>(rows, at);
}

template <int Size>
TAVU_VEC_INLINE int32_t ssd_square(BlockPair at) {
    return sum_block<SquareSum<SSD_WIDTH<Size>>, Size, Size>(at);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

// Conditional comparisons take an instruction more in Thumb code.
extern "C" TAVU_ARM_STATE tavu_metric_area_t tavu_ssd;

// The usual squares have paths of their own, which set up nothing for other sizes.
TAVU_KERNEL(int32_t, tavu_ssd,
            (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, int32_t stride_a,
             int32_t stride_b)) {
    const auto blocks = [&] {
        keep_in_memory(stride_a);
        keep_in_memory(stride_b);
        return BlockPair{a, b, stride_a, stride_b};
    };
    if (width == 8 && height == 8) return ssd_square<8>(blocks());
    if (width == 16 && height == 16) return ssd_square<16>(blocks());
    switch (width) {
        case 4: return ssd_rows<4>(height, blocks());
        case 8: return ssd_rows<8>(height, blocks());
        case 16: return ssd_rows<16>(height, blocks());
        case 32: return ssd_rows<32>(height, blocks());
        default: return ssd_rows<64>(height, blocks());
    }
}

#else

using namespace tavu;

TAVU_METRIC_AREA(tavu_ssd, ssd_area)

#endif
