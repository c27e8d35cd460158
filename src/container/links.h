// Links immediately followed by `size` bytes of the caller's, in one allocation.
#ifndef TAVU_CONTAINER_LINKS_H
#define TAVU_CONTAINER_LINKS_H

#include <cstdint>
#include <cstdlib>

namespace tavu {

// Returns null if out of memory or if the sum of both sizes wraps.
template <class Links>
Links *allocate_links(uint32_t size) {
    const size_t bytes = sizeof(Links) + size;
    return bytes < size ? nullptr : static_cast<Links *>(malloc(bytes));
}

}  // namespace tavu

#endif
