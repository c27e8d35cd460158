// Fills with a byte. Each has a granularity of its own; callers rely on how every remainder is treated.
#include <cstring>

#include "tavu.h"

namespace {

// A byte, nothing for sizes below 1.
void fill_bytes(void *dst, uint8_t value, int32_t size) {
    if (size > 0) memset(dst, value, static_cast<size_t>(size));
}

// The largest multiple of a power of two that is not above `size`.
int32_t whole(int32_t size, int32_t block) { return size & -block; }

}  // namespace

void tavu_mset_x64(void *dst, uint8_t value, int32_t size) {
    fill_bytes(dst, value, whole(size, 128));
}

void tavu_mset_x64a(void *dst, int32_t value, int32_t size) {
    fill_bytes(dst, static_cast<uint8_t>(value), size);
}

void tavu_mclr_x64(void *dst, int32_t words) {
    if (words > 0) memset(dst, 0, static_cast<size_t>(whole(words, 64)) * 4);
}
