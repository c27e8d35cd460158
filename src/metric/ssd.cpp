// Sums of squared differences, a register of rows at a time. Reads no byte outside the blocks.
#include "metric/ssd_model.h"
#include "metric/sum.h"

namespace tavu {
namespace {

#if TAVU_VEC
template <int Columns>
struct BestRows {
    static int32_t ssd(int32_t rows, const Blocks &at) {
        return sum_rows<SquareSum, Columns>(rows, at);
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
