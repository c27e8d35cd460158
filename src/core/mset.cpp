// Fills with a 32-bit value or a byte. Each has its own granularity; callers rely on how every
// remainder is treated.
#include <cstddef>
#include <cstring>

#include "simd/kernel.h"
#include "simd/vec.h"
#include "tavu.h"

namespace tavu {
namespace {

#if TAVU_VEC
using Pattern = U8;
Pattern repeat(uint32_t value) {
    using Words = uint32_t __attribute__((vector_size(LANES)));
    return reinterpret_cast<Pattern>(Words{} + value);
}
#else
using Pattern = uint32_t;
Pattern repeat(uint32_t value) { return value; }
void store_next(uint8_t *&p, Pattern v) {
    memcpy(p, &v, sizeof v);
    p += sizeof v;
}
#endif

// Stores the pattern `Registers` times at p; returns the address after the last store.
template <int Registers>
uint8_t *store_pattern(uint8_t *p, Pattern pattern) {
#pragma GCC unroll 8
    for (int i = 0; i < Registers; i++) store_next(p, pattern);
    return p;
}

constexpr uint32_t word_of(uint8_t byte) { return byte * 0x01010101U; }

// `bytes` is a multiple of 32. A store within one cache line costs half of one across two, so all
// stores except the first and the last are aligned if the phase of the pattern allows it.
void fill(uint8_t *dst, uint32_t value, size_t bytes) {
    constexpr int AT_ONCE = 128 / sizeof(Pattern);
    constexpr size_t CACHE = 1 << 19;  // above this size the C library's memset is faster
    const bool single_byte = value == word_of(static_cast<uint8_t>(value));
    if (single_byte && bytes > CACHE) {
        memset(dst, static_cast<uint8_t>(value), bytes);
        return;
    }
    const Pattern pattern = repeat(value);
    uint8_t *const end = dst + bytes;
    if (bytes < 128) {
        while (dst < end) dst = store_pattern<32 / sizeof(Pattern)>(dst, pattern);
        return;
    }
    const auto at = reinterpret_cast<uintptr_t>(dst);
    dst = store_pattern<1>(dst, pattern);
    if (single_byte || at % sizeof value == 0) dst -= at % sizeof pattern;
    while (end - dst > 128) dst = store_pattern<AT_ONCE>(dst, pattern);
    while (end - dst > static_cast<ptrdiff_t>(sizeof pattern)) dst = store_pattern<1>(dst, pattern);
    store_pattern<1>(end - sizeof pattern, pattern);
}

// The largest multiple of `block`, a power of two, that does not exceed `size`.
int32_t round_down(int32_t size, int32_t block) { return size & -block; }

void fill_blocks(void *dst, uint32_t value, int32_t size, int32_t block) {
    if (size >= block) {
        fill(static_cast<uint8_t *>(dst), value, static_cast<size_t>(round_down(size, block)));
    }
}

// The remainder after the last whole 32 bytes gets the low byte, not the pattern.
void fill_all(void *dst, uint32_t value, int32_t size) {
    fill_blocks(dst, value, size, 32);
    if (size > 0) {
        const auto rest = static_cast<size_t>(size) % 32;
        memset(static_cast<uint8_t *>(dst) + size - rest, static_cast<uint8_t>(value), rest);
    }
}

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_KERNEL(void, tavu_mset_x128, (void *dst, uint32_t value, int32_t size)) {
    const size_t more = size < 1 ? 0 : static_cast<size_t>(size - 1) / 128 * 128;
    fill(static_cast<uint8_t *>(dst), value, 128 + more);
}

TAVU_KERNEL(void, tavu_mset_x32, (void *dst, uint32_t value, int32_t size)) {
    fill_blocks(dst, value, size, 32);
}

TAVU_KERNEL(void, tavu_mset_x32ax4, (void *dst, uint32_t value, int32_t size)) {
    if (size >= 32) fill_all(dst, value, size);
}

TAVU_KERNEL(void, tavu_mset_x64, (void *dst, uint8_t value, int32_t size)) {
    fill_blocks(dst, word_of(value), size, 128);
}

TAVU_KERNEL(void, tavu_mset_x64a, (void *dst, int32_t value, int32_t size)) {
    fill_all(dst, word_of(static_cast<uint8_t>(value)), size);
}

TAVU_KERNEL(void, tavu_mclr_x64, (void *dst, int32_t words)) {
    if (words >= 64)
        fill(static_cast<uint8_t *>(dst), 0, static_cast<size_t>(round_down(words, 64)) * 4);
}
