// Sums of squared differences, a register of rows at a time. Reads no byte outside the blocks.
#include "metric/ssd_model.h"
#include "metric/sum.h"

namespace tavu {
namespace {

#if TAVU_VEC
template <int Columns>
struct BestRows {
    // Apart, so that no path pays for the registers of another.
    __attribute__((noinline)) static int32_t ssd(int32_t rows, const uint8_t *a, const uint8_t *b,
                                                 int32_t stride_a, int32_t stride_b) {
        // Several narrow rows fill a register, for a square costs more than the joining.
        constexpr int N = Columns == 4 || WIDEST == 16 ? 16 : Columns < 64 ? 32 : WIDEST;
        Blocks at{a, b, stride_a, stride_b};
        return sum_rows<SquareSum<N>, Columns>(rows, at);
    }
    static TAVU_VEC_INLINE int32_t ssd(int32_t rows, const Blocks &at) {
        return ssd(rows, at.a, at.b, at.stride_a, at.stride_b);
    }
};
#else
template <int Columns>
using BestRows = ModelRows<Columns>;
#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_METRIC_AREA(tavu_ssd, ssd_area<BestRows>)
