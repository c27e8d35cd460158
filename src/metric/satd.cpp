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
TAVU_VEC_INLINE int32_t whole_registers(int32_t width, int32_t height, Blocks at, Add add) {
    if (width <= 0 || height <= 0) return 0;
    const uint32_t tiles = (static_cast<uint32_t>(height) + Rows - 1) / Rows;
    uint32_t strips = static_cast<uint32_t>(width) / Columns;
    Sum sum = Sum::zero();
    do {
        Blocks strip = at;
        uint32_t n = tiles;
        do add(sum, strip);
        while (--n != 0);
        at = at.tile(Columns, 0);
    } while (--strips != 0);
    return sum.total();
}

// The part of an area that does not fill registers goes by single tiles, apart, so that an area
// without such a part does not pay for it.
template <class Sum, int Columns, int Size, class Add>
TAVU_VEC_INLINE int32_t best_tiles(int32_t width, int32_t height, const Blocks &at, Add add,
                                   tavu_metric_area_t *single) {
    const int32_t whole = width & -Columns;
    const int32_t sum = whole_registers<Sum, Columns, Size>(whole, height, at, add);
    if (width == whole || width < 0) return sum;
    const Blocks rest = at.tile(whole, 0);
    const int32_t more =
        single(width - whole, height, rest.a, rest.b, static_cast<int32_t>(at.stride_a),
               static_cast<int32_t>(at.stride_b));
    return static_cast<int32_t>(static_cast<uint32_t>(sum) + static_cast<uint32_t>(more));
}

__attribute__((noinline)) int32_t single_satd4x4s(int32_t width, int32_t height, const uint8_t *a,
                                                  const uint8_t *b, int32_t stride_a,
                                                  int32_t stride_b) {
    return tiles<4>(width, height, {a, b, stride_a, stride_b},
                    [](const Blocks &tile) { return best_satd4x4(tile); });
}

__attribute__((noinline)) int32_t single_satd8x8s(int32_t width, int32_t height, const uint8_t *a,
                                                  const uint8_t *b, int32_t stride_a,
                                                  int32_t stride_b) {
    return tiles<8>(width, height, {a, b, stride_a, stride_b},
                    [](const Blocks &tile) { return best_satd8x8(tile); });
}

constexpr int N = WIDEST < 32 ? WIDEST : 32;

struct Tiles4x4 {
    static TAVU_VEC_INLINE int32_t satd(int32_t width, int32_t height, const Blocks &at) {
        const auto add = [](auto &sum, Blocks &strip)
                             __attribute__((always_inline)) { add_satd4x4(sum, strip); };
        if constexpr (WIDEST == 64) {
            if (((width | height * 2) & 15) == 0) {
                return whole_registers<MagnitudeSum<64>, 16, 8>(width, height, at, add);
            }
        }
        return best_tiles<MagnitudeSum<N>, 16, 4>(width, height, at, add, single_satd4x4s);
    }
};

struct Tiles8x8 {
    static TAVU_VEC_INLINE int32_t satd(int32_t width, int32_t height, const Blocks &at) {
#if defined(__ARM_NEON)
        const auto add = [](auto &sum, Blocks &strip)
                             __attribute__((always_inline)) { add_satd8x8_twice(sum, strip); };
        return best_tiles<RoundedSums, 16, 8>(width, height, at, add, single_satd8x8s);
#else
        const auto add = [](auto &sum, Blocks &strip)
                             __attribute__((always_inline)) { add_satd8x8(sum, strip); };
        return best_tiles<RoundedSum<N>, N / 2, 8>(width, height, at, add, single_satd8x8s);
#endif
    }
};

#if defined(__arm__)

// The choice of the other processors would cost a small area more than its sum.
template <class Tiles>
TAVU_VEC_INLINE int32_t best_area(int32_t width, int32_t height, const Blocks &at) {
    return Tiles::satd(width, height, at);
}

#else

constexpr int32_t ONE_BAND = 64, BAND = 8, PIECE = 384;

template <class Tiles>
__attribute__((noinline)) int32_t one_band(int32_t width, int32_t height, const uint8_t *a,
                                           const uint8_t *b, ptrdiff_t stride_a,
                                           ptrdiff_t stride_b) {
    return Tiles::satd(width, height, {a, b, stride_a, stride_b});
}

inline void prefetch_piece(const uint8_t *p, ptrdiff_t stride, int32_t width) {
    constexpr int32_t CACHE_LINE = 64;
    for (int32_t y = 0; y < BAND; y++, p += stride) {
        for (int32_t x = 0; x < width; x += CACHE_LINE) __builtin_prefetch(p + x);
    }
}

template <class Tiles>
__attribute__((noinline)) int32_t by_pieces(int32_t width, int32_t height, Blocks band) {
    uint32_t sum = 0;
    for (; height > 0; height -= BAND, band = band.tile(0, BAND)) {
        const int32_t rows = height < BAND ? height : BAND;
        for (int32_t x = 0; x < width; x += PIECE) {
            const int32_t left = width - x, columns = left < PIECE ? left : PIECE;
            const Blocks at = band.tile(x, 0);
            const Blocks next = columns < left ? at.tile(PIECE, 0) : band.tile(0, BAND);
            prefetch_piece(next.a, next.stride_a, columns);
            prefetch_piece(next.b, next.stride_b, columns);
            sum += static_cast<uint32_t>(
                one_band<Tiles>(columns, rows, at.a, at.b, at.stride_a, at.stride_b));
        }
    }
    return static_cast<int32_t>(sum);
}

// Pictures go by bands of rows, for a strip down a whole picture would touch a page with every row, and
// bands by pieces of which this one and the next fit the first cache.
template <class Tiles>
TAVU_VEC_INLINE int32_t best_area(int32_t width, int32_t height, const Blocks &at) {
    if (height > ONE_BAND) return by_pieces<Tiles>(width, height, at);
    return one_band<Tiles>(width, height, at.a, at.b, at.stride_a, at.stride_b);
}

#endif

constexpr auto best_satd4x4_area =
    [](int32_t width, int32_t height, const Blocks &at)
        __attribute__((always_inline)) { return best_area<Tiles4x4>(width, height, at); };
constexpr auto best_satd8x8_area =
    [](int32_t width, int32_t height, const Blocks &at)
        __attribute__((always_inline)) { return best_area<Tiles8x8>(width, height, at); };

#else

int32_t best_hadamard4x4(const int16_t *block) {
    Transform<4> t;
    memcpy(t.at, block, sizeof t.at);
    return hadamard4x4(t);
}

constexpr auto best_satd4x4 = satd4x4;
constexpr auto best_satd8x8 = satd8x8;
constexpr auto best_satd4x4_area = satd4x4_area;
constexpr auto best_satd8x8_area = satd8x8_area;

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
