// Border expansion: every sample of the padding becomes the nearest sample of the picture.
#include <cstddef>
#include <cstring>

#include "core/inline_copy.h"
#include "tavu.h"

namespace tavu {
namespace {

// With a constant width each row is a few stores.
template <int Width>
void repeat_column(const uint8_t *src, uint8_t *dst, int32_t rows, int32_t stride) {
#pragma GCC unroll 2
    for (; rows > 0; rows--, src += stride, dst += stride) fill_inline<Width>(dst, *src);
}

// Writes `width` copies of the byte at src in each row.
void repeat_column(const uint8_t *src, uint8_t *dst, int32_t rows, int32_t stride, int32_t width) {
    switch (width) {
        case 8: return repeat_column<8>(src, dst, rows, stride);
        case 16: return repeat_column<16>(src, dst, rows, stride);
        case 24: return repeat_column<24>(src, dst, rows, stride);
        case 32: return repeat_column<32>(src, dst, rows, stride);
        case 40: return repeat_column<40>(src, dst, rows, stride);
        case 80: return repeat_column<80>(src, dst, rows, stride);
        default: break;
    }
    if (width < 1) return;
    for (; rows > 0; rows--, src += stride, dst += stride) {
        memset(dst, *src, static_cast<size_t>(width));
    }
}

void repeat_row(const uint8_t *src, uint8_t *dst, int32_t len, int32_t rows) {
    if (len < 1) return;
    for (; rows > 0; rows--, dst += len) memcpy(dst, src, static_cast<size_t>(len));
}

void expand_plane(uint8_t *addr, int32_t stride, int32_t w, int32_t h, uint32_t pad) {
    const auto width = static_cast<int32_t>(pad >> 16), rows = static_cast<int32_t>(pad & 0xFFFF);
    if (w < 1 || h < 1) return;
    // The left strip starts `rows` bytes before the picture, not `width`; callers rely on it.
    repeat_column(addr, addr - rows, h, stride, width);
    repeat_column(addr + w - 1, addr + w, h, stride, width);
    uint8_t *first = addr - width;
    uint8_t *last = first + static_cast<ptrdiff_t>(h - 1) * stride;
    repeat_row(first, first - static_cast<ptrdiff_t>(rows) * stride, stride, rows);
    repeat_row(last, last + stride, stride, rows);
}

// n / 2, rounded up without overflow.
int32_t half_up(int32_t n) { return n / 2 + n % 2; }

// Number of planes to expand; 0 for unsupported layouts.
int count_planes(int32_t cs) {
    switch (cs) {
        case TAVU_CS_YUV400: return 1;
        case TAVU_CS_YUV420:
        case TAVU_CS_YUV422:
        case TAVU_CS_YUV444:
        case TAVU_CS_YUV440: return 3;
        default: return 0;
    }
}

}  // namespace
}  // namespace tavu

using namespace tavu;

int32_t tavu_imgb_expand(tavu_imgb_t *imgb, const uint32_t *pad) {
    if (imgb == nullptr || pad == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    const int planes = count_planes(imgb->cs);
    if (planes == 0) return TAVU_ERR_UNSUPPORTED;
    for (int p = 0; p < planes; p++) {
        // Chroma is treated as 4:2:0 in every layout; callers rely on it.
        const int32_t w = p == 0 ? imgb->aw : half_up(imgb->aw);
        const int32_t h = p == 0 ? imgb->ah : half_up(imgb->ah);
        expand_plane(imgb->addr[p], imgb->stride[p], w, h, pad[p]);
    }
    return TAVU_OK;
}

void tavu_imgb_expand_ver(const uint8_t *src, uint8_t *dst, int32_t rows, int32_t stride,
                          int32_t width) {
    repeat_column(src, dst, rows, stride, width);
}

void tavu_imgb_expand_hor(const uint8_t *src, uint8_t *dst, int32_t len, int32_t rows) {
    // Columns of 8 and 4 bytes are written 8 rows at a time; callers rely on it.
    if (len % 16 != 0 && len % 4 == 0 && rows > 0) rows = (rows + 7) & ~7;
    repeat_row(src, dst, len, rows);
}
