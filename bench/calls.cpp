// One call of every kernel between two calls of mark(), for counting instructions under emulation.
// Prints, in order, the names and what a count is to be divided by.
#include <cstdint>
#include <cstdio>
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

void count_block(const char *name, tavu_metric_block_t *metric) {
    count(name, 1, [metric] { metric(blocks[0], blocks[1], 64, 64); });
}

void count_area(const char *name, tavu_metric_area_t *metric, int32_t size) {
    count(name, 1, [metric, size] { metric(size, size, blocks[0], blocks[1], 64, 64); });
}

void count_metrics() {
    count_block("sad 4x4", tavu_sad4x4);
    count_block("sad 8x8", tavu_sad8x8);
    count_block("sad 16x16", tavu_sad16x16);
    count_block("satd 4x4", tavu_satd4x4);
    count_block("satd 8x8", tavu_satd8x8);
    count_area("satd 16x16 of 4x4", tavu_satd, 16);
    count_area("satd 16x16 of 8x8", tavu_satd2, 16);
    count_area("ssd 8x8", tavu_ssd, 8);
    count_area("ssd 16x16", tavu_ssd, 16);
}

uint8_t source[1280 * 720 * 4], target[1280 * 720 * 4];

void count_resize(const std::string &name, tavu_irsz_full_t *resize, int32_t bytes, int32_t src_w,
                  int32_t src_h, int32_t dst_w, int32_t dst_h) {
    int32_t step_x, step_y;
    bilinear_rsz_step_size(src_w, src_h, dst_w, dst_h, &step_x, &step_y);
    count(name + " per target pixel", dst_w * dst_h, [&] {
        resize(source, src_w * bytes, dst_w, dst_h, dst_w * bytes, target, step_x, step_y);
    });
}

void count_resizes() {
    count_resize("resize 1 byte to half", tavu_irsz8b_full, 1, 640, 360, 320, 180);
    count_resize("resize 1 byte 1.5x up", tavu_irsz8b_full, 1, 320, 180, 480, 270);
    count_resize("resize 4 bytes 1.5x down", tavu_irsz8b8b8b8b_full, 4, 480, 270, 320, 180);
}

}  // namespace

int main() {
    count_conversions();
    count_metrics();
    count_resizes();
    return 0;
}
