// Copies and fills of a constant number of bytes at any address: inlined, with the widest registers
// that fit. Compilers expand memcpy and memset this well only on x86-64.
#ifndef TAVU_CORE_INLINE_COPY_H
#define TAVU_CORE_INLINE_COPY_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tavu {
namespace {

// The attributes precede the "=", and the types are never template arguments: otherwise Clang
// assumes natural alignment.
using Unaligned16 __attribute__((vector_size(16), aligned(1), may_alias)) = uint8_t;
using Unaligned8 __attribute__((vector_size(8), aligned(1), may_alias)) = uint8_t;

template <size_t Bytes>
inline void copy_inline(uint8_t *dst, const uint8_t *src) {
    if constexpr (Bytes >= 16) {
        *reinterpret_cast<Unaligned16 *>(dst) = *reinterpret_cast<const Unaligned16 *>(src);
        copy_inline<Bytes - 16>(dst + 16, src + 16);
    } else if constexpr (Bytes >= 8) {
        *reinterpret_cast<Unaligned8 *>(dst) = *reinterpret_cast<const Unaligned8 *>(src);
        copy_inline<Bytes - 8>(dst + 8, src + 8);
    } else {
        memcpy(dst, src, Bytes);
    }
}

// `Bytes` is a multiple of 8.
template <size_t Bytes>
inline void fill_inline(uint8_t *dst, uint8_t value) {
    if constexpr (Bytes >= 16) {
        *reinterpret_cast<Unaligned16 *>(dst) = Unaligned16{} + value;
        fill_inline<Bytes - 16>(dst + 16, value);
    } else if constexpr (Bytes == 8 && sizeof(size_t) == 8) {
        // A general-purpose register holds all 8 bytes, which spares the vector unit.
        const uint64_t word = value * uint64_t{0x0101010101010101};
        memcpy(dst, &word, sizeof word);
    } else if constexpr (Bytes == 8) {
        *reinterpret_cast<Unaligned8 *>(dst) = Unaligned8{} + value;
    }
}

}  // namespace
}  // namespace tavu

#endif
