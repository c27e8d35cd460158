// The export of block metrics.
#ifndef TAVU_METRIC_METRIC_H
#define TAVU_METRIC_METRIC_H

#include "simd/attributes.h"
#include "simd/block.h"
#include "simd/kernel.h"
#include "tavu.h"

// Exports NAME as a call of a function of the blocks: TAVU_METRIC_BLOCK(tavu_sad8x4, sad<8, 4>).
#define TAVU_METRIC_BLOCK(name, ...)                                                        \
    TAVU_KERNEL(int32_t, name,                                                              \
                (const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b)) { \
        return __VA_ARGS__(BlockPair{a, b, stride_a, stride_b});                            \
    }

// The same for a function of a width, a height and the blocks.
#define TAVU_METRIC_AREA(name, ...)                                                 \
    TAVU_KERNEL(int32_t, name,                                                      \
                (int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, \
                 int32_t stride_a, int32_t stride_b)) {                             \
        return __VA_ARGS__(width, height, BlockPair{a, b, stride_a, stride_b});     \
    }

#endif
