#pragma once

#include "handles.h"

/** Scales a full-range 4:2:0 picture and converts it to packed R, G, B, with the library. */
ImagePtr make_thumbnail(const tavu_imgb_t &picture, int width, int height);
