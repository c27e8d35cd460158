#ifndef TAVU_TOOLS_PNG_FILE_H
#define TAVU_TOOLS_PNG_FILE_H

#include <cstddef>
#include <cstdint>

#include "output_file.h"

/** Whether pixels of a layout can be written: true for packed layouts with 8 bits per channel. */
bool png_takes(int32_t cs);

/** Writes packed pixels of a layout, and commits the file. Throws WholeError. */
void write_png(OutputFile &file, int32_t cs, const uint8_t *pixels, int width, int height,
               size_t stride);

#endif
