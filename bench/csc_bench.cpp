// Conversions: the model against every variant that the processor has, on the same planes.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "kernels.h"

namespace {

struct Size {
    int32_t w, h;
};

void convert(benchmark::State &state, tavu_fn_csc_t routine, Size size, int bytes, int32_t code) {
    const auto pixels = static_cast<size_t>(size.w) * static_cast<size_t>(size.h);
    std::vector<uint8_t> planes(4 * pixels), out(4 * pixels);
    for (size_t i = 0; i < planes.size(); i++)
        planes[i] = static_cast<uint8_t>(i * 2654435761U >> 13);
    uint8_t *src[4], *dst[4] = {out.data(), out.data() + 3 * pixels, nullptr, nullptr};
    for (size_t p = 0; p < 4; p++) src[p] = planes.data() + p * pixels;
    const int32_t src_stride[4] = {size.w, size.w, size.w, size.w},
                  dst_stride[4] = {size.w * bytes, size.w};
    for (auto _ : state) {
        routine(src, size.w, size.h, src_stride, 13, dst, size.w, size.h, dst_stride, code);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(pixels));
}

void add(const CscKernel &kernel, const std::string &level, tavu_fn_csc_t routine, Size size) {
    const std::string name = "csc_" + std::string(kernel.name) + "/" + std::to_string(size.w) +
                             "x" + std::to_string(size.h) + "/" + level;
    benchmark::RegisterBenchmark(name.c_str(), convert, routine, size, kernel.dst_bytes,
                                 kernel.codes[0])
        ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char **argv) {
    for (const CscKernel &kernel : csc_kernels()) {
        for (const Size size : {Size{320, 180}, Size{1920, 1080}}) {
            add(kernel, "model", kernel.model, size);
            for (const CscVariant &variant : kernel.variants) {
                add(kernel, variant.level, variant.run, size);
            }
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
