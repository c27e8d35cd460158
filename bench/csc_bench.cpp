// Conversions: the model, every variant of the processor, and the best peer, on the same planes.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "kernels.h"
#include "peers.h"
#include "picture.h"

namespace {

// Mean difference of the bytes that two routines write.
double difference(Picture &picture, tavu_fn_csc_t a, tavu_fn_csc_t b) {
    picture.convert(a);
    const std::vector<uint8_t> expected = picture.out;
    picture.convert(b);
    double sum = 0;
    for (size_t i = 0; i < expected.size(); i++) sum += std::abs(expected[i] - picture.out[i]);
    return sum / static_cast<double>(expected.size());
}

void run(benchmark::State &state, const CscKernel &kernel, tavu_fn_csc_t routine) {
    Picture picture(kernel, static_cast<int32_t>(state.range(0)),
                    static_cast<int32_t>(state.range(1)));
    const double differs = difference(picture, kernel.model, routine);
    if (differs > 0) state.SetLabel("mean difference " + std::to_string(differs));
    for (auto _ : state) {
        picture.convert(routine);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

void add(const CscKernel &kernel, const std::string &who, tavu_fn_csc_t routine) {
    const std::string name = "csc_" + std::string(kernel.name) + "/" + who;
    benchmark::RegisterBenchmark(name.c_str(), run, kernel, routine)
        ->Args({320, 180})
        ->Args({1920, 1080})
        ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char **argv) {
    for (const CscKernel &kernel : csc_kernels()) {
        add(kernel, "model", kernel.model);
        for (const CscVariant &variant : kernel.variants) add(kernel, variant.level, variant.run);
        if (const tavu_fn_csc_t peer = csc_peer(kernel.name)) add(kernel, "libyuv", peer);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
