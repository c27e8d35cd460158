// Runs of bytes whose length the compiler knows, at any address: no call, and as few instructions
// as the processor has registers for. A compiler expands memcpy and memset as well only on x86-64.
#ifndef TAVU_CORE_CHUNK_H
#define TAVU_CORE_CHUNK_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tavu {
namespace {

// The attributes stand before the "=", and the types are never template arguments: Clang would take
// them for aligned.
using Chunk16 __attribute__((vector_size(16), aligned(1), may_alias)) = uint8_t;
using Chunk8 __attribute__((vector_size(8), aligned(1), may_alias)) = uint8_t;

template <size_t Bytes>
inline void copy_chunk(uint8_t *dst, const uint8_t *src) {
    if constexpr (Bytes >= 16) {
        *reinterpret_cast<Chunk16 *>(dst) = *reinterpret_cast<const Chunk16 *>(src);
        copy_chunk<Bytes - 16>(dst + 16, src + 16);
    } else if constexpr (Bytes >= 8) {
        *reinterpret_cast<Chunk8 *>(dst) = *reinterpret_cast<const Chunk8 *>(src);
        copy_chunk<Bytes - 8>(dst + 8, src + 8);
    } else {
        memcpy(dst, src, Bytes);
    }
}

// A multiple of 8 bytes.
template <size_t Bytes>
inline void fill_chunk(uint8_t *dst, uint8_t value) {
    if constexpr (Bytes >= 16) {
        *reinterpret_cast<Chunk16 *>(dst) = Chunk16{} + value;
        fill_chunk<Bytes - 16>(dst + 16, value);
    } else if constexpr (Bytes == 8 && sizeof(size_t) == 8) {
        // In a register of the processor's own size compilers do not need the vector unit.
        const uint64_t word = value * uint64_t{0x0101010101010101};
        memcpy(dst, &word, sizeof word);
    } else if constexpr (Bytes == 8) {
        *reinterpret_cast<Chunk8 *>(dst) = Chunk8{} + value;
    }
}

}  // namespace
}  // namespace tavu

#endif
