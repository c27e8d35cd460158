// One call of every kernel between two calls of mark(), for counting instructions under emulation.
// Prints, in this order, the names and the divisor of each count.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "picture.h"

extern "C" __attribute__((noinline)) void mark() { __asm__ volatile("" ::: "memory"); }

namespace {

template <class Call>
void count(const std::string &name, double units, Call call) {
    mark();
    call();
    mark();
    std::printf("%s|%g\n", name.c_str(), units);
}

void count_conversions() {
    constexpr int32_t W = 1920, H = 2;
    for (const CscKernel &kernel : csc_kernels()) {
        Picture picture(kernel, W, H);
        count("csc_" + std::string(kernel.name) + " per 8 pixels", W * H / 8.0,
              [&] { picture.convert(kernel.variants[0].run); });
    }
}

alignas(64) uint8_t blocks[2][64 * 64];

void count_metrics() {
    for (const auto &k : block_kernels()) {
        count(k.name, 1, [&] { k.variants[0].run(blocks[0], blocks[1], 64, 64); });
    }
    for (const auto &k : area_kernels()) {
        for (const int32_t size : {8, 16}) {
            const std::string shape = std::to_string(size) + 'x' + std::to_string(size);
            count(std::string(k.name) + ' ' + shape, 1,
                  [&] { k.variants[0].run(size, size, blocks[0], blocks[1], 64, 64); });
        }
    }
}

uint8_t source[1920 * 1080], target[960 * 540];

struct Size {
    int32_t w, h;
};
constexpr Size P180{320, 180}, P270{480, 270}, P360{640, 360}, P540{960, 540}, P1080{1920, 1080};

void count_resize(const ResizeKernel &kernel, const std::string &what, Size from, Size to) {
    int32_t step_x, step_y;
    bilinear_rsz_step_size(from.w, from.h, to.w, to.h, &step_x, &step_y);
    const int32_t src_line = from.w * kernel.src_bytes, dst_line = to.w * kernel.dst_bytes;
    count(
        "resize " + std::string(kernel.name) + ' ' + what + " per target pixel", to.w * to.h, [&] {
            kernel.variants[0].full(source, src_line, to.w, to.h, dst_line, target, step_x, step_y);
        });
}

void count_combined(const CscKernel &kernel, const std::string &what, Size from, Size to) {
    Picture picture(kernel, from.w, from.h, to.w, to.h);
    count("resize " + std::string(kernel.name) + ' ' + what + " per target pixel", to.w * to.h,
          [&] { picture.convert(kernel.variants[0].run); });
}

void count_resizes() {
    for (const ResizeKernel &kernel : resize_kernels()) {
        if (kernel.src_bytes != kernel.dst_bytes || kernel.line_unit > 1) continue;  // scalar
        count_resize(kernel, "1.5x down", P270, P180);
        count_resize(kernel, "1.5x up", P180, P270);
        if (kernel.src_bytes > 1) continue;
        count_resize(kernel, "to half", P360, P180);
        count_resize(kernel, "to quarter", P360, {160, 90});
        count_resize(kernel, "1080p to 540p", P1080, P540);
    }
    for (const CscKernel &kernel : csc_rsz_kernels()) {
        count_combined(kernel, "1.5x down", P270, P180);
        if (kernel.src_planes == 4 || kernel.dst_bytes[0] == 3) continue;
        count_combined(kernel, "to half", P360, P180);
        count_combined(kernel, "1.5x up", P180, P270);
    }
}

void count_memory() {
    constexpr int32_t size = 1 << 14;
#define FILL(name, pattern, ...)                                    \
    count(&#name[strlen("tavu_")] + std::string(" per byte"), size, \
          [] { name(target, __VA_ARGS__); });
#include "kernels.def"
    count("mcpy_pic per byte", size,
          [] { tavu_mcpy_pic(target, source, 128, 128, 128, size / 128); });
    count("mcpy_pic per byte, rows of 128", size,
          [] { tavu_mcpy_pic(target, source, 192, 192, 128, size / 128); });
    count("mcpy_blk 8x8", 1, [] { tavu_mcpy_blk(target, source, 64, 64, 8, 8); });
    count("mcpy_blk 16x16", 1, [] { tavu_mcpy_blk(target, source, 64, 64, 16, 16); });
}

void count_streams() {
    constexpr uint32_t BLOCKS = 16;
    tavu_md5_t md5;
    tavu_md5_init(&md5);
    count("md5 per block", BLOCKS, [&] { tavu_md5_update(&md5, source, 64 * BLOCKS); });
    constexpr int32_t BYTES = 1 << 12;
    static uint8_t unit[BYTES];
    for (uint8_t &byte : unit) byte = 9;
    count("is_vkeyfrm h264 per byte", BYTES,
          [] { tavu_is_vkeyfrm(TAVU_MT_VID_H264, unit, BYTES); });
}

}  // namespace

int main() {
    count_conversions();
    count_metrics();
    count_resizes();
    count_memory();
    count_streams();
    return 0;
}
