// Compares conversions of every level, with and without resizing, with their models.
#include <vector>

#include "input.h"
#include "picture.h"

namespace {

PicturePlanes pick_planes(const CscKernel &kernel, Input *in) {
    const int32_t src_w = in->range(1, 100), src_h = in->range(1, 3);
    const int32_t dst_w = in->range(1, 100), dst_h = in->range(1, 3);
    return {kernel, in->pick(kernel.codes), src_w, src_h, dst_w, dst_h};
}

// Returns the targets, including the bytes between their rows.
std::vector<Bytes> run(PicturePlanes *planes, int32_t dst_gap, tavu_fn_csc_t routine) {
    std::vector<Bytes> targets;
    planes->set_targets(
        dst_gap, [&](size_t size) { return targets.emplace_back(size, uint8_t{0xA5}).data(); });
    planes->convert(routine);
    return targets;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const auto same_size = csc_kernels(), resizing = csc_rsz_kernels();
    Input in(data, size);
    const uint8_t choice = in.byte();
    const size_t all = same_size.size() + resizing.size(), index = choice % all;
    const CscKernel &kernel =
        index < same_size.size() ? same_size[index] : resizing[index - same_size.size()];
    PicturePlanes planes = pick_planes(kernel, &in);
    const int32_t dst_gap = 2 * in.range(0, 5), src_gap = in.range(0, 5);
    std::vector<Bytes> sources;
    const auto allocate = [&](size_t bytes) {
        return sources.emplace_back(pick_content(bytes, &in)).data();
    };
    planes.set_sources(src_gap, allocate, kernel.resizes);  // each resized plane has its own stride
    const auto &variant = kernel.variants[choice / all % kernel.variants.size()];
    require(run(&planes, dst_gap, variant.run) == run(&planes, dst_gap, kernel.model));
    return 0;
}
