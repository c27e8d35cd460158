// Compares block metrics of every level with their models.
#include <type_traits>
#include <vector>

#include "block_call.h"
#include "input.h"
#include "picture.h"

namespace {

// The first of `rows` rows in `memory`: the last one in memory if the stride is negative.
template <class Sample>
Sample *first_row(Sample *memory, int stride, int rows) {
    return stride < 0 ? memory - stride * (rows - 1) : memory;
}

// A block in memory of exact size; `choice` selects stride and alignment.
struct Picture {
    Picture(int columns, int rows, int choice, Input *in)
        : stride((choice / 80 % 2 ? -1 : 1) * (columns + choice % 40)),
          memory(pick_content(plane_size(std::abs(stride), rows, columns + choice % 16), in)),
          at(first_row(memory.data() + choice % 16, stride, rows)) {}

    int stride;
    Bytes memory;
    const uint8_t *at;
};

// Compares one level of a kernel with its model: the result, and the residual with its gaps in
// memory of exact size.
template <class Kernel>
void check_kernel(const Kernel &kernel, const Area &area, size_t level, Input *in,
                  uint8_t alignment = 1) {
    const Picture a(area.columns, area.rows, in->byte() / alignment * alignment, in);
    const Picture b(area.columns, area.rows, in->byte(), in);
    const int choice = in->byte(), step = area.width + choice % 21;
    const auto threshold = static_cast<int32_t>(in->word() % 200000) - 1;
    Bytes residual(plane_size(2 * step, area.rows, 2 * area.width), 0xA5), wanted = residual;
    BlockCall call{a.at,       b.at,        a.stride,  b.stride,
                   area.width, area.height, threshold, choice & 64 ? -step : step};
    const auto run = [&](auto *routine, Bytes &diff) {
        auto *samples = static_cast<int16_t *>(static_cast<void *>(diff.data()));
        call.diff = first_row(samples, call.stride_diff, area.rows);
        if constexpr (std::is_void_v<decltype(call.run(routine))>) {
            call.run(routine);
            return 0;
        } else {
            return call.run(routine);
        }
    };
    const auto &variant = kernel.variants[level % kernel.variants.size()];
    require(run(variant.run, residual) == run(kernel.model, wanted));
    require(residual == wanted);
}

template <class Kernel>
void check_block(const std::vector<Kernel> &kernels, size_t level, Input *in) {
    const Kernel &k = in->pick(kernels);
    check_kernel(k, {k.width, k.height, readable_columns(k.width), k.height}, level, in);
}

void check_area(const std::vector<AreaKernel> &kernels, size_t level, Input *in) {
    const AreaKernel &k = in->pick(kernels);
    const int height = in->range(1, 40), any = in->range(1, 80);
    Area area = k.fit(any <= 40 ? any : 4 << any % 5, height);  // often powers of 2
    area.columns = readable_columns(area.columns);
    check_kernel(k, area, level, in);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const auto blocks = block_kernels();
    static const auto areas = area_kernels();
    static const auto residuals = diff_block_kernels();
    static const auto residual = diff_area_kernels()[0];
    static const auto early_skip = early_skip_kernels()[0];
    Input in(data, size);
    const size_t choice = in.byte(), level = choice / 5;
    const int width = in.range(1, 90), height = in.range(1, 20), words = (width + 3) / 4 * 4;
    if (choice % 5 == 0) check_block(blocks, level, &in);
    if (choice % 5 == 1) check_area(areas, level, &in);
    if (choice % 5 == 2) check_block(residuals, level, &in);
    if (choice % 5 == 3) check_kernel(residual, {width, height, width, height}, level, &in);
    // `a` consists of aligned words; of `b` those that contain its rows are readable.
    if (choice % 5 == 4)
        check_kernel(early_skip, {words, height, words + 4, height}, level, &in, 4);
    return 0;
}
