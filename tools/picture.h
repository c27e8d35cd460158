/** Decoded frames as image buffers. */
#ifndef TAVU_TOOLS_PICTURE_H
#define TAVU_TOOLS_PICTURE_H

#include "handles.h"

/** Throws if it cannot be created. */
ImagePtr make_image(int width, int height, int cs);

constexpr int NO_LAYOUT = -1;

/** Colour-space code of a pixel format's layout, or NO_LAYOUT. */
int layout_code(int format);

/** The plain format for one whose name implies full range; the range is kept separately. */
AVPixelFormat plain_format(int format);

/** True for luma alone or with alpha, of 8 bits or more. */
bool is_grey(const AVFrame &frame);

bool is_full_range(const AVFrame &frame);

/** True if the frame has a plane of 8-bit luma, whatever its chroma. */
bool has_luma_plane(const AVFrame &frame);

/** The frame's samples unchanged; throws for pixel formats without a matching layout. */
ImagePtr copy_frame(const AVFrame &frame);

/**
 * Converts the frame to a planar format; YUV becomes full-range BT.601, from which the library
 * converts.
 */
void convert_frame(const AVFrame &frame, AVPixelFormat format, uint8_t *const planes[4],
                   const int strides[4]);

/** Reads a grey frame: full-range luma, neutral chroma, alpha if frame and image have it. */
void read_grey(const AVFrame &frame, const tavu_imgb_t &to);

/** The frame as full-range BT.601 4:2:0. */
ImagePtr to_full_range_420(const AVFrame &frame);

#endif
