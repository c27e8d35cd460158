/** The size limit of pictures in memory. */
#ifndef TAVU_TOOLS_LIMITS_H
#define TAVU_TOOLS_LIMITS_H

#include <cstdint>
#include <string>

constexpr int64_t MOST_PIXELS = int64_t{1} << 27;

/** Empty if a picture of this size is allowed, else a sentence with its memory and the limit. */
std::string too_large(int64_t width, int64_t height);

/** Throws if a picture of this size is too large. */
void check_pixels(int64_t width, int64_t height);

#endif
