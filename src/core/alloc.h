// Heap blocks aligned to 32 bytes.
#ifndef TAVU_CORE_ALLOC_H
#define TAVU_CORE_ALLOC_H

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tavu {

// The pointer that malloc returned is stored immediately before the aligned block.
inline void *malloc_align32(uint32_t size) {
    constexpr uint32_t ALIGN = 32;
    constexpr uint32_t HEADER = ALIGN + sizeof(void *);
    if (size > UINT32_MAX - HEADER) return nullptr;
    void *raw = malloc(size + HEADER);
    if (raw == nullptr) return nullptr;
    const uintptr_t last = reinterpret_cast<uintptr_t>(raw) + HEADER - 1;
    char *block = static_cast<char *>(raw) + (HEADER - 1 - last % ALIGN);
    memcpy(block - sizeof raw, &raw, sizeof raw);
    return block;
}

inline void free_align32(void *block) {
    if (block == nullptr) return;
    void *raw;
    memcpy(&raw, static_cast<char *>(block) - sizeof raw, sizeof raw);
    free(raw);
}

}  // namespace tavu

#endif
