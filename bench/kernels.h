// The table of kernels that have vector forms: their models, the variants that the processor has,
// and what to feed them. It drives the kernel test and the kernel benchmark.
#ifndef TAVU_BENCH_KERNELS_H
#define TAVU_BENCH_KERNELS_H

#include <vector>

#include "tavu.h"

struct CscVariant {
    const char *level;
    tavu_fn_csc_t run;
};

struct CscKernel {
    const char *name;
    tavu_fn_csc_t model;
    std::vector<CscVariant> variants;
    int src_planes;
    int dst_bytes;               // per pixel
    std::vector<int32_t> codes;  // target codes that differ in effect
    bool alpha_target;           // writes alpha to a second plane
};

std::vector<CscKernel> csc_kernels();

#endif
