#ifndef TAVU_TOOLS_CONTAINER_END_H
#define TAVU_TOOLS_CONTAINER_END_H

#include <cstdint>
#include <string>

#include "input_file.h"

/**
 * Where the outermost elements of a file end by their own lengths, for a container of FFmpeg's name
 * `format`; no more than the file's size where nothing is stated. An end beyond that size means
 * that the file is cut short, which demuxers of these containers take for a regular end.
 */
int64_t stated_end(const InputFile &file, const std::string &format);

#endif
