#ifndef TAVU_TOOLS_HEAT_MAP_H
#define TAVU_TOOLS_HEAT_MAP_H

#include <cstdint>
#include <vector>

#include "output_file.h"

/**
 * Writes a packed R, G, B picture as a PNG file, each 8x8 block tinted by its value, and under it
 * the scale; pictures too narrow for its text get a dark strip beside them. Blocks of value 0 stay as they are. Throws WholeError.
 */
void write_heat_map(OutputFile &file, const std::vector<uint8_t> &pixels, int width, int height,
                    const std::vector<int32_t> &blocks);

#endif
