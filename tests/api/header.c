#include "tavu.h"

tavu_fn_csc_t header_is_c99(void);
tavu_fn_csc_t header_is_c99(void) { return tavu_csc_yuv444_to_rgb888; }
