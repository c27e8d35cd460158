// Block metrics at every level against their models.
#include <string>
#include <vector>

#include "input.h"
#include "metric_kernels.h"

namespace {

// Two blocks of random strides and alignments. Kernels of four columns read four bytes more.
struct Pair {
    Block a, b;
    const uint8_t *at_a, *at_b;
    int stride_a, stride_b;

    Pair(int width, int height, Input *in)
        : Pair(width + (width % 8 == 4 ? 4 : 0), height, in->byte(), in->byte(), in) {}

    template <class Metric>
    int32_t measure(Metric *metric) const {
        return metric(at_a, at_b, stride_a, stride_b);
    }

  private:
    Pair(int readable, int height, int more_a, int more_b, Input *in)
        : a(bytes(readable, readable + more_a % 40, height) + static_cast<size_t>(more_a % 16)),
          b(bytes(readable, readable + more_b % 40, height) + static_cast<size_t>(more_b % 16)),
          at_a(a.data() + more_a % 16),
          at_b(b.data() + more_b % 16),
          stride_a(readable + more_a % 40),
          stride_b(readable + more_b % 40) {
        a.fill(in);
        b.fill(in);
    }
    static size_t bytes(int readable, int stride, int height) {
        return static_cast<size_t>(stride * (height - 1) + readable);
    }
};

template <class Kernel>
auto *variant(const Kernel &kernel, size_t level) {
    return kernel.variants[level % kernel.variants.size()].run;
}

void check_block(Input *in, size_t level) {
    static const auto kernels = block_kernels();
    const auto &k = in->pick(kernels);
    const Pair pair(k.width, k.height, in);
    require(pair.measure(variant(k, level)) == pair.measure(k.model));
}

int round_up(int n, int unit) { return (n + unit - 1) / unit * unit; }

void check_area(Input *in, size_t level) {
    static const auto kernels = area_kernels();
    constexpr int WIDTHS[] = {4, 8, 16, 32, 64};
    const auto &k = in->pick(kernels);
    const std::string name = k.name;
    const bool fixed = name == "sad" || name == "ssd";
    const int unit = name == "sad" ? 8 : fixed || name == "satd" ? 4 : 1;
    const int height = round_up(in->range(1, 40), unit);
    const int width = round_up(fixed ? in->pick(WIDTHS) : in->range(1, 40), unit);
    // All columns that are read: those of whole tiles, and of 16 in place of other widths.
    int columns = round_up(width, name == "satd2" ? 8 : 4);
    if (name == "sad") columns = width == 8 ? 8 : 16;
    if (!fixed && columns % 8 == 0 && name != "satd2") columns += 4;
    const Pair p(columns, round_up(height, 8), in);
    const auto measure = [&](auto *metric) {
        return metric(width, height, p.at_a, p.at_b, p.stride_a, p.stride_b);
    };
    require(measure(variant(k, level)) == measure(k.model));
}

// Runs a residual and its model into exact memory, and compares all samples and gaps.
template <class Run, class Kernel>
void check_residual(const Kernel &kernel, size_t level, int width, int height, Input *in, Run run) {
    const int stride = width + in->range(0, 20);
    const Block got(static_cast<size_t>(stride * (height - 1) + width) * 2), wanted(got.size());
    const auto into = [&](const Block &block, auto *diff) {
        run(diff, stride, static_cast<int16_t *>(static_cast<void *>(block.data())));
    };
    into(got, variant(kernel, level));
    into(wanted, kernel.model);
    require(got == wanted);
}

void check_diff(Input *in, size_t level) {
    static const auto kernels = diff_block_kernels();
    const auto &k = in->pick(kernels);
    const Pair p(k.width, k.height, in);
    check_residual(k, level, k.width, k.height, in, [&](auto *diff, int stride, int16_t *out) {
        diff(p.at_a, p.at_b, p.stride_a, p.stride_b, stride, out);
    });
}

void check_diff_area(Input *in, size_t level) {
    static const auto kernels = diff_area_kernels();
    const int width = in->range(1, 90), height = in->range(1, 12);
    const Pair p(width, height, in);
    check_residual(kernels[0], level, width, height, in, [&](auto *diff, int stride, int16_t *out) {
        diff(width, height, p.at_a, p.at_b, p.stride_a, p.stride_b, stride, out);
    });
}

void check_eskip(Input *in, size_t level) {
    static const auto kernels = early_skip_kernels();
    const int width = 4 * in->range(1, 20), height = in->range(1, 20);
    const int32_t threshold = static_cast<int32_t>(in->word() % 200000) - 1;
    const int shift = in->range(0, 3), stride = width + 4 * in->range(1, 5);
    // Whole aligned words around each row of b are readable.
    Block a(static_cast<size_t>(stride * height)), b(a.size());
    a.fill(in);
    b.fill(in);
    const auto measure = [&](auto *skip) {
        return skip(width, height, a.data(), b.data() + shift, stride, stride, threshold);
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
