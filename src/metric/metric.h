// What every block metric shares: two blocks in one record, and the export.
#ifndef TAVU_METRIC_METRIC_H
#define TAVU_METRIC_METRIC_H

#include <cstddef>
#include <cstdint>

#include "simd/kernel.h"
#include "simd/vec.h"
#include "tavu.h"

namespace tavu {
namespace {

// Two blocks; a loop over rows moves both on.
struct Blocks {
    const uint8_t *a, *b;
    ptrdiff_t stride_a, stride_b;

    void next_row() {
        a += stride_a;
        b += stride_b;
    }
    Blocks tile(int32_t x, int32_t y) const {
        return {a + y * stride_a + x, b + y * stride_b + x, stride_a, stride_b};
    }
};

}  // namespace
}  // namespace tavu

// Exports NAME as a call of a function on the blocks: TAVU_METRIC_BLOCK(tavu_sad8x4, sad<8, 4>).
#define TAVU_METRIC_BLOCK(name, ...)                                                        \
    TAVU_KERNEL(int32_t, name,                                                              \
                (const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b)) { \
        return __VA_ARGS__(Blocks{a, b, stride_a, stride_b});                               \
    }

// The same for a function on a width, a height and the blocks.
#define TAVU_METRIC_AREA(name, ...)                                                 \
    TAVU_KERNEL(int32_t, name,                                                      \
                (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, \
                 int32_t stride_a, int32_t stride_b)) {                             \
        return __VA_ARGS__(width, height, Blocks{a, b, stride_a, stride_b});        \
    }

#endif
