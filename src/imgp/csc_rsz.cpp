// Combined conversion and resizing to packed 8-bit RGB.
#include "imgp/csc_rsz_model.h"

using namespace tavu;

TAVU_CSC(tavu_csc_rsz_r8g8b8_to_rgb888, convert_resize<FromRgb, 3>)
TAVU_CSC(tavu_csc_rsz_r8g8b8_to_rgba8888, convert_resize<FromRgb, 4>)
TAVU_CSC(tavu_csc_rsz_r8g8b8a8_to_rgba8888, convert_resize<FromRgb, 4, true>)
TAVU_CSC(tavu_csc_rsz_yuv444_to_rgb888, convert_resize<FromYuv, 3>)
TAVU_CSC(tavu_csc_rsz_yuv444_to_rgba8888, convert_resize<FromYuv, 4>)
TAVU_CSC(tavu_csc_rsz_yuv444a8_to_rgba8888, convert_resize<FromYuv, 4, true>)
