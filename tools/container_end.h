#ifndef TAVU_TOOLS_CONTAINER_END_H
#define TAVU_TOOLS_CONTAINER_END_H

#include <cstdint>
#include <string>

#include "input_file.h"

/**
 * The end of a file according to the lengths of its outermost elements; `format` is FFmpeg's name
 * of the container. Without such lengths it does not exceed the file's size. An end past that size
 * means that the file is truncated, which demuxers of these containers treat as a regular end.
 */
int64_t stated_end(const InputFile &file, const std::string &format);

#endif
