#ifndef TAVU_TOOLS_PACK_H
#define TAVU_TOOLS_PACK_H

#include <vector>

#include "layouts.h"
#include "planes.h"

/**
 * Converts to a layout with the library's routines, without gaps between rows or planes. Uses a
 * combined routine if the size differs from that of the planes; throws UsageError if there is none.
 */
std::vector<uint8_t> pack(const Planes &planes, const PixelLayout &to, int width, int height);

#endif
