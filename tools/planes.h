#ifndef TAVU_TOOLS_PLANES_H
#define TAVU_TOOLS_PLANES_H

#include "handles.h"

/** Four planes of one size: R, G, B or full-range BT.601 Y, U, V, and alpha. */
struct Planes {
    ImagePtr image;
    bool rgb = false;
    bool alpha = false;  ///< false: the alpha plane is all 255

    /** Colour-space code of the planes, with or without alpha. */
    int32_t code(bool with_alpha) const;
};

/** The samples of a frame; chroma is enlarged to full size with the library's resizer. */
Planes read_planes(const AVFrame &frame);

Planes resize(const Planes &planes, int width, int height);

#endif
