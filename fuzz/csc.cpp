// Compares conversions of every level, with and without resizing, with their models.
#include <vector>

#include "input.h"
#include "kernels.h"
#include "memory.h"
#include "resize_kernels.h"

namespace {

struct Call {
    const CscKernel *kernel;
    int32_t src_w, src_h, dst_w, dst_h, code;
    bool resizes;
    std::vector<Block> sources;
    uint8_t *src[4] = {};
    int32_t src_stride[4] = {}, dst_gap;

    Call(const CscKernel *k, bool resizing, Input *in)
        : kernel(k),
          src_w(in->range(1, 100)),
          src_h(in->range(1, 3)),
          dst_w(in->range(1, 100)),
          dst_h(in->range(1, 3)),
          code(in->pick(k->codes)),
          resizes(resizing),
          dst_gap(in->range(0, 5)) {
        if (!resizes) dst_w = src_w, dst_h = src_h;
        const bool interleaved = kernel->src_step > 1;
        const int32_t gap = in->range(0, 5), row = src_w * kernel->src_step;
        for (int p = 0; p < kernel->src_planes; p++) {
            // Each resized plane has its own stride.
            src_stride[p] = row + gap + (resizes ? p : 0);
            if (p == 0 || !interleaved) {
                sources.emplace_back(plane_size(src_stride[p], src_h, row));
                sources.back().fill(in);
            }
            src[p] = sources.back().data() + (interleaved ? p : 0);
        }
    }

    // Returns the targets, including the bytes between their rows.
    std::vector<Block> run(tavu_fn_csc_t routine) const {
        std::vector<Block> targets;
        uint8_t *dst[4] = {};
        int32_t dst_stride[4] = {};
        const bool third = !resizes && (code == 401 || code == 501);
        for (size_t p = 0; p < kernel->dst_bytes.size(); p++) {
            const int32_t row = dst_w * kernel->dst_bytes[p], stride = row + 2 * dst_gap;
            targets.emplace_back(plane_size(stride, dst_h, row));
            // The distance of rows of 5-6-5 pixels is twice the stride minus twice the width.
            dst_stride[p] = code == 200 && p == 0 ? stride / 2 + dst_w : stride;
            dst[third ? 2 : p] = targets.back().data();
        }
        routine(src, src_w, src_h, src_stride, 13, dst, dst_w, dst_h, dst_stride, code);
        return targets;
    }
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const auto same_size = csc_kernels(), resizing = csc_rsz_kernels();
    Input in(data, size);
    const uint8_t choice = in.byte();
    const size_t all = same_size.size() + resizing.size(), index = choice % all;
    const bool resizes = index >= same_size.size();
    const CscKernel &kernel = resizes ? resizing[index - same_size.size()] : same_size[index];
    const Call call(&kernel, resizes, &in);
    const auto wanted = call.run(kernel.model);
    const CscVariant &side = kernel.variants[choice / all % kernel.variants.size()];
    require(call.run(side.run) == wanted);
    return 0;
}
