// The scalar forms that vector kernels fall back to, compiled once for all levels.
#ifndef TAVU_IMGP_CSC_FALLBACK_H
#define TAVU_IMGP_CSC_FALLBACK_H

#include "imgp/csc.h"
#include "imgp/csc_to_565_model.h"
#include "imgp/csc_to_yuv_model.h"

namespace tavu {

// Combined conversion and resizing of the target columns from `first` on.
void convert_resize_scalar(const Csc &c, bool yuv, const PackedTarget &target, int32_t first);

void to_packed_scalar(const Csc &c, bool yuv, const PackedTarget &target, bool bgr);
void to_565_scalar(const Csc &c, bool yuv, Alpha alpha);
void yuv_row_scalar(int step, const YuvLine &at, int32_t width);

}  // namespace tavu

#endif
