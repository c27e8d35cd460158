// The buffer of the bit reader and writer, which both keep as `beg`, `cur` and its last byte `end`.
#ifndef TAVU_BS_BUFFER_H
#define TAVU_BS_BUFFER_H

#include <cstdint>

namespace tavu {
namespace {

// Takes over a buffer, by integers, for an empty one may be null.
template <class Bs, class Byte>
void set_buffer(Bs *bs, Byte *buf, int32_t size) {
    const uintptr_t last = reinterpret_cast<uintptr_t>(buf) + static_cast<uintptr_t>(size) - 1;
    bs->size = size;
    bs->beg = buf;
    bs->cur = buf;
    bs->end = reinterpret_cast<Byte *>(last);  // NOLINT
}

// Bytes from the current one to the last.
template <class Bs>
intptr_t remaining(const Bs *bs) {
    return static_cast<intptr_t>(reinterpret_cast<uintptr_t>(bs->end) + 1 -
                                 reinterpret_cast<uintptr_t>(bs->cur));
}

}  // namespace
}  // namespace tavu

#endif
