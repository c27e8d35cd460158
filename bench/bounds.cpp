// Lower bounds for the time of any kernel on this machine: the memory bandwidth, and the latency of
// a chain of dependent operations.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "kernels.h"
#include "rows.h"

namespace {

// A routine that reads and writes `moved` bytes in total takes at least as long as copying half of
// them.
void add_memory_bound(const std::string &row, size_t moved) {
    struct Copy {
        explicit Copy(size_t n) : from(n, 1), to(n) {}
        std::vector<uint8_t> from, to;
    };
    const auto copy = std::make_shared<Copy>(moved / 2);
    add_side(row, "bound memcpy",
             [copy] { memcpy(copy->to.data(), copy->from.data(), copy->to.size()); });
}

void add_conversion_bounds() {
    for (const CscKernel &kernel : csc_kernels()) {
        for (const auto &[width, height] : {std::pair(320, 180), std::pair(1920, 1080)}) {
            size_t bytes = static_cast<size_t>(kernel.src_planes);
            for (const int written : kernel.dst_bytes) bytes += static_cast<size_t>(written);
            add_memory_bound("csc_" + std::string(kernel.name) + '/' + std::to_string(width) + 'x' +
                                 std::to_string(height),
                             bytes * static_cast<size_t>(width * height));
        }
    }
}

void add_resize_bounds() {
    constexpr size_t P360 = 640 * 360, P540 = 960 * 540, P720 = 1280 * 720, P1080 = 1920 * 1080;
    // The cases that read every row of their source.
    const struct {
        const char *row;
        size_t moved;
    } cases[] = {{"1byte/1080p_540p", P1080 + P540},
                 {"1byte/1080p_720p", P1080 + P720},
                 {"1byte/720p_1080p", P720 + P1080},
                 {"3bytes/1080p_720p", 3 * (P1080 + P720)},
                 {"3bytes/360p_540p", 3 * (P360 + P540)},
                 {"4bytes/1080p_720p", 4 * (P1080 + P720)},
                 {"4bytes/360p_540p", 4 * (P360 + P540)},
                 {"r8g8b8_to_rgb888/1080p_720p", 3 * (P1080 + P720)},
                 {"r8g8b8_to_rgba8888/1080p_720p", 3 * P1080 + 4 * P720},
                 {"yuv444_to_rgb888/1080p_720p", 3 * (P1080 + P720)},
                 {"yuv444_to_rgba8888/1080p_540p", 3 * P1080 + 4 * P540},
                 {"yuv444_to_rgba8888/360p_540p", 3 * P360 + 4 * P540}};
    for (const auto &[row, moved] : cases) add_memory_bound("resize_" + std::string(row), moved);
}

// Dependent additions: one per cycle of the processor's clock.
void add_cycles(const std::string &row, const std::string &why, int64_t cycles) {
    add_side(row, "bound " + why, [cycles] {
        uint64_t sum = 0, one = 1;
        benchmark::DoNotOptimize(one);
        for (int64_t left = cycles; left > 0; left -= 32) {
#pragma GCC unroll 32
            for (int i = 0; i < 32; i++) {
                sum += one;
                __asm__ volatile("" : "+r"(sum));
            }
        }
        return sum;
    });
}

// The 64 steps of a block are a dependency chain: 16 times 5 + 4 + 4 + 5 operations.
void add_md5_bounds() {
    for (const size_t size : {size_t{64}, size_t{1500}, size_t{1} << 20}) {
        const size_t padded = (size + 1 + 8 + 63) / 64 * 64;
        add_cycles("md5/" + std::to_string(size), "288 cycles a block",
                   static_cast<int64_t>(padded / 64 * 288));
    }
}

// Reads every byte once.
void add_reading_bounds() {
    const auto unit = std::make_shared<std::vector<uint8_t>>(1 << 20, uint8_t{1});
    for (const char *name : {"h264 1%", "h264 25%", "hevc 5%", "mpeg4 5%"}) {
        add_side("is_vkeyfrm/" + std::string(name) + " zeros", "bound memchr",
                 [unit] { return memchr(unit->data(), 0, unit->size()); });
    }
}

}  // namespace

void add_bounds() {
    add_conversion_bounds();
    add_resize_bounds();
    add_md5_bounds();
    add_reading_bounds();
}
