// Block metrics at every level against their models.
#include <vector>

#include "input.h"
#include "metric/diff_model.h"
#include "metric/sad_model.h"
#include "metric/satd_model.h"
#include "metric/ssd_model.h"
#include "variants.h"

namespace {

using namespace tavu;

template <class Routine, class Model>
struct Kernel {
    std::vector<Variant<Routine *>> sides;
    int width, height;  // of an area the units that they are multiples of
    Model model;
};
using BlockKernel = Kernel<tavu_metric_block_t, int32_t (*)(const Blocks &)>;
using DiffKernel = Kernel<tavu_diff_block_t, void (*)(const Blocks &, int32_t, int16_t *)>;
using AreaKernel = Kernel<tavu_metric_area_t, int32_t (*)(int32_t, int32_t, const Blocks &)>;

template <auto *Routine, int Width, int Height>
BlockKernel sad_kernel() {
    return {variants<Routine>(), Width, Height, sad<Width, Height>};
}
template <auto *Routine, int Size>
DiffKernel diff_kernel() {
    return {variants<Routine>(), Size, Size, diff_block<Size>};
}
template <int Size, int32_t (*Satd)(const Blocks &)>
int32_t satd_area(int32_t width, int32_t height, const Blocks &at) {
    return tiles<Size>(width, height, at, Satd);
}

const BlockKernel BLOCKS[] = {
    sad_kernel<tavu_sad2x2, 2, 2>(),           sad_kernel<tavu_sad2x4, 2, 4>(),
    sad_kernel<tavu_sad4x2, 4, 2>(),           sad_kernel<tavu_sad4x4, 4, 4>(),
    sad_kernel<tavu_sad4x8, 4, 8>(),           sad_kernel<tavu_sad8x4, 8, 4>(),
    sad_kernel<tavu_sad8x8, 8, 8>(),           sad_kernel<tavu_sad8x16, 8, 16>(),
    sad_kernel<tavu_sad16x8, 16, 8>(),         sad_kernel<tavu_sad16x16, 16, 16>(),
    sad_kernel<tavu_sad16x32, 16, 32>(),       sad_kernel<tavu_sad32x16, 32, 16>(),
    sad_kernel<tavu_sad32x32, 32, 32>(),       sad_kernel<tavu_sad64x32, 64, 32>(),
    sad_kernel<tavu_sad32x64, 32, 64>(),       sad_kernel<tavu_sad64x64, 64, 64>(),
    {variants<tavu_satd4x4>(), 4, 4, satd4x4}, {variants<tavu_satd8x8>(), 8, 8, satd8x8}};
const DiffKernel DIFFS[] = {diff_kernel<tavu_diff2x2, 2>(),    diff_kernel<tavu_diff4x4, 4>(),
                            diff_kernel<tavu_diff8x8, 8>(),    diff_kernel<tavu_diff16x16, 16>(),
                            diff_kernel<tavu_diff32x32, 32>(), diff_kernel<tavu_diff64x64, 64>()};
const AreaKernel AREAS[] = {{variants<tavu_sad>(), 8, 8, sad_area},
                            {variants<tavu_ssd>(), 4, 4, ssd_area<>},
                            {variants<tavu_satd>(), 4, 4, satd_area<4, satd4x4>},
                            {variants<tavu_satd1>(), 1, 1, satd_area<4, satd4x4>},
                            {variants<tavu_satd2>(), 1, 1, satd_area<8, satd8x8>}};

// Two blocks of random strides and alignments. Kernels of four columns read four bytes more.
struct Pair {
    Block a, b;
    Blocks at;

    Pair(int width, int height, Input *in)
        : Pair(width + (width % 8 == 4 ? 4 : 0), height, in->byte(), in->byte(), in) {}

  private:
    Pair(int readable, int height, int more_a, int more_b, Input *in)
        : a(bytes(readable, readable + more_a % 40, height) + more_a % 16),
          b(bytes(readable, readable + more_b % 40, height) + more_b % 16),
          at{a.data() + more_a % 16, b.data() + more_b % 16, readable + more_a % 40,
             readable + more_b % 40} {
        a.fill(in);
        b.fill(in);
    }
    static size_t bytes(int readable, int stride, int height) {
        return static_cast<size_t>(stride * (height - 1) + readable);
    }
};

void check_block(Input *in, size_t level) {
    const BlockKernel &k = in->pick(BLOCKS);
    const Pair pair(k.width, k.height, in);
    const Blocks &at = pair.at;
    const auto &side = k.sides[level % k.sides.size()];
    require(side.run(at.a, at.b, at.stride_a, at.stride_b) == k.model(at));
}

int round_up(int n, int unit) { return (n + unit - 1) / unit * unit; }

void check_area(Input *in, size_t level) {
    constexpr int WIDTHS[] = {4, 8, 16, 32, 64};
    const AreaKernel &k = in->pick(AREAS);
    const int height = round_up(in->range(1, 40), k.height);
    const bool fixed = k.model == AREAS[0].model || k.model == AREAS[1].model;
    int width = round_up(fixed ? in->pick(WIDTHS) : in->range(1, 40), k.width);
    // All columns that are read: those of whole tiles, and of 16 in place of other widths.
    int columns = round_up(width, k.model == AREAS[4].model ? 8 : 4);
    if (k.model == AREAS[0].model) columns = width == 8 ? 8 : 16;
    if (!fixed && columns % 8 == 0 && k.model != AREAS[4].model) columns += 4;
    const Pair pair(columns, round_up(height, 8), in);
    const Blocks &at = pair.at;
    const auto &side = k.sides[level % k.sides.size()];
    require(side.run(width, height, at.a, at.b, at.stride_a, at.stride_b) ==
            k.model(width, height, at));
}

// Runs a residual into exact memory and its model, and compares all samples and gaps.
template <class Run, class Model>
void check_residual(int width, int height, int stride, Run run, Model model) {
    const Block got(static_cast<size_t>(stride * (height - 1) + width) * 2), wanted(got.size());
    run(stride, reinterpret_cast<int16_t *>(got.data()));
    model(stride, reinterpret_cast<int16_t *>(wanted.data()));
    require(got == wanted);
}

void check_diff(Input *in, size_t level) {
    const DiffKernel &k = in->pick(DIFFS);
    const Pair pair(k.width, k.height, in);
    const Blocks &at = pair.at;
    const int stride = k.width + in->range(0, 20);
    const auto &side = k.sides[level % k.sides.size()];
    check_residual(
        k.width, k.height, stride,
        [&](int s, int16_t *d) { side.run(at.a, at.b, at.stride_a, at.stride_b, s, d); },
        [&](int s, int16_t *d) { k.model(at, s, d); });
}

void check_diff_area(Input *in, size_t level) {
    static const auto sides = variants<tavu_diff>();
    const int width = in->range(1, 90), height = in->range(1, 12);
    const int stride = width + in->range(0, 20);
    const Pair pair(width, height, in);
    const Blocks &at = pair.at;
    const auto &side = sides[level % sides.size()];
    check_residual(
        width, height, stride,
        [&](int s, int16_t *d) {
            side.run(width, height, at.a, at.b, at.stride_a, at.stride_b, s, d);
        },
        [&](int s, int16_t *d) { diff_area(width, height, at, s, d); });
}

void check_eskip(Input *in, size_t level) {
    static const auto sides = variants<tavu_sad_eskip>();
    const int width = 4 * in->range(1, 20), height = in->range(1, 20);
    const int32_t threshold = static_cast<int32_t>(in->word() % 200000) - 1;
    const int shift = in->range(0, 3), stride = width + 4 * in->range(1, 5);
    // Whole aligned words around each row of b are readable.
    Block a(static_cast<size_t>(stride * height)), b(a.size());
    a.fill(in);
    b.fill(in);
    const Blocks at{a.data(), b.data() + shift, stride, stride};
    const auto &side = sides[level % sides.size()];
    require(side.run(width, height, at.a, at.b, stride, stride, threshold) ==
            sad_eskip(width, height, at, threshold));
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
