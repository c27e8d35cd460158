// Copies, each with its own granularity; callers rely on how every remainder is treated.
#include <cstddef>
#include <cstring>

#include "core/inline_copy.h"
#include "tavu.h"

namespace tavu {
namespace {

struct Rows {
    uint8_t *dst;
    const uint8_t *src;
    ptrdiff_t dst_stride, src_stride;
};

void copy_rows(Rows at, int32_t width, int32_t height) {
    for (; height > 0; height--, at.dst += at.dst_stride, at.src += at.src_stride) {
        memcpy(at.dst, at.src, static_cast<size_t>(width));
    }
}

// With a constant width each row is one or two loads and stores.
template <int Width>
void copy_row(Rows &at) {
    copy_inline<Width>(at.dst, at.src);
    at.dst += at.dst_stride;
    at.src += at.src_stride;
}

template <int Width>
void copy_rows(Rows at, int32_t height) {
    for (; height > 0; height--) copy_row<Width>(at);
}

// Unrolled, for the widths of most blocks.
template <int Width>
void copy_many_rows(Rows at, int32_t height) {
#pragma GCC unroll 8
    for (; height > 0; height--) copy_row<Width>(at);
}

// Copies whole blocks of 64 bytes and one byte of the remainder. Large copies are split, because C
// libraries use a slower path above the size of a cache; splitting costs no time elsewhere.
void copy_run(Rows at, int64_t size) {
    constexpr int64_t MAX_COPY = 1 << 18;
    int64_t left = size % 64 == 0 ? size : size / 64 * 64 + 1;
    for (; left > MAX_COPY; left -= MAX_COPY, at.dst += MAX_COPY, at.src += MAX_COPY) {
        memcpy(at.dst, at.src, MAX_COPY);
    }
    memcpy(at.dst, at.src, static_cast<size_t>(left));
}

}  // namespace
}  // namespace tavu

using namespace tavu;

void tavu_mcpy_pic(void *dst, const void *src, int32_t dst_stride, int32_t src_stride,
                   int32_t width, int32_t height) {
    const Rows at{static_cast<uint8_t *>(dst), static_cast<const uint8_t *>(src), dst_stride,
                  src_stride};
    if (width == dst_stride && width == src_stride) {
        const int64_t size = static_cast<int64_t>(width) * height;
        if (width > 0 && size >= 64) copy_run(at, size);
    } else if (width >= 64) {
        copy_rows(at, width, height);
    }
}

void tavu_mcpy_blk(void *dst, const void *src, int32_t dst_stride, int32_t src_stride,
                   int32_t width, int32_t height) {
    const Rows at{static_cast<uint8_t *>(dst), static_cast<const uint8_t *>(src), dst_stride,
                  src_stride};
    if (width == 8) return copy_many_rows<8>(at, height);
    if (width == 16) return copy_many_rows<16>(at, height);
    switch (width) {
        case 2: copy_rows<2>(at, height); break;
        case 4: copy_rows<4>(at, height); break;
        case 6: copy_rows<6>(at, height); break;
        case 12: copy_rows<12>(at, height); break;
        case 24: copy_rows<24>(at, height); break;
        default: break;  // 32 and 48 also copy nothing
    }
}
