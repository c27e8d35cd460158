// Compares resize kernels of every level with their models, and band mode with whole images.
#include "imgp/resize_reference.h"
#include "input.h"

namespace {

// A few rows of up to 64 pixels; sometimes one axis is larger or a multiple of the other size.
Reference pick(const ResizeKernel &kernel, int32_t band, Input *in) {
    int32_t src_w = in->range(1, 64), src_h = in->range(1, 6);
    int32_t dst_w = in->range(1, 64), dst_h = in->range(1, 5);
    const int32_t src_gap = in->range(0, 3), dst_gap = in->range(0, 3);
    const uint8_t kind = in->byte();
    if (kind % 8 == 5) src_h *= 8;
    if (kind % 8 == 6) dst_h *= 6;
    if (kind % 8 == 1) src_w *= 16;
    if (kind % 8 == 2) src_w = std::min(dst_w * (kind / 8), 2000) + 1;
    if (kind % 8 == 3) src_h = std::min(dst_h * (kind / 8), 60) + 1;
    if (kind % 8 == 4) dst_w *= 8;
    Reference r(kernel, {src_w, src_h, src_gap}, {dst_w, dst_h, dst_gap}, band, kind);
    r.plane = pick_content(r.plane.size(), in);
    return r;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const auto kernels = resize_kernels();
    Input in(data, size);
    const uint8_t choice = in.byte();
    const ResizeKernel &kernel = kernels[choice % kernels.size()];
    const int32_t band = in.byte() % 4 == 0 ? 1 << in.byte() % 6 : 0;
    const Reference r = pick(kernel, band, &in);
    const Bytes wanted = resize_by(kernel.model.full, r);
    const ResizeVariant &side = kernel.variants[choice / kernels.size() % kernel.variants.size()];
    require(!wanted.empty() && resize_by(side.full, r) == wanted);
    if (band == 0) return 0;
    bool complete = false;
    const Bytes pieces = resize_by(side.driver, r, &complete);
    require(!pieces.empty() && (complete || !r.bands_suffice()));
    // To 5-6-5, bands and whole images give different bytes.
    const bool alike = kernel.line_unit == 1 && kernel.src_bytes == kernel.dst_bytes;
    require(pieces == wanted || !alike || !r.bands_suffice());
    return 0;
}
