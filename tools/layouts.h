/** The layouts of pixels that the program names. */
#ifndef TAVU_TOOLS_LAYOUTS_H
#define TAVU_TOOLS_LAYOUTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tavu.h"

struct PixelLayout {
    const char *name;
    int32_t cs;
    /** One pixel in memory order: A is alpha, | parts planes. Null for what cannot be written. */
    const char *drawing;
    int bytes;               ///< of one pixel, all planes together
    const char *raw_format;  ///< FFmpeg's name, or null for what cannot be read from raw files
};

/** The layout of a name or a number; null if there is none. */
const PixelLayout *find_layout(const std::string &text);

/** The layout of a code; null if there is none. */
const PixelLayout *find_layout(int32_t cs);

/** Names of the layouts for which `test` holds. */
std::vector<std::string> layout_names(bool (*test)(const PixelLayout &));

#endif
