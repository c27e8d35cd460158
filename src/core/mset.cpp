// Fills with a granularity of their own each; callers rely on how every remainder is treated.
#include <cstring>

#include "tavu.h"

namespace tavu {
namespace {

// Whole blocks, each of Bytes bytes; the address behind them.
template <size_t Bytes>
uint8_t *fill_blocks(void *dst, uint32_t value, int32_t blocks) {
    uint8_t pattern[Bytes];
    for (size_t i = 0; i < Bytes; i += 4) memcpy(pattern + i, &value, 4);
    auto *out = static_cast<uint8_t *>(dst);
    for (; blocks > 0; blocks--, out += Bytes) memcpy(out, pattern, Bytes);
    return out;
}

// A byte, nothing for sizes below 1.
void fill_bytes(void *dst, uint8_t value, int32_t size) {
    if (size > 0) memset(dst, value, static_cast<size_t>(size));
}

// The largest multiple of a power of two that is not above `size`.
int32_t whole(int32_t size, int32_t block) { return size & -block; }

}  // namespace
}  // namespace tavu

using namespace tavu;

void tavu_mset_x128(void *dst, uint32_t value, int32_t size) {
    // Not (size + 127) / 128, which overflows.
    fill_blocks<128>(dst, value, size < 1 ? 1 : ((size - 1) >> 7) + 1);
}

void tavu_mset_x64(void *dst, uint8_t value, int32_t size) {
    fill_bytes(dst, value, whole(size, 128));
}

void tavu_mset_x64a(void *dst, int32_t value, int32_t size) {
    fill_bytes(dst, static_cast<uint8_t>(value), size);
}

void tavu_mset_x32(void *dst, uint32_t value, int32_t size) {
    fill_blocks<32>(dst, value, size >> 5);
}

void tavu_mset_x32ax4(void *dst, uint32_t value, int32_t size) {
    if (size < 32) return;
    uint8_t *rest = fill_blocks<32>(dst, value, size >> 5);
    // The low byte, not the pattern.
    fill_bytes(rest, static_cast<uint8_t>(value), size & 31);
}

void tavu_mclr_x64(void *dst, int32_t words) {
    if (words > 0) memset(dst, 0, static_cast<size_t>(whole(words, 64)) * 4);
}
