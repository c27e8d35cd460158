// Conversions: the model, every variant of the processor, and the best peer, on the same planes.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "kernels.h"
#include "peers.h"

namespace {

// Source and target planes of one conversion.
struct Picture {
    Picture(const CscKernel &kernel, int32_t width, int32_t height)
        : w(width), h(height), code(kernel.codes[0]) {
        const auto pixels = static_cast<size_t>(w) * static_cast<size_t>(h);
        in.resize(4 * pixels);
        out.resize(4 * pixels);
        for (size_t i = 0; i < in.size(); i++) in[i] = static_cast<uint8_t>(i * 2654435761U >> 13);
        for (size_t p = 0; p < 4; p++) {
            src[p] = in.data() + (kernel.src_step == 1 ? p * pixels : p);
            src_stride[p] = w * kernel.src_step;
        }
        uint8_t *at = out.data();
        for (size_t p = 0; p < kernel.dst_bytes.size(); p++) {
            dst[p] = at;
            dst_stride[p] = w * kernel.dst_bytes[p];
            at += pixels * static_cast<size_t>(kernel.dst_bytes[p]);
        }
    }

    void convert(tavu_fn_csc_t routine) {
        routine(src, w, h, src_stride, 13, dst, w, h, dst_stride, code);
    }

    int32_t w, h, code;
    std::vector<uint8_t> in, out;
    uint8_t *src[4], *dst[4] = {};
    int32_t src_stride[4], dst_stride[4] = {};
};

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
