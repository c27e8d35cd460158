#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavu.h"

/**
 * Writes a packed R, G, B picture as a PNG file, each 8x8 block tinted by its value, and under it
 * the scale. Blocks of value 0 stay as they are. Throws WholeError.
 */
void write_heat_map(const std::string &path, std::vector<uint8_t> pixels, int width, int height,
                    const std::vector<int32_t> &blocks);
