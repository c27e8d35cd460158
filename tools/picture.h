/** Decoded frames as image buffers. */
#pragma once

#include "handles.h"

/** Throws when it cannot be made. */
ImagePtr make_image(int width, int height, int cs);

/** The frame's samples as they are; throws for pixel formats without a matching layout. */
ImagePtr copy_frame(const AVFrame &frame);

/** The frame as 4:2:0 in the full-range BT.601 form that the library converts from. */
ImagePtr to_full_range_420(const AVFrame &frame);
