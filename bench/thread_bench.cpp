// The same work in one thread and in two, each with its own memory, which fits in its cache.
#include <memory>
#include <vector>

#include "picture.h"
#include "rows.h"
#include "tavu.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int32_t W = 320, H = 180;

// make() returns each thread's own call.
template <class Make>
void add_row(const char *row, Make make) {
    const auto run = [make](benchmark::State &state) {
        auto call = make();
        for (auto _ : state) {
            call();
            benchmark::ClobberMemory();
        }
        using benchmark::Counter;
        state.counters["calls"] =
            Counter(static_cast<double>(state.iterations()), Counter::kIsRate);
    };
    benchmark::RegisterBenchmark(row, run)->Threads(1)->Threads(2)->UseRealTime();
}

struct Planes {
    Bytes from = Bytes(4 * W * H, 100), to = Bytes(4 * W * H);
};

}  // namespace

void add_thread_rows() {
    add_row("csc_yuv444_to_rgba8888 320x180", [] {
        const auto picture = std::make_shared<Picture>(csc_kernels()[1], W, H);
        return [=] { picture->convert(tavu_csc_yuv444_to_rgba8888); };
    });
    add_row("irsz8b_full 320x180 to 480x270", [] {
        const auto planes = std::make_shared<Planes>();
        return [=] {
            int32_t x, y;
            bilinear_rsz_step_size(W, H, 480, 270, &x, &y);
            tavu_irsz8b_full(planes->from.data(), W, 480, 270, 480, planes->to.data(), x, y);
        };
    });
    add_row("satd 64x64", [] {
        const auto planes = std::make_shared<Planes>();
        return [=] {
            benchmark::DoNotOptimize(
                tavu_satd(64, 64, planes->from.data(), planes->to.data(), W, W));
        };
    });
    add_row("md5 1500 bytes", [] {
        const auto planes = std::make_shared<Planes>();
        return [=] {
            tavu_md5_t md5;
            tavu_md5_init(&md5);
            tavu_md5_update(&md5, planes->from.data(), 1500);
            tavu_md5_finish(&md5, planes->to.data());
        };
    });
    add_row("mset_x32 16 KiB", [] {
        const auto planes = std::make_shared<Planes>();
        return [=] { tavu_mset_x32(planes->to.data(), 0x11223344, 1 << 14); };
    });
    add_row("mcpy_pic 128x64", [] {
        const auto planes = std::make_shared<Planes>();
        return [=] { tavu_mcpy_pic(planes->to.data(), planes->from.data(), W, W, 128, 64); };
    });
    add_row("bsr_read_ue", [] {
        const auto planes = std::make_shared<Planes>();
        return [=] {
            tavu_bsr_t reader;
            tavu_bsr_init(&reader, planes->from.data(), 1 << 12, nullptr);
            int32_t sum = 0;
            for (int i = 0; i < 4096; i++) sum += tavu_bsr_read_ue(&reader);
            benchmark::DoNotOptimize(sum);
        };
    });
}
