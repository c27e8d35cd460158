#ifndef TAVU_BENCH_CSC_MODEL_H
#define TAVU_BENCH_CSC_MODEL_H

#include "imgp/csc.h"

// A model as an exported routine: its function on the record of arguments.
template <void (*Convert)(const tavu::Csc &)>
void csc_model(uint8_t *const src[4], int32_t src_w, int32_t src_h, const int32_t src_stride[4],
               int32_t, uint8_t *const dst[4], int32_t dst_w, int32_t dst_h,
               const int32_t dst_stride[4], int32_t dst_cs) {
    Convert({src, src_w, src_h, src_stride, dst, dst_w, dst_h, dst_stride, dst_cs});
}

#endif
