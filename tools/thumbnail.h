#ifndef TAVU_TOOLS_THUMBNAIL_H
#define TAVU_TOOLS_THUMBNAIL_H

#include "handles.h"

/** Scales a full-range 4:2:0 picture and converts it to packed R, G, B, with the library. */
ImagePtr make_thumbnail(const tavu_imgb_t &picture, int width, int height);

/** A packed R, G, B picture rotated clockwise by 0 to 3 quarter turns. */
ImagePtr turn(const tavu_imgb_t &picture, int quarters);

#endif
