#include "limits.h"

#include <cmath>
#include <cstdio>
#include <stdexcept>

std::string too_large(int64_t width, int64_t height) {
    // Four buffers of 4 bytes per pixel: decoded, packed, planar, and as written.
    constexpr int BYTES_PER_PIXEL = 16;
    if (width * height <= MOST_PIXELS) return "";
    char text[160];
    const double gigabytes = static_cast<double>(width * height) * BYTES_PER_PIXEL / 1e9;
    std::snprintf(text, sizeof text,
                  "a picture of %lldx%lld takes about %.1f GB of memory; the limit is %lld pixels",
                  static_cast<long long>(width), static_cast<long long>(height), gigabytes,
                  static_cast<long long>(MOST_PIXELS));
    return text;
}

void check_pixels(int64_t width, int64_t height) {
    const std::string reason = too_large(width, height);
    if (!reason.empty()) throw std::runtime_error(reason);
}
