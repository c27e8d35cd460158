// The resize kernels of 5-6-5 pixels.
#include "imgp/resize.h"

TAVU_IRSZ(tavu_irsz8b8b8b_5b6b5b, ModelResize<tavu::PackFull>, ModelResize<tavu::PackLine>)
TAVU_IRSZ(tavu_irsz5b6b5b, ModelResize<tavu::Rgb565>, ModelResize<tavu::Rgb565>)
