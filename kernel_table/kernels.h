// The table of kernels: names, models, the entry points of every level, and sizes to run them on. Its rows
// are in kernels.def. Tests, fuzz targets, benchmarks and `tavu bench` iterate over it.
#ifndef TAVU_KERNEL_TABLE_KERNELS_H
#define TAVU_KERNEL_TABLE_KERNELS_H

#include <cstdint>
#include <functional>
#include <vector>

#include "tavu.h"
#include "variants.h"

using CscVariant = Variant<tavu_fn_csc_t>;

struct CscKernel {
    const char *name;
    tavu_fn_csc_t model;
    std::vector<CscVariant> variants;
    int src_planes;
    int src_step;                // bytes from pixel to pixel: 1, or those of a packed source, whose
                                 // channels are the planes
    std::vector<int> dst_bytes;  // per pixel, of each target plane
    std::vector<int32_t> codes;  // target codes that differ in effect
    bool resizes = false;
};

std::vector<CscKernel> csc_kernels();
std::vector<CscKernel> csc_rsz_kernels();

struct ResizeVariant {
    const char *level;
    tavu_irsz_full_t *full;
    tavu_irsz_line_t *line;
    tavu_irsz_fn driver;  // null in models
};

struct ResizeKernel {
    const char *name;
    int32_t format;
    int src_bytes, dst_bytes;  // per pixel
    int line_unit;             // bytes in which line sizes are counted
    ResizeVariant model;
    std::vector<ResizeVariant> variants;
};

std::vector<ResizeKernel> resize_kernels();

// A routine on blocks: of that size alone, or the size to time it on.
template <class Routine>
struct BlockKernel {
    const char *name;
    int32_t width, height;
    Routine model;
    std::vector<Variant<Routine>> variants;
};

// A size that a metric takes, and the columns and rows of the blocks that it reads.
struct Area {
    int32_t width, height, columns, rows;
};

struct AreaKernel : BlockKernel<tavu_metric_area_t *> {
    Area (*fit)(int32_t width, int32_t height);  // the nearest size up that the metric takes
};

using EarlySkip = decltype(tavu_sad_eskip);
using DiffArea = decltype(tavu_diff);
using Hadamard = decltype(tavu_hadamard4x4);
using Fill = std::function<void(void *dst, int32_t bytes)>;

std::vector<BlockKernel<tavu_metric_block_t *>> block_kernels();
std::vector<AreaKernel> area_kernels();
std::vector<BlockKernel<EarlySkip *>> early_skip_kernels();
std::vector<BlockKernel<tavu_diff_block_t *>> diff_block_kernels();
std::vector<BlockKernel<DiffArea *>> diff_area_kernels();
std::vector<BlockKernel<Hadamard *>> hadamard_kernels();
std::vector<BlockKernel<Fill>> fill_kernels();  // width: bytes, in one row

// Columns that a metric may read for as many of a block.
inline int32_t readable_columns(int32_t columns) { return columns == 4 ? 8 : columns; }

#endif
