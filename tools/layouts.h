/** The pixel layouts that the program supports. */
#ifndef TAVU_TOOLS_LAYOUTS_H
#define TAVU_TOOLS_LAYOUTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tavu.h"

struct PixelLayout {
    const char *name;
    int32_t cs;
    /** One pixel in memory order: A is alpha, | separates planes. Null if it cannot be written. */
    const char *drawing;
    int bytes;               ///< of one pixel, all planes together
    const char *raw_format;  ///< FFmpeg's name; null if it cannot be read from raw files
};

/** The layout with this name or number; null if there is none. */
const PixelLayout *find_layout(const std::string &text);

/** The layout with this code; null if there is none. */
const PixelLayout *find_layout(int32_t cs);

/** Names of the layouts for which `test` holds. */
std::vector<std::string> layout_names(bool (*test)(const PixelLayout &));

#endif
