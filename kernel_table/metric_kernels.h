// The table of block metrics, residuals and fills: their models and the variants that the processor
// has, with the shape on which they are timed.
#ifndef TAVU_BENCH_METRIC_KERNELS_H
#define TAVU_BENCH_METRIC_KERNELS_H

#include <cstdint>
#include <functional>
#include <vector>

#include "tavu.h"
#include "variants.h"

// A routine on blocks of width x height; of fixed-size ones that is their own size.
template <class Routine>
struct BlockKernel {
    const char *name;
    int32_t width, height;
    Routine model;
    std::vector<Variant<Routine>> variants;
};

using EarlySkip = decltype(tavu_sad_eskip);
using DiffArea = decltype(tavu_diff);
using Hadamard = decltype(tavu_hadamard4x4);
using Fill = std::function<void(void *dst, int32_t bytes)>;

std::vector<BlockKernel<tavu_metric_block_t *>> block_kernels();
std::vector<BlockKernel<tavu_metric_area_t *>> area_kernels();
std::vector<BlockKernel<EarlySkip *>> early_skip_kernels();
std::vector<BlockKernel<tavu_diff_block_t *>> diff_block_kernels();
std::vector<BlockKernel<DiffArea *>> diff_area_kernels();
std::vector<BlockKernel<Hadamard *>> hadamard_kernels();
// Of width bytes, in one row.
std::vector<BlockKernel<Fill>> fill_kernels();

#endif
