// SATDs. Areas are summed in strips of several tiles as far as these fit, and by single tiles for the
// rest. Reads no byte outside the tiles.
#include <cstring>
#include <type_traits>

#include "metric/satd_model.h"
#include "simd/satd.h"

namespace tavu {
namespace {

#if TAVU_VEC

TAVU_VEC_INLINE int32_t hadamard4x4_kernel(const int16_t *block) {
    VecI16<16> top, bottom;
    memcpy(&top, block, sizeof top);
    memcpy(&bottom, block + 8, sizeof bottom);
    butterfly(top, bottom);
    return finish4x4(top, bottom);
}

template <int Size>
TAVU_VEC_INLINE int32_t satd_kernel(const BlockPair &at) {
    if constexpr (Size == 4) return vec_satd4x4(at);
    if constexpr (Size == 8) return vec_satd8x8(at);
}

template <int Size>
using StripOf = std::conditional_t<Size == 4, Satd4x4Strip, Satd8x8Strip>;

// Whole strips, each from top to bottom.
template <class Strip>
TAVU_VEC_INLINE int32_t sum_strips(int32_t width, int32_t height, BlockPair at) {
    if (width <= 0 || height <= 0) return 0;
    const uint32_t steps = (static_cast<uint32_t>(height) + Strip::ROWS - 1) / Strip::ROWS;
    uint32_t strips = static_cast<uint32_t>(width) / Strip::COLUMNS;
    Strip sum = Strip::zero();
    do {
        BlockPair strip = at;
        uint32_t n = steps;
        do sum.add_next(strip);
        while (--n != 0);
        at = at.tile(Strip::COLUMNS, 0);
    } while (--strips != 0);
    return sum.total();
}

// Apart, so that an area without a rest does not pay for it.
template <int Size>
__attribute__((noinline)) int32_t sum_single(int32_t width, int32_t height, const uint8_t *a,
                                             const uint8_t *b, ptrdiff_t stride_a,
                                             ptrdiff_t stride_b) {
    return tiles<Size>(width, height, {a, b, stride_a, stride_b},
                       [](const BlockPair &tile) { return satd_kernel<Size>(tile); });
}

constexpr int32_t BAND_HEIGHT = 8, SPLIT_WIDTH = 384, MAX_UNSPLIT_HEIGHT = 64;

template <int Size>
int32_t split_area(int32_t width, int32_t height, BlockPair band);

// Takes the members of the pair, because a record would be passed in memory.
template <int Size>
__attribute__((noinline)) int32_t satd_area(int32_t width, int32_t height, const uint8_t *a,
                                            const uint8_t *b, ptrdiff_t stride_a,
                                            ptrdiff_t stride_b) {
    const BlockPair at = {a, b, stride_a, stride_b};
    if (SPLIT_PICTURES && height > MAX_UNSPLIT_HEIGHT) return split_area<Size>(width, height, at);
    if constexpr (LANES == 64 && Size == 4) {
        if (width % 16 == 0 && height % 8 == 0) {
            return sum_strips<Satd4x4Sum<LANES>>(width, height, at);
        }
    }
    using Strip = StripOf<Size>;
    const int32_t whole = width & -Strip::COLUMNS;
    const int32_t sum = sum_strips<Strip>(whole, height, at);
    if (width == whole || width < 0) return sum;
    const BlockPair rest = at.tile(whole, 0);
    const int32_t more =
        sum_single<Size>(width - whole, height, rest.a, rest.b, stride_a, stride_b);
    return static_cast<int32_t>(static_cast<uint32_t>(sum) + static_cast<uint32_t>(more));
}

inline void prefetch_band(const uint8_t *p, ptrdiff_t stride, int32_t width) {
    constexpr int32_t CACHE_LINE = 64;
    for (int32_t y = 0; y < BAND_HEIGHT; y++, p += stride) {
        for (int32_t x = 0; x < width; x += CACHE_LINE) __builtin_prefetch(p + x);
    }
}

// Pictures are split into bands, because a strip down a whole picture would touch a page with every row,
// and bands by width, so that a part and the next one fit the first-level cache.
template <int Size>
__attribute__((noinline)) int32_t split_area(int32_t width, int32_t height, BlockPair band) {
    uint32_t sum = 0;
    for (; height > 0; height -= BAND_HEIGHT, band = band.tile(0, BAND_HEIGHT)) {
        const int32_t rows = height < BAND_HEIGHT ? height : BAND_HEIGHT;
        for (int32_t x = 0; x < width; x += SPLIT_WIDTH) {
            const int32_t left = width - x, columns = left < SPLIT_WIDTH ? left : SPLIT_WIDTH;
            const BlockPair at = band.tile(x, 0);
            const BlockPair next =
                columns < left ? at.tile(SPLIT_WIDTH, 0) : band.tile(0, BAND_HEIGHT);
            prefetch_band(next.a, next.stride_a, columns);
            prefetch_band(next.b, next.stride_b, columns);
            sum += static_cast<uint32_t>(
                satd_area<Size>(columns, rows, at.a, at.b, at.stride_a, at.stride_b));
        }
    }
    return static_cast<int32_t>(sum);
}

#else

int32_t hadamard4x4_kernel(const int16_t *block) {
    Transform<4> t;
    memcpy(t.at, block, sizeof t.at);
    return hadamard4x4(t);
}

template <int Size>
int32_t satd_kernel(const BlockPair &at) {
    return Size == 4 ? satd4x4(at) : satd8x8(at);
}

template <int Size>
int32_t satd_area(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                  ptrdiff_t stride_a, ptrdiff_t stride_b) {
    return (Size == 4 ? satd4x4_area : satd8x8_area)(width, height, {a, b, stride_a, stride_b});
}

#endif

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_METRIC_BLOCK(tavu_satd4x4, satd_kernel<4>)
TAVU_METRIC_BLOCK(tavu_satd8x8, satd_kernel<8>)
#define TAVU_SATD_AREA(name, size)                                                  \
    TAVU_KERNEL(int32_t, name,                                                      \
                (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, \
                 int32_t stride_a, int32_t stride_b)) {                             \
        return satd_area<size>(width, height, a, b, stride_a, stride_b);            \
    }

TAVU_SATD_AREA(tavu_satd, 4)
TAVU_SATD_AREA(tavu_satd1, 4)
TAVU_SATD_AREA(tavu_satd2, 8)

TAVU_KERNEL(int32_t, tavu_hadamard4x4, (const int16_t *block)) { return hadamard4x4_kernel(block); }
