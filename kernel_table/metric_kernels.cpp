#include "metric_kernels.h"

#include <cstring>

#include "metric/diff_model.h"
#include "metric/sad_model.h"
#include "metric/satd_model.h"
#include "metric/ssd_model.h"

namespace {

using namespace tavu;

template <auto Model>
int32_t block_model(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b) {
    return Model({a, b, stride_a, stride_b});
}

template <auto Model>
int32_t area_model(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                   int32_t stride_a, int32_t stride_b) {
    return Model(width, height, {a, b, stride_a, stride_b});
}

int32_t early_skip_model(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                         int32_t stride_a, int32_t stride_b, int32_t threshold) {
    return sad_eskip(width, height, {a, b, stride_a, stride_b}, threshold);
}

template <int Size>
void diff_model(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b,
                int32_t stride_diff, int16_t *diff) {
    diff_block<Size>({a, b, stride_a, stride_b}, stride_diff, diff);
}

void diff_area_model(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                     int32_t stride_a, int32_t stride_b, int32_t stride_diff, int16_t *diff) {
    diff_area(width, height, {a, b, stride_a, stride_b}, stride_diff, diff);
}

int32_t hadamard_model(const int16_t *block) {
    Transform<4> t;
    memcpy(t.at, block, sizeof t.at);
    return hadamard4x4(t);
}

// A fill with a word, for sizes that are multiples of the blocks of all fills: call(routine, dst, size)
// is one call of a variant.
template <auto *Routine, class Call>
BlockKernel<Fill> fill_kernel(const char *name, uint32_t word, Call call) {
    BlockKernel<Fill> kernel{name, 1 << 14, 1, {}, {}};
    kernel.model = [word](void *dst, int32_t size) {
        auto *at = static_cast<uint8_t *>(dst);
        for (; size > 0; size -= 4, at += 4) memcpy(at, &word, 4);
    };
    for (const auto &variant : variants<Routine>()) {
        const auto run = [call, routine = variant.run](void *dst, int32_t size) {
            call(routine, dst, size);
        };
        kernel.variants.push_back({variant.level, run});
    }
    return kernel;
}

template <auto *Kernel, int Columns, int Rows>
BlockKernel<tavu_metric_block_t *> sad_kernel(const char *name) {
    return {name, Columns, Rows, block_model<sad<Columns, Rows>>, variants<Kernel>()};
}

template <auto *Kernel, int Size>
BlockKernel<tavu_diff_block_t *> diff_kernel(const char *name) {
    return {name, Size, Size, diff_model<Size>, variants<Kernel>()};
}

}  // namespace

std::vector<BlockKernel<tavu_metric_block_t *>> block_kernels() {
    return {
        sad_kernel<tavu_sad2x2, 2, 2>("sad2x2"),
        sad_kernel<tavu_sad2x4, 2, 4>("sad2x4"),
        sad_kernel<tavu_sad4x2, 4, 2>("sad4x2"),
        sad_kernel<tavu_sad4x4, 4, 4>("sad4x4"),
        sad_kernel<tavu_sad4x8, 4, 8>("sad4x8"),
        sad_kernel<tavu_sad8x4, 8, 4>("sad8x4"),
        sad_kernel<tavu_sad8x8, 8, 8>("sad8x8"),
        sad_kernel<tavu_sad8x16, 8, 16>("sad8x16"),
        sad_kernel<tavu_sad16x8, 16, 8>("sad16x8"),
        sad_kernel<tavu_sad16x16, 16, 16>("sad16x16"),
        sad_kernel<tavu_sad16x32, 16, 32>("sad16x32"),
        sad_kernel<tavu_sad32x16, 32, 16>("sad32x16"),
        sad_kernel<tavu_sad32x32, 32, 32>("sad32x32"),
        sad_kernel<tavu_sad64x32, 64, 32>("sad64x32"),
        sad_kernel<tavu_sad32x64, 32, 64>("sad32x64"),
        sad_kernel<tavu_sad64x64, 64, 64>("sad64x64"),
        {"satd4x4", 4, 4, block_model<satd4x4>, variants<tavu_satd4x4>()},
        {"satd8x8", 8, 8, block_model<satd8x8>, variants<tavu_satd8x8>()},
    };
}

std::vector<BlockKernel<tavu_metric_area_t *>> area_kernels() {
    return {
        {"sad", 16, 64, area_model<sad_area>, variants<tavu_sad>()},
        {"ssd", 64, 64, area_model<ssd_area>, variants<tavu_ssd>()},
        {"satd", 64, 64, area_model<satd4x4_area>, variants<tavu_satd>()},
        {"satd1", 64, 64, area_model<satd4x4_area>, variants<tavu_satd1>()},
        {"satd2", 64, 64, area_model<satd8x8_area>, variants<tavu_satd2>()},
    };
}

std::vector<BlockKernel<EarlySkip *>> early_skip_kernels() {
    return {{"sad_eskip", 16, 16, early_skip_model, variants<tavu_sad_eskip>()}};
}

std::vector<BlockKernel<tavu_diff_block_t *>> diff_block_kernels() {
    return {
        diff_kernel<tavu_diff2x2, 2>("diff2x2"),      diff_kernel<tavu_diff4x4, 4>("diff4x4"),
        diff_kernel<tavu_diff8x8, 8>("diff8x8"),      diff_kernel<tavu_diff16x16, 16>("diff16x16"),
        diff_kernel<tavu_diff32x32, 32>("diff32x32"), diff_kernel<tavu_diff64x64, 64>("diff64x64"),
    };
}

std::vector<BlockKernel<DiffArea *>> diff_area_kernels() {
    return {{"diff", 64, 64, diff_area_model, variants<tavu_diff>()}};
}

std::vector<BlockKernel<Hadamard *>> hadamard_kernels() {
    return {{"hadamard4x4", 4, 4, hadamard_model, variants<tavu_hadamard4x4>()}};
}

std::vector<BlockKernel<Fill>> fill_kernels() {
    constexpr uint32_t WORD = 0x11223344, BYTES = 0x44444444;
    const auto words = [](auto *fill, void *dst, int32_t size) { fill(dst, WORD, size); };
    const auto bytes = [](auto *fill, void *dst, int32_t size) { fill(dst, 0x44, size); };
    const auto zeros = [](auto *clear, void *dst, int32_t size) { clear(dst, size / 4); };
    return {
        fill_kernel<tavu_mclr_x64>("mclr_x64", 0, zeros),
        fill_kernel<tavu_mset_x64>("mset_x64", BYTES, bytes),
        fill_kernel<tavu_mset_x64a>("mset_x64a", BYTES, bytes),
        fill_kernel<tavu_mset_x128>("mset_x128", WORD, words),
        fill_kernel<tavu_mset_x32>("mset_x32", WORD, words),
        fill_kernel<tavu_mset_x32ax4>("mset_x32ax4", WORD, words),
    };
}
