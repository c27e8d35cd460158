// Payload memory of the buffer objects.
#ifndef TAVU_BUF_PAYLOAD_H
#define TAVU_BUF_PAYLOAD_H

#include "core/alloc.h"
#include "tavu.h"

namespace tavu {

// The default callbacks of image and audio buffers; sizes are never negative.
inline void *aligned_payload(int32_t size, uint32_t *second) {
    *second = 0;
    return malloc_align32(static_cast<uint32_t>(size));
}

inline void free_aligned_payload(void *payload, uint32_t) { free_align32(payload); }

inline void free_payload(void *payload, uint32_t second, tavu_imgb_free_fn mem_free) {
    if (payload != nullptr && mem_free != nullptr) mem_free(payload, second);
}

}  // namespace tavu

#endif
