// Compares conversions of every level, with and without resizing, with their models.
#include <vector>

#include "input.h"
#include "picture.h"

namespace {

struct Call {
    PicturePlanes planes;
    int32_t src_gap, dst_gap;
    std::vector<Block> sources;

    Call(const CscKernel &kernel, Input *in) : planes(sizes(kernel, in)) {
        dst_gap = in->range(0, 5);
        src_gap = in->range(0, 5);
        // Each resized plane has its own stride.
        planes.set_sources(
            src_gap,
            [&](size_t size) {
                sources.emplace_back(size);
                sources.back().fill(in);
                return sources.back().data();
            },
            kernel.resizes);
    }

    static PicturePlanes sizes(const CscKernel &kernel, Input *in) {
        const int32_t src_w = in->range(1, 100), src_h = in->range(1, 3);
        const int32_t dst_w = in->range(1, 100), dst_h = in->range(1, 3);
        return {kernel, in->pick(kernel.codes), src_w, src_h, dst_w, dst_h};
    }

    // Returns the targets, including the bytes between their rows.
    std::vector<Block> run(tavu_fn_csc_t routine) {
        std::vector<Block> targets;
        planes.set_targets(2 * dst_gap,
                           [&](size_t size) { return targets.emplace_back(size).data(); });
        planes.convert(routine);
        return targets;
    }
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const auto same_size = csc_kernels(), resizing = csc_rsz_kernels();
    Input in(data, size);
    const uint8_t choice = in.byte();
    const size_t all = same_size.size() + resizing.size(), index = choice % all;
    const CscKernel &kernel =
        index < same_size.size() ? same_size[index] : resizing[index - same_size.size()];
    Call call(kernel, &in);
    const auto wanted = call.run(kernel.model);
    const CscVariant &side = kernel.variants[choice / all % kernel.variants.size()];
    require(call.run(side.run) == wanted);
    return 0;
}
