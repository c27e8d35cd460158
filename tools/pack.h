#ifndef TAVU_TOOLS_PACK_H
#define TAVU_TOOLS_PACK_H

#include <vector>

#include "layouts.h"
#include "planes.h"

/**
 * Converts to a layout with the library's routines, rows and planes without gaps. To another size
 * than that of the planes one of the combined routines is taken; throws UsageError without one.
 */
std::vector<uint8_t> pack(const Planes &planes, const PixelLayout &to, int width, int height);

#endif
