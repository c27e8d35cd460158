#ifndef TAVU_TOOLS_PLANE_H
#define TAVU_TOOLS_PLANE_H

#include <cstdint>

#include "tavu.h"

/** One plane of 8-bit samples in somebody's memory. */
struct Plane {
    uint8_t *at;
    int width, height, stride;

    bool same_size(const Plane &other) const {
        return width == other.width && height == other.height;
    }
};

/** A plane of a planar picture, chroma with the size that the picture's layout gives it. */
Plane plane_of(const tavu_imgb_t &image, int index);

/** Copies between planes of one size. */
void copy_plane(const Plane &from, const Plane &to);

void fill_plane(const Plane &plane, uint8_t value);

/** Scales with the library's resizer. */
void scale_plane(const Plane &from, const Plane &to);

#endif
