// SATDs: of areas by registers of several tiles as far as they fit, by single tiles for the rest.
// Reads no byte outside the tiles.
#include <cstring>

#include "metric/satd_model.h"
#include "metric/satd_vec.h"

namespace tavu {
namespace {

#if TAVU_VEC

TAVU_VEC_INLINE int32_t best_hadamard4x4(const int16_t *block) {
    Words<16> top, bottom;
    memcpy(&top, block, sizeof top);
    memcpy(&bottom, block + 8, sizeof bottom);
    butterfly(top, bottom);
    return finish4x4(top, bottom);
}

TAVU_VEC_INLINE int32_t best_satd4x4(const Blocks &at) { return satd4x4_registers(at); }

TAVU_VEC_INLINE int32_t best_satd8x8(const Blocks &at) { return satd8x8_registers(at); }

// Takes Columns x Rows samples at a time, in strips from top to bottom: add(sum, strip) moves on.
template <class Sum, int Columns, int Rows, class Add>
TAVU_VEC_INLINE int32_t whole_registers(int32_t width, int32_t height, const Blocks &at, Add add) {
    Sum sum = Sum::zero();
    for (int32_t x = 0; x < width; x += Columns) {
        Blocks strip = at.tile(x, 0);
        for (int32_t y = 0; y < height; y += Rows) add(sum, strip);
    }
    return sum.total();
}

// The part of an area that does not fill registers goes by single tiles.
template <class Sum, int Columns, int Size, class Add>
TAVU_VEC_INLINE int32_t best_tiles(int32_t width, int32_t height, const Blocks &at, Add add,
                                   int32_t (*single)(const Blocks &)) {
    const int32_t whole = width > 0 ? width & -Columns : 0;
    const int32_t sum = whole_registers<Sum, Columns, Size>(whole, height, at, add);
    if (whole == width) return sum;
    return sum + tiles<Size>(width - whole, height, at.tile(whole, 0), single);
}

constexpr int N = WIDEST < 32 ? WIDEST : 32;

TAVU_VEC_INLINE int32_t best_satd4x4_area(int32_t width, int32_t height, const Blocks &at) {
    const auto add = [](auto &sum, Blocks &strip) { add_satd4x4(sum, strip); };
    if constexpr (WIDEST == 64) {
        if (((width | height * 2) & 15) == 0) {
            return whole_registers<MagnitudeSum<64>, 16, 8>(width, height, at, add);
        }
    }
    const auto single = [](const Blocks &tile) { return best_satd4x4(tile); };
    return best_tiles<MagnitudeSum<N>, 16, 4>(width, height, at, add, single);
}

TAVU_VEC_INLINE int32_t best_satd8x8_area(int32_t width, int32_t height, const Blocks &at) {
    const auto add = [](auto &sum, Blocks &strip) { add_satd8x8(sum, strip); };
    const auto single = [](const Blocks &tile) { return best_satd8x8(tile); };
    return best_tiles<RoundedSum<N>, N / 2, 8>(width, height, at, add, single);
}

#else

int32_t best_hadamard4x4(const int16_t *block) {
    Transform<4> t;
    memcpy(t.at, block, sizeof t.at);
    return hadamard4x4(t);
}

constexpr auto best_satd4x4 = satd4x4;
constexpr auto best_satd8x8 = satd8x8;
int32_t best_satd4x4_area(int32_t width, int32_t height, const Blocks &at) {
    return tiles<4>(width, height, at, satd4x4);
}

int32_t best_satd8x8_area(int32_t width, int32_t height, const Blocks &at) {
    return tiles<8>(width, height, at, satd8x8);
}

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_METRIC_BLOCK(tavu_satd4x4, best_satd4x4)
TAVU_METRIC_BLOCK(tavu_satd8x8, best_satd8x8)
TAVU_METRIC_AREA(tavu_satd, best_satd4x4_area)
TAVU_METRIC_AREA(tavu_satd1, best_satd4x4_area)
TAVU_METRIC_AREA(tavu_satd2, best_satd8x8_area)

TAVU_KERNEL(int32_t, tavu_hadamard4x4, (const int16_t *block)) { return best_hadamard4x4(block); }
