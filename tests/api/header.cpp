#include "tavu.h"

// The callback types have C linkage, and the routines convert to them.
extern "C" tavu_fn_csc_t header_is_cpp17() { return tavu_csc_yuv444_to_rgb888; }
