#ifndef TAVU_TOOLS_HEAT_MAP_H
#define TAVU_TOOLS_HEAT_MAP_H

#include <cstdint>
#include <vector>

#include "output_file.h"

/**
 * Writes a packed R, G, B picture as a PNG file, with each 8x8 block tinted by its value and the
 * scale below. Blocks of value 0 are unchanged. Pictures narrower than the scale's caption get a
 * dark strip beside them. Throws WholeError.
 */
void write_heat_map(OutputFile &file, const std::vector<uint8_t> &pixels, int width, int height,
                    const std::vector<int32_t> &blocks);

#endif
