/** The difference between two pictures. */
#ifndef TAVU_TOOLS_METRICS_H
#define TAVU_TOOLS_METRICS_H

#include <cstdint>
#include <vector>

#include "handles.h"

/** Sums over a picture of 8-bit luma; `blocks` has the SATD of each 8x8 block, row by row. */
struct Difference {
    int64_t sad = 0, ssd = 0, satd = 0;
    double mse = 0;
    std::vector<int32_t> blocks;
};

/** An unset luma picture; the padding that compare_luma() reads is 0. */
ImagePtr make_luma(int width, int height);

/** Compares pictures of make_luma(), of equal size. */
Difference compare_luma(const tavu_imgb_t &a, const tavu_imgb_t &b);

/** PSNR in decibels; infinite for 0. */
double psnr(double mse);

#endif
