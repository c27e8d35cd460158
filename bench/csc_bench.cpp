// Conversions: the model against every variant that the processor has, on the same planes.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "kernels.h"

namespace {

struct Size {
    int32_t w, h;
};

void convert(benchmark::State &state, const CscKernel &kernel, tavu_fn_csc_t routine, Size size) {
    const auto pixels = static_cast<size_t>(size.w) * static_cast<size_t>(size.h);
    std::vector<uint8_t> in(4 * pixels), out(4 * pixels);
    for (size_t i = 0; i < in.size(); i++) in[i] = static_cast<uint8_t>(i * 2654435761U >> 13);
    uint8_t *src[4], *dst[4] = {};
    int32_t src_stride[4], dst_stride[4] = {};
    for (size_t p = 0; p < 4; p++) {
        src[p] = in.data() + (kernel.src_step == 1 ? p * pixels : p);
        src_stride[p] = size.w * kernel.src_step;
    }
    size_t at = 0;
    for (size_t p = 0; p < kernel.dst_bytes.size(); p++) {
        dst[p] = out.data() + at;
        dst_stride[p] = size.w * kernel.dst_bytes[p];
        at += pixels * static_cast<size_t>(kernel.dst_bytes[p]);
    }
    const int32_t code = kernel.codes[0];
    for (auto _ : state) {
        routine(src, size.w, size.h, src_stride, 13, dst, size.w, size.h, dst_stride, code);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(pixels));
}

void add(const CscKernel &kernel, const std::string &level, tavu_fn_csc_t routine, Size size) {
    const std::string name = "csc_" + std::string(kernel.name) + "/" + std::to_string(size.w) +
                             "x" + std::to_string(size.h) + "/" + level;
    benchmark::RegisterBenchmark(name.c_str(), convert, kernel, routine, size)
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
