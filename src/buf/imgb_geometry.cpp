#include "buf/imgb_geometry.h"

namespace tavu {
namespace {

struct Layout {
    int planes;
    int bytes;                     // per pixel
    bool half_width, half_height;  // of planes 1 and up
};

bool find_layout(int32_t cs, Layout *layout) {
    switch (cs) {
        case TAVU_CS_YUV400: *layout = {1, 1, false, false}; return true;
        case TAVU_CS_YUV420: *layout = {3, 1, true, true}; return true;
        case TAVU_CS_YUV422: *layout = {3, 1, true, false}; return true;
        case TAVU_CS_YUV444: *layout = {3, 1, false, false}; return true;
        case TAVU_CS_YUV440: *layout = {3, 1, false, true}; return true;
        case TAVU_CS_YUV444A8: *layout = {4, 1, false, false}; return true;
        default: break;
    }
    if (cs < 100 || cs > 599) return false;
    // 300..399 take 4 bytes like 500..599; callers rely on it.
    constexpr int BYTES[] = {2, 2, 4, 3, 4};
    *layout = {1, BYTES[cs / 100 - 1], false, false};
    return true;
}

int64_t halve_if(bool half, int64_t n) { return half ? (n + 1) >> 1 : n; }

bool is_power_of_two(uint32_t n) { return n != 0 && (n & (n - 1)) == 0; }

// The result is at most 2^31 + 2^15, so a stride with 4 bytes per pixel fits in 64 bits.
int64_t align_up(int64_t n, uint32_t alignment) {
    return (n + alignment - 1) & ~(static_cast<int64_t>(alignment) - 1);
}

}  // namespace

int32_t measure(tavu_imgb_t *imgb, Geometry *geometry, int32_t w, int32_t h, int32_t cs,
                const uint32_t *align, const uint32_t *pad) {
    imgb->cs = cs;
    imgb->w = w;
    imgb->h = h;
    Layout layout;
    if (!find_layout(cs, &layout)) return TAVU_ERR_UNSUPPORTED_CS;
    if (w < 0 || h < 0) return TAVU_ERR_INVALID_ARGUMENT;

    geometry->planes = layout.planes;
    int64_t size = 0;
    for (int p = 0; p < layout.planes; p++) {
        const uint32_t a = align != nullptr ? align[p] : (1U << 16 | 1U);
        if (!is_power_of_two(a >> 16) || !is_power_of_two(a & 0xFFFF)) {
            return TAVU_ERR_INVALID_ARGUMENT;
        }
        const int64_t pw = halve_if(p > 0 && layout.half_width, w);
        const int64_t ph = halve_if(p > 0 && layout.half_height, h);
        const int64_t aw = align_up(pw, a >> 16);
        const int64_t ah = align_up(ph, a & 0xFFFF);
        const uint32_t padding = pad != nullptr ? pad[p] : 0;
        const int64_t stride = (aw + 2 * static_cast<int64_t>(padding >> 16)) * layout.bytes;
        const int64_t rows = ah + 2 * static_cast<int64_t>(padding & 0xFFFF);
        if (stride > INT32_MAX || rows > INT32_MAX) return TAVU_ERR_INVALID_ARGUMENT;
        size += stride * rows;
        if (size > INT32_MAX) return TAVU_ERR_INVALID_ARGUMENT;

        geometry->w[p] = static_cast<int32_t>(pw);
        geometry->h[p] = static_cast<int32_t>(ph);
        geometry->aw[p] = static_cast<int32_t>(aw);
        geometry->ah[p] = static_cast<int32_t>(ah);
        geometry->pad[p] = padding;
        geometry->unit[p] = static_cast<uint32_t>(layout.bytes) << 16 | 1;
        imgb->stride[p] = static_cast<int32_t>(stride);
        imgb->rows[p] = static_cast<int32_t>(rows);
    }
    imgb->aw = geometry->aw[0];
    imgb->ah = geometry->ah[0];
    geometry->size = static_cast<int32_t>(size);
    return TAVU_OK;
}

void lay_out(tavu_imgb_t *imgb, const Geometry &geometry, uint8_t *base, uint32_t pbase) {
    for (int p = 0; p < geometry.planes; p++) {
        const uint32_t padding = geometry.pad[p];
        const auto stride = static_cast<uint32_t>(imgb->stride[p]);
        // One side's padding is at most half the plane plus half a stride, so it fits in 31 bits.
        const uint32_t offset =
            (padding & 0xFFFF) * stride + (padding >> 16) * (geometry.unit[p] >> 16);
        imgb->base[p] = base;
        imgb->addr[p] = base + offset;
        imgb->pbase[p] = pbase;
        imgb->paddr[p] = pbase != 0 ? pbase + offset : pbase;
        // `pbase` advances even from 0: later planes get their payload offset. Callers rely on it.
        const uint32_t plane_size = stride * static_cast<uint32_t>(imgb->rows[p]);
        base += plane_size;
        pbase += plane_size;
    }
}

}  // namespace tavu
