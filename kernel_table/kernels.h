// The table of kernels that have vector forms: their models, the variants that the processor has,
// and what to feed them. It drives the kernel test and the kernel benchmark.
#ifndef TAVU_BENCH_KERNELS_H
#define TAVU_BENCH_KERNELS_H

#include <vector>

#include "tavu.h"
#include "variants.h"

using CscVariant = Variant<tavu_fn_csc_t>;
using CscVariants = std::vector<CscVariant>;

struct CscKernel {
    const char *name;
    tavu_fn_csc_t model;
    CscVariants variants;
    int src_planes;
    int src_step;  // bytes from pixel to pixel: 1, or of a packed source whose channels
                   // are the planes
    std::vector<int> dst_bytes;  // per pixel, of each target plane
    std::vector<int32_t> codes;  // target codes that differ in effect
};

std::vector<CscKernel> csc_kernels();

#endif
