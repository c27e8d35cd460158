// Arguments of one call of a kernel on two blocks, whatever it takes of them.
#ifndef TAVU_KERNEL_TABLE_BLOCK_CALL_H
#define TAVU_KERNEL_TABLE_BLOCK_CALL_H

#include "kernels.h"

struct BlockCall {
    const uint8_t *a, *b;
    int32_t stride_a, stride_b, width, height;
    int32_t threshold = INT32_MAX;  // of early skip
    int32_t stride_diff = 0;        // of residuals
    int16_t *diff = nullptr;

    int32_t run(tavu_metric_block_t *metric) const { return metric(a, b, stride_a, stride_b); }
    int32_t run(tavu_metric_area_t *metric) const {
        return metric(width, height, a, b, stride_a, stride_b);
    }
    int32_t run(EarlySkip *metric) const {
        return metric(width, height, a, b, stride_a, stride_b, threshold);
    }
    void run(tavu_diff_block_t *residual) const {
        residual(a, b, stride_a, stride_b, stride_diff, diff);
    }
    void run(DiffArea *residual) const {
        residual(width, height, a, b, stride_a, stride_b, stride_diff, diff);
    }
};

#endif
