#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/** Writes packed R, G, B pixels; the file appears whole or not at all. Throws WholeError. */
void write_png(const std::string &path, const uint8_t *rgb, int width, int height, size_t stride);
