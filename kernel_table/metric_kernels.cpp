#include <algorithm>
#include <cstring>

#include "kernels.h"
#include "metric/diff_model.h"
#include "metric/sad_model.h"
#include "metric/satd_model.h"
#include "metric/ssd_model.h"

namespace {

using namespace tavu;

constexpr size_t PREFIX = sizeof "tavu_" - 1;

// Models, which take two blocks in a record, as exported routines.

template <auto Model>
int32_t block_model(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b) {
    return Model({a, b, stride_a, stride_b});
}

template <auto Model>
int32_t area_model(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                   int32_t stride_a, int32_t stride_b) {
    return Model(width, height, {a, b, stride_a, stride_b});
}

template <auto Model>
int32_t early_skip_model(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                         int32_t stride_a, int32_t stride_b, int32_t threshold) {
    return Model(width, height, {a, b, stride_a, stride_b}, threshold);
}

template <auto Model>
void diff_model(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b,
                int32_t stride_diff, int16_t *diff) {
    Model({a, b, stride_a, stride_b}, stride_diff, diff);
}

template <auto Model>
void diff_area_model(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                     int32_t stride_a, int32_t stride_b, int32_t stride_diff, int16_t *diff) {
    Model(width, height, {a, b, stride_a, stride_b}, stride_diff, diff);
}

template <auto Model>
int32_t hadamard_model(const int16_t *block) {
    Transform<4> t;
    memcpy(t.at, block, sizeof t.at);
    return Model(t);
}

int32_t round_up(int32_t n, int32_t unit) { return (n + unit - 1) / unit * unit; }

// Widths other than 8 are read as 16 columns.
Area fit_sad(int32_t width, int32_t height) {
    const int32_t columns = width == 8 ? 8 : 16, rows = round_up(height, columns / 2);
    return {width, rows, columns, rows};
}

// Widths other than 4, 8, 16 and 32 are read as 64 columns.
Area fit_ssd(int32_t width, int32_t height) {
    const bool narrow = width == 4 || width == 8 || width == 16, half = width == 32;
    const int32_t rows = round_up(height, narrow ? 4 : half ? 2 : 1);
    return {width, rows, narrow || half ? width : 64, rows};
}

// Whole tiles.
template <int Size>
Area fit_tiles(int32_t width, int32_t height) {
    width = round_up(width, Size);
    height = round_up(height, Size);
    return {width, height, width, height};
}

// Any size; whole tiles are read.
template <int Size>
Area fit_any(int32_t width, int32_t height) {
    return {width, height, round_up(width, Size), round_up(height, Size)};
}

// For sizes that are multiples of every fill's block. call(routine, dst, size) is one call.
template <auto *Routine, class Call>
BlockKernel<Fill> fill_kernel(const char *name, uint32_t pattern, Call call) {
    BlockKernel<Fill> kernel{name, 1 << 14, 1, {}, {}};
    kernel.model = [pattern](void *dst, int32_t size) {
        auto *at = static_cast<uint8_t *>(dst);
        for (; size > 0; size -= 4, at += 4) memcpy(at, &pattern, 4);
    };
    for (const auto &variant : variants<Routine>()) {
        const auto run = [call, routine = variant.run](void *dst, int32_t size) {
            call(routine, dst, size);
        };
        kernel.variants.push_back({variant.level, run});
    }
    return kernel;
}

}  // namespace

std::vector<BlockKernel<tavu_metric_block_t *>> block_kernels() {
    return {
#define BLOCK(name, columns, rows, ...) \
    {&#name[PREFIX], columns, rows, block_model<__VA_ARGS__>, variants<name>()},
#include "kernels.def"
    };
}

std::vector<AreaKernel> area_kernels() {
    return {
#define AREA(name, columns, rows, fit, ...) \
    {{&#name[PREFIX], columns, rows, area_model<__VA_ARGS__>, variants<name>()}, fit},
#include "kernels.def"
    };
}

std::vector<BlockKernel<EarlySkip *>> early_skip_kernels() {
    return {
#define EARLY_SKIP(name, columns, rows, ...) \
    {&#name[PREFIX], columns, rows, early_skip_model<__VA_ARGS__>, variants<name>()},
#include "kernels.def"
    };
}

std::vector<BlockKernel<tavu_diff_block_t *>> diff_block_kernels() {
    return {
#define DIFF(name, size, ...) \
    {&#name[PREFIX], size, size, diff_model<__VA_ARGS__>, variants<name>()},
#include "kernels.def"
    };
}

std::vector<BlockKernel<DiffArea *>> diff_area_kernels() {
    return {
#define DIFF_AREA(name, columns, rows, ...) \
    {&#name[PREFIX], columns, rows, diff_area_model<__VA_ARGS__>, variants<name>()},
#include "kernels.def"
    };
}

std::vector<BlockKernel<Hadamard *>> hadamard_kernels() {
    return {
#define HADAMARD(name, size, ...) \
    {&#name[PREFIX], size, size, hadamard_model<__VA_ARGS__>, variants<name>()},
#include "kernels.def"
    };
}

std::vector<BlockKernel<Fill>> fill_kernels() {
    return {
#define FILL(name, pattern, ...)               \
    fill_kernel<name>(&#name[PREFIX], pattern, \
                      [](auto *fill, void *dst, int32_t size) { fill(dst, __VA_ARGS__); }),
#include "kernels.def"
    };
}
