// The table of resize kernels: their models and the variants that the processor has. It drives the
// kernel test and the benchmark.
#ifndef TAVU_BENCH_RESIZE_KERNELS_H
#define TAVU_BENCH_RESIZE_KERNELS_H

#include <vector>

#include "kernels.h"

struct ResizeVariant {
    const char *level;
    tavu_irsz_full_t *full;
    tavu_irsz_line_t *line;
};

struct ResizeKernel {
    const char *name;
    int src_bytes, dst_bytes;  // per pixel
    int line_unit;             // bytes in which line sizes are counted
    ResizeVariant model;
    std::vector<ResizeVariant> variants;
};

std::vector<ResizeKernel> resize_kernels();

// The routines that convert and resize at once, from planes to one packed target.
std::vector<CscKernel> csc_rsz_kernels();

#endif
