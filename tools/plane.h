#ifndef TAVU_TOOLS_PLANE_H
#define TAVU_TOOLS_PLANE_H

#include <cstdint>

#include "tavu.h"

/** One plane of 8-bit samples; does not own its memory. */
struct Plane {
    uint8_t *at;
    int width, height, stride;

    bool same_size(const Plane &other) const {
        return width == other.width && height == other.height;
    }
};

/** A plane of a planar picture; the size of chroma depends on the layout. */
Plane plane_of(const tavu_imgb_t &image, int index);

/** Copies between planes of equal size. */
void copy_plane(const Plane &from, const Plane &to);

void fill_plane(const Plane &plane, uint8_t value);

/** Scales with the library's resizer. */
void scale_plane(const Plane &from, const Plane &to);

#endif
