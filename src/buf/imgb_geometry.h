// Plane geometry of a picture: sizes by colour-space code, strides, rows, addresses.
#ifndef TAVU_BUF_IMGB_GEOMETRY_H
#define TAVU_BUF_IMGB_GEOMETRY_H

#include "tavu.h"

namespace tavu {

constexpr int MAX_PLANES = 4;

// Per-plane sizes in pixels, the arguments of tavu_imgb_option().
struct Geometry {
    int32_t planes;
    int32_t w[MAX_PLANES], h[MAX_PLANES];
    int32_t aw[MAX_PLANES], ah[MAX_PLANES];
    uint32_t pad[MAX_PLANES];   // 0 without padding
    uint32_t unit[MAX_PLANES];  // bytes per pixel << 16 | 1
    int32_t size;               // payload bytes
};

// Fills `geometry` and the sizes, strides and rows of `imgb`; returns a status code.
int32_t measure(tavu_imgb_t *imgb, Geometry *geometry, int32_t w, int32_t h, int32_t cs,
                const uint32_t *align, const uint32_t *pad);

// Sets the addresses of all planes, back to back from `base` and `pbase`.
void lay_out(tavu_imgb_t *imgb, const Geometry &geometry, uint8_t *base, uint32_t pbase);

}  // namespace tavu

#endif
