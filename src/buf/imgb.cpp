#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "buf/imgb_geometry.h"
#include "buf/payload.h"
#include "buf/refcount.h"

namespace tavu {
namespace {

void free_imgb(tavu_imgb_t *imgb) {
    free_payload(imgb->base[0], imgb->pbase[0], imgb->mem_free);
    free(imgb);
}

// Zeroes `bytes` bytes of each of `rows` rows, the first at `offset`, which may be out of bounds if
// there is nothing to zero.
void clear_rows(uint8_t *at, ptrdiff_t offset, int32_t rows, int32_t stride, int32_t bytes) {
    if (bytes <= 0 || rows <= 0) return;
    at += offset;
    for (; rows > 0; rows--, at += stride) memset(at, 0, static_cast<size_t>(bytes));
}

void clear_align(uint8_t *addr, int32_t stride, int32_t w, int32_t h, int32_t aw, int32_t ah,
                 int32_t bytes) {
    clear_rows(addr, static_cast<ptrdiff_t>(w) * bytes, h, stride, (aw - w) * bytes);
    // `aw` bytes even if a pixel has more; callers rely on it.
    clear_rows(addr, static_cast<ptrdiff_t>(h) * stride, ah - h, stride, aw);
}

void clear_pad(uint8_t *base, int32_t stride, int32_t aw, int32_t ah, uint32_t pad) {
    if (pad == 0) return;
    const auto rows = static_cast<int32_t>(pad & 0xFFFF);
    // Taken as bytes even if a pixel has more; callers rely on it.
    const auto bytes = static_cast<int32_t>(pad >> 16);
    const ptrdiff_t above = static_cast<ptrdiff_t>(rows) * stride;
    clear_rows(base, 0, rows, stride, stride);
    clear_rows(base, above + static_cast<ptrdiff_t>(ah) * stride, rows, stride, stride);
    clear_rows(base, above, ah, stride, bytes);
    clear_rows(base, above + bytes + aw, ah, stride, bytes);
}

int32_t apply_options(tavu_imgb_t *imgb, int32_t opt, int32_t planes, const int32_t *w,
                      const int32_t *h, const int32_t *aw, const int32_t *ah, const uint32_t *pad,
                      const uint32_t *unit) {
    for (int32_t p = 0; p < planes; p++) {
        if (opt & TAVU_IMGB_OPT_CLEAR_ALIGN) {
            clear_align(imgb->addr[p], imgb->stride[p], w[p], h[p], aw[p], ah[p],
                        static_cast<int32_t>(unit[p] >> 16));
        }
        if (opt & TAVU_IMGB_OPT_CLEAR_PAD) {
            clear_pad(imgb->base[p], imgb->stride[p], aw[p], ah[p], pad != nullptr ? pad[p] : 0);
        }
    }
    return TAVU_OK;
}

void apply_options(tavu_imgb_t *imgb, int32_t opt, const Geometry &g) {
    if (opt != 0) apply_options(imgb, opt, g.planes, g.w, g.h, g.aw, g.ah, g.pad, g.unit);
}

// Fills a zeroed record and allocates its payload; returns a status code.
int32_t init_imgb(tavu_imgb_t *imgb, int32_t w, int32_t h, int32_t cs, int32_t opt,
                  const uint32_t *align, const uint32_t *pad) {
    Geometry geometry{};
    const int32_t status = measure(imgb, &geometry, w, h, cs, align, pad);
    if (status != TAVU_OK) return status;
    uint32_t second = 0;
    void *payload = imgb->mem_alloc(geometry.size, &second);
    if (payload == nullptr) return TAVU_ERR_BUFFER_ALLOC;
    imgb->size = geometry.size;
    lay_out(imgb, geometry, static_cast<uint8_t *>(payload), second);
    apply_options(imgb, opt, geometry);
    return TAVU_OK;
}

// Copies the picture fields of `scratch`; payload, callbacks and count are kept.
void copy_picture(tavu_imgb_t *imgb, const tavu_imgb_t &scratch) {
    imgb->w = scratch.w;
    imgb->h = scratch.h;
    imgb->x = scratch.x;
    imgb->y = scratch.y;
    imgb->cs = scratch.cs;
    imgb->aw = scratch.aw;
    imgb->ah = scratch.ah;
    memcpy(imgb->stride, scratch.stride, sizeof imgb->stride);
    memcpy(imgb->rows, scratch.rows, sizeof imgb->rows);
    memcpy(imgb->addr, scratch.addr, sizeof imgb->addr);
    memcpy(imgb->paddr, scratch.paddr, sizeof imgb->paddr);
    memcpy(imgb->base, scratch.base, sizeof imgb->base);
    memcpy(imgb->pbase, scratch.pbase, sizeof imgb->pbase);
}

int32_t rebirth(tavu_imgb_t *imgb, int32_t w, int32_t h, int32_t cs, int32_t opt,
                const uint32_t *align, const uint32_t *pad) {
    tavu_imgb_t scratch{};
    Geometry geometry{};
    const int32_t status = measure(&scratch, &geometry, w, h, cs, align, pad);
    if (status != TAVU_OK) return status;
    if (imgb->size < geometry.size) return TAVU_ERR_OUT_OF_MEMORY;
    lay_out(&scratch, geometry, imgb->base[0], imgb->pbase[0]);
    apply_options(&scratch, opt, geometry);
    copy_picture(imgb, scratch);
    return TAVU_OK;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_imgb_t *tavu_imgb_create(int32_t w, int32_t h, int32_t cs, int32_t opt, const uint32_t *align,
                              const uint32_t *pad, tavu_imgb_alloc_fn mem_alloc,
                              tavu_imgb_free_fn mem_free, int32_t *status) {
    return create_counted<tavu_imgb_t, free_imgb>(status, [=](tavu_imgb_t *imgb) -> int32_t {
        if (mem_alloc != nullptr && mem_free == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
        imgb->mem_alloc = mem_alloc != nullptr ? mem_alloc : aligned_payload;
        imgb->mem_free = mem_alloc != nullptr ? mem_free : free_aligned_payload;
        return init_imgb(imgb, w, h, cs, opt, align, pad);
    });
}

int32_t tavu_imgb_rebirth(tavu_imgb_t *imgb, int32_t w, int32_t h, int32_t cs, int32_t opt,
                          const uint32_t *align, const uint32_t *pad) {
    if (imgb == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    imgb->addref(imgb);
    const int32_t status = rebirth(imgb, w, h, cs, opt, align, pad);
    imgb->release(imgb);
    return status;
}

int32_t tavu_imgb_option(tavu_imgb_t *imgb, int32_t opt, int32_t planes, const int32_t *w,
                         const int32_t *h, const int32_t *aw, const int32_t *ah,
                         const uint32_t *pad, const uint32_t *unit) {
    if (imgb == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    return apply_options(imgb, opt, planes, w, h, aw, ah, pad, unit);
}
