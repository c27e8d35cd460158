// SATDs: of areas by registers of several tiles as far as they fit, by single tiles for the rest.
// Reads no byte outside the tiles.
#include <cstring>

#include "metric/satd_model.h"
#include "metric/satd_vec.h"

namespace tavu {
namespace {

#if TAVU_VEC

TAVU_VEC_INLINE int32_t best_hadamard4x4(const int16_t *block) {
    I16 rows[2]{};
    memcpy(&rows[0], block, 16);
    memcpy(&rows[1], block + 8, 16);
    butterfly(rows[0], rows[1]);
    return finish4x4(rows[0], rows[1]);
}

TAVU_VEC_INLINE int32_t best_satd4x4(const Blocks &at) { return satd4x4_registers(at); }

TAVU_VEC_INLINE int32_t best_satd8x8(const Blocks &at) { return satd8x8_registers(at); }

// Add takes Columns x Size samples at a time.
template <int Size, int Columns, class Sum, void (*Add)(Sum &, Blocks)>
TAVU_VEC_INLINE int32_t whole_registers(int32_t width, int32_t height, const Blocks &at) {
    Sum sum = Sum::zero();
    for (int32_t y = 0; y < height; y += Size) {
        for (int32_t x = 0; x < width; x += Columns) Add(sum, at.tile(x, y));
    }
    return sum.total();
}

template <int Size, int Columns, class Sum, void (*Add)(Sum &, Blocks),
          int32_t (*Single)(const Blocks &)>
__attribute__((noinline)) int32_t registers_and_tiles(int32_t width, int32_t height, Blocks at) {
    const int32_t whole = width > 0 ? width & -Columns : 0;
    return whole_registers<Size, Columns, Sum, Add>(whole, height, at) +
           tiles<Size, Single>(width - whole, height, at.tile(whole, 0));
}

template <int Size, int Columns, class Sum, void (*Add)(Sum &, Blocks),
          int32_t (*Single)(const Blocks &)>
TAVU_VEC_INLINE int32_t best_tiles(int32_t width, int32_t height, const Blocks &at) {
    if (width % Columns == 0) return whole_registers<Size, Columns, Sum, Add>(width, height, at);
    return registers_and_tiles<Size, Columns, Sum, Add, Single>(width, height, at);
}

TAVU_VEC_INLINE int32_t best_satd4x4_area(int32_t width, int32_t height, const Blocks &at) {
    return best_tiles<4, 16, MagnitudeSum, add_satd4x4, best_satd4x4>(width, height, at);
}

TAVU_VEC_INLINE int32_t best_satd8x8_area(int32_t width, int32_t height, const Blocks &at) {
    return best_tiles<8, LANES / 2, RoundedSum, add_satd8x8, best_satd8x8>(width, height, at);
}

#else

int32_t best_hadamard4x4(const int16_t *block) {
    Transform<4> t;
    memcpy(t.at, block, sizeof t.at);
    return hadamard4x4(t);
}

constexpr auto best_satd4x4 = satd4x4;
constexpr auto best_satd8x8 = satd8x8;
constexpr auto best_satd4x4_area = tiles<4, satd4x4>;
constexpr auto best_satd8x8_area = tiles<8, satd8x8>;

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
