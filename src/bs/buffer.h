// The buffer of the bit reader and writer; both keep `beg`, `cur`, and `end`, the last byte.
#ifndef TAVU_BS_BUFFER_H
#define TAVU_BS_BUFFER_H

#include <cstdint>
#include <cstring>

// Kept out of line so that the common path saves no registers.
#define TAVU_RARE __attribute__((noinline))

namespace tavu {
namespace {

constexpr int32_t CACHE_BYTES = 4;

// Sets the buffer. The arithmetic uses integers because an empty buffer may be null.
template <class Bs, class Byte>
void set_buffer(Bs *bs, Byte *buf, int32_t size) {
    const uintptr_t last = reinterpret_cast<uintptr_t>(buf) + static_cast<uintptr_t>(size) - 1;
    bs->size = size;
    bs->beg = buf;
    bs->cur = buf;
    bs->end = reinterpret_cast<Byte *>(last);  // NOLINT
}

// Number of bytes from the current one to the last.
template <class Bs>
intptr_t remaining(const Bs *bs) {
    return static_cast<intptr_t>(reinterpret_cast<uintptr_t>(bs->end) + 1 -
                                 reinterpret_cast<uintptr_t>(bs->cur));
}

// Converts a word between native and big-endian byte order.
inline uint32_t big_endian(uint32_t word) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    word = __builtin_bswap32(word);
#endif
    return word;
}

inline uint32_t load_word(const uint8_t *p) {
    uint32_t word;
    memcpy(&word, p, sizeof word);
    return big_endian(word);
}

inline void store_word(uint8_t *p, uint32_t word) {
    word = big_endian(word);
    memcpy(p, &word, sizeof word);
}

}  // namespace
}  // namespace tavu

#endif
