// Fills with a 32-bit value, in whole blocks.
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
void store(uint8_t *&p, Pattern v) {
    memcpy(p, &v, sizeof v);
    p += sizeof v;
}
#endif

// `Registers` of the pattern at p; the address behind them.
template <int Registers>
uint8_t *store_pattern(uint8_t *p, Pattern pattern) {
#pragma GCC unroll 8
    for (int i = 0; i < Registers; i++) store(p, pattern);
    return p;
}

// A multiple of 32 bytes. Stores within a cache line cost half of those across two, so all but the
// first and the last are aligned if the phase of the pattern allows it.
void fill(uint8_t *dst, uint32_t value, size_t bytes) {
    constexpr int AT_ONCE = 128 / sizeof(Pattern);
    const Pattern pattern = repeat(value);
    uint8_t *const end = dst + bytes;
    if (bytes < 128) {
        while (dst < end) dst = store_pattern<32 / sizeof(Pattern)>(dst, pattern);
        return;
    }
    const auto at = reinterpret_cast<uintptr_t>(dst);
    dst = store_pattern<1>(dst, pattern);
    if (at % sizeof value == 0) dst -= at % sizeof pattern;
    while (end - dst > 128) dst = store_pattern<AT_ONCE>(dst, pattern);
    store_pattern<AT_ONCE>(end - 128, pattern);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_KERNEL(void, tavu_mset_x128, (void *dst, uint32_t value, int32_t size)) {
    const size_t more = size < 1 ? 0 : static_cast<size_t>(size - 1) / 128 * 128;
    fill(static_cast<uint8_t *>(dst), value, 128 + more);
}

TAVU_KERNEL(void, tavu_mset_x32, (void *dst, uint32_t value, int32_t size)) {
    if (size >= 32) fill(static_cast<uint8_t *>(dst), value, static_cast<size_t>(size & ~31));
}

TAVU_KERNEL(void, tavu_mset_x32ax4, (void *dst, uint32_t value, int32_t size)) {
    if (size < 32) return;
    const size_t rest = static_cast<size_t>(size) % 32, whole = static_cast<size_t>(size) - rest;
    fill(static_cast<uint8_t *>(dst), value, whole);
    // The low byte, not the pattern.
    memset(static_cast<uint8_t *>(dst) + whole, static_cast<uint8_t>(value), rest);
}
