// Compares block metrics of every level with their models.
#include <string>
#include <vector>

#include "input.h"
#include "metric_kernels.h"

namespace {

// The first of `rows` rows in `memory`: the last one in memory if the stride is negative.
template <class Sample>
Sample *first_row(Sample *memory, int stride, int rows) {
    return stride < 0 ? memory - stride * (rows - 1) : memory;
}

// A block in memory of exact size; `choice` selects stride and alignment.
struct Picture {
    Picture(int columns, int rows, int choice)
        : stride((choice / 80 % 2 ? -1 : 1) * (columns + choice % 40)),
          memory(static_cast<size_t>((columns + choice % 40) * (rows - 1) + columns + choice % 16)),
          at(first_row(memory.data() + choice % 16, stride, rows)) {}

    int stride;
    Block memory;
    const uint8_t *at;
};

struct Pair {
    Picture a, b;

    Pair(int columns, int rows, Input *in)
        : a(columns, rows, in->byte()), b(columns, rows, in->byte()) {
        a.memory.fill(in);
        b.memory.fill(in);
    }
    template <class Metric>
    int32_t measure(Metric *metric) const {
        return metric(a.at, b.at, a.stride, b.stride);
    }
};

// Kernels of four columns may read eight.
int readable(int width) { return width == 4 ? 8 : width; }

template <class Kernel>
auto *variant(const Kernel &kernel, size_t level) {
    return kernel.variants[level % kernel.variants.size()].run;
}

void check_block(Input *in, size_t level) {
    static const auto kernels = block_kernels();
    const auto &k = in->pick(kernels);
    const Pair pair(readable(k.width), k.height, in);
    require(pair.measure(variant(k, level)) == pair.measure(k.model));
}

int round_up(int n, int unit) { return (n + unit - 1) / unit * unit; }

void check_area(Input *in, size_t level) {
    static const auto kernels = area_kernels();
    constexpr int WIDTHS[] = {4, 8, 16, 32, 64};
    const auto &k = in->pick(kernels);
    const std::string name = k.name;
    const bool sad = name == "sad", ssd = name == "ssd";
    const int any_height = in->range(1, 40), any_width = in->range(1, 40);
    const int width = sad || ssd       ? WIDTHS[(any_width - 1) % 5]
                      : name == "satd" ? round_up(any_width, 4)
                                       : any_width;
    int rows = name == "satd" ? 4 : 1;  // the height is a multiple of this
    if (sad) rows = width == 8 ? 4 : 8;
    if (ssd && width < 64) rows = width == 32 ? 2 : 4;
    const int height = round_up(any_height, rows);
    // The area that is read: whole tiles, and 16 columns instead of other widths.
    const int tile = sad || ssd ? 1 : name == "satd2" ? 8 : 4;
    const int columns = sad ? (width == 8 ? 8 : 16) : ssd ? readable(width) : round_up(width, tile);
    const Pair p(columns, round_up(height, tile), in);
    const auto measure = [&](auto *metric) {
        return metric(width, height, p.a.at, p.b.at, p.a.stride, p.b.stride);
    };
    require(measure(variant(k, level)) == measure(k.model));
}

// Runs a residual and its model on targets of exact size; compares all samples and gaps.
template <class Run, class Kernel>
void check_residual(const Kernel &kernel, size_t level, int width, int height, Input *in, Run run) {
    const int choice = in->byte(), step = width + choice % 21, stride = choice & 64 ? -step : step;
    const Block got(static_cast<size_t>(step * (height - 1) + width) * 2), wanted(got.size());
    const auto into = [&](const Block &block, auto *diff) {
        auto *out = static_cast<int16_t *>(static_cast<void *>(block.data()));
        run(diff, stride, first_row(out, stride, height));
    };
    into(got, variant(kernel, level));
    into(wanted, kernel.model);
    require(got == wanted);
}

void check_diff(Input *in, size_t level) {
    static const auto kernels = diff_block_kernels();
    const auto &k = in->pick(kernels);
    const Pair p(readable(k.width), k.height, in);
    check_residual(k, level, k.width, k.height, in, [&](auto *diff, int stride, int16_t *out) {
        diff(p.a.at, p.b.at, p.a.stride, p.b.stride, stride, out);
    });
}

void check_diff_area(Input *in, size_t level) {
    static const auto kernels = diff_area_kernels();
    const int width = in->range(1, 90), height = in->range(1, 12);
    const Pair p(width, height, in);
    check_residual(kernels[0], level, width, height, in, [&](auto *diff, int stride, int16_t *out) {
        diff(width, height, p.a.at, p.b.at, p.a.stride, p.b.stride, stride, out);
    });
}

void check_eskip(Input *in, size_t level) {
    static const auto kernels = early_skip_kernels();
    const int width = 4 * in->range(1, 20), height = in->range(1, 20);
    const int32_t threshold = static_cast<int32_t>(in->word() % 200000) - 1;
    const int choice = in->byte(), stride = width + 4 * in->range(1, 5);
    const int stride_a = choice & 4 ? -stride : stride, stride_b = choice & 8 ? -stride : stride;
    // Only the aligned words that contain the rows of b are readable.
    Block a(static_cast<size_t>(stride * height)), b(a.size());
    a.fill(in);
    b.fill(in);
    const uint8_t *const at_a = first_row(a.data(), stride_a, height);
    const uint8_t *const at_b = first_row(b.data(), stride_b, height) + choice % 4;
    const auto measure = [&](auto *skip) {
        return skip(width, height, at_a, at_b, stride_a, stride_b, threshold);
    };
    require(measure(variant(kernels[0], level)) == measure(kernels[0].model));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr void (*CHECKS[])(Input *, size_t) = {check_block, check_area, check_diff,
                                                   check_diff_area, check_eskip};
    Input in(data, size);
    const size_t choice = in.byte(), checks = std::size(CHECKS);
    CHECKS[choice % checks](&in, choice / checks);
    return 0;
}
