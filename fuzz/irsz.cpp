// Compares resize kernels of every level with their models, and band mode with whole images.
#include "input.h"
#include "memory.h"
#include "resize_kernels.h"

namespace {

struct Sizes {
    int32_t src_w, src_h, dst_w, dst_h, src_gap, dst_gap;

    // A few rows of up to 64 pixels; sometimes one axis is larger or a multiple of the other size.
    explicit Sizes(Input *in)
        : src_w(in->range(1, 64)),
          src_h(in->range(1, 6)),
          dst_w(in->range(1, 64)),
          dst_h(in->range(1, 5)),
          src_gap(in->range(0, 3)),
          dst_gap(in->range(0, 3)) {
        const uint8_t kind = in->byte();
        if (kind % 8 == 5) src_h *= 8;
        if (kind % 8 == 6) dst_h *= 6;
        if (kind % 8 == 1) src_w *= 16;
        if (kind % 8 == 2) src_w = std::min(dst_w * (kind / 8), 2000) + 1;
        if (kind % 8 == 3) src_h = std::min(dst_h * (kind / 8), 60) + 1;
        if (kind % 8 == 4) dst_w *= 8;
    }
};

int32_t src_line(const ResizeKernel &kernel, const Sizes &s) {
    return s.src_w * kernel.src_bytes + s.src_gap * kernel.line_unit;
}

int32_t dst_line(const ResizeKernel &kernel, const Sizes &s) {
    return s.dst_w * kernel.dst_bytes + s.dst_gap * kernel.line_unit;
}

Block target(const ResizeKernel &kernel, const Sizes &s) {
    return Block(plane_size(dst_line(kernel, s), s.dst_h, s.dst_w * kernel.dst_bytes));
}

Block whole(const ResizeKernel &kernel, tavu_irsz_full_t *full, const Sizes &s, const Block &src) {
    Block dst = target(kernel, s);
    int32_t step_x, step_y;
    bilinear_rsz_step_size(s.src_w, s.src_h, s.dst_w, s.dst_h, &step_x, &step_y);
    full(src.data(), src_line(kernel, s) / kernel.line_unit, s.dst_w, s.dst_h,
         dst_line(kernel, s) / kernel.line_unit, dst.data(), step_x, step_y);
    return dst;
}

// Resizes in bands, each copied to a block of exact size. Gaps are whole pixels here.
Block banded(const ResizeKernel &kernel, int32_t fmt, const Sizes &s, const Block &src,
             int32_t band) {
    Block dst = target(kernel, s);
    const int32_t line = src_line(kernel, s);
    const int32_t src_s = line / kernel.src_bytes, dst_s = dst_line(kernel, s) / kernel.dst_bytes;
    const tavu_irsz_param param = {
        fmt,   TAVU_IRSZ_MODE_LINE, s.src_w, s.src_h, src_s, band, s.dst_w, s.dst_h,
        dst_s, dst.data()};
    int32_t err = 1;
    tavu_irsz_t *rsz = tavu_irsz_create(&param, &err);
    require(rsz != nullptr && err == TAVU_OK);
    // A band's size, including the part of its last row that may be carried. Bands that are too
    // short may read rows below the image.
    const auto size = plane_size(line, band, std::max(rsz->line_size, s.src_w * kernel.src_bytes));
    const bool enough = band >= 2 * ((s.src_h + s.dst_h - 1) / s.dst_h);
    for (int32_t row = 0; row < s.src_h; row += band) {
        const auto first = static_cast<size_t>(row) * static_cast<size_t>(line);
        const size_t stored = std::min(size, src.size() - first);
        Block copy(enough ? stored : size);
        memcpy(copy.data(), src.data() + first, stored);
        tavu_irsz(rsz, copy.data(), row, band);
    }
    require(!enough || (rsz->out_row == s.dst_h && rsz->pending == 0));
    tavu_irsz_delete(rsz);
    return dst;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const auto kernels = resize_kernels();
    constexpr int32_t FORMATS[] = {TAVU_IRSZ_8B, TAVU_IRSZ_8B8B8B, TAVU_IRSZ_8B8B8B8B,
                                   TAVU_IRSZ_8B8B8B_5B6B5B, TAVU_IRSZ_5B6B5B};
    Input in(data, size);
    const uint8_t choice = in.byte();
    const size_t index = choice % kernels.size();
    const ResizeKernel &kernel = kernels[index];
    const int32_t band = in.byte() % 4 == 0 ? 1 << in.byte() % 6 : 0;
    Sizes s(&in);
    if (band != 0) {
        s.src_gap *= kernel.src_bytes / kernel.line_unit;
        s.dst_gap *= kernel.dst_bytes / kernel.line_unit;
    }
    Block src(plane_size(src_line(kernel, s), s.src_h, s.src_w * kernel.src_bytes));
    src.fill(&in);
    const Block wanted = whole(kernel, kernel.model.full, s, src);
    const ResizeVariant &side = kernel.variants[choice / kernels.size() % kernel.variants.size()];
    require(whole(kernel, side.full, s, src) == wanted);
    if (band == 0) return 0;
    const Block pieces = banded(kernel, FORMATS[index], s, src, band);
    const bool complete = band >= 2 && band >= 2 * ((s.src_h + s.dst_h - 1) / s.dst_h);
    if (complete && index < 3) require(pieces == wanted);
    return 0;
}
