// One call of every kernel between two calls of mark(), for counting instructions under emulation.
// Prints, in this order, the names and the divisor of each count.
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

uint8_t source[1920 * 1080], target[960 * 540];

struct Size {
    int32_t w, h;
};
constexpr Size P180{320, 180}, P270{480, 270}, P360{640, 360}, P540{960, 540}, P1080{1920, 1080};

void count_resize(const std::string &name, tavu_irsz_full_t *resize, int32_t bytes, Size from,
                  Size to) {
    int32_t step_x, step_y;
    bilinear_rsz_step_size(from.w, from.h, to.w, to.h, &step_x, &step_y);
    count("resize " + name + " per target pixel", to.w * to.h, [&] {
        resize(source, from.w * bytes, to.w, to.h, to.w * bytes, target, step_x, step_y);
    });
}

void count_combined(const std::string &name, tavu_fn_csc_t resize, int32_t bytes, Size from,
                    Size to) {
    const int32_t plane = from.w * from.h;
    uint8_t *const src[4] = {source, source + plane, source + 2 * plane};
    uint8_t *const dst[4] = {target};
    const int32_t src_stride[4] = {from.w, from.w, from.w}, dst_stride[4] = {to.w * bytes};
    count("resize " + name + " per target pixel", to.w * to.h, [&] {
        resize(src, from.w, from.h, src_stride, 13, dst, to.w, to.h, dst_stride, 100 + bytes * 100);
    });
}

void count_resizes() {
    count_resize("1 byte to half", tavu_irsz8b_full, 1, P360, P180);
    count_resize("1 byte, 1080p to 540p", tavu_irsz8b_full, 1, P1080, P540);
    count_resize("1 byte 1.5x up", tavu_irsz8b_full, 1, P180, P270);
    count_resize("1 byte to quarter", tavu_irsz8b_full, 1, P360, {160, 90});
    count_resize("1 byte 1.5x down", tavu_irsz8b_full, 1, P270, P180);
    count_resize("3 bytes 1.5x down", tavu_irsz8b8b8b_full, 3, P270, P180);
    count_resize("3 bytes 1.5x up", tavu_irsz8b8b8b_full, 3, P180, P270);
    count_resize("4 bytes 1.5x down", tavu_irsz8b8b8b8b_full, 4, P270, P180);
    count_resize("4 bytes 1.5x up", tavu_irsz8b8b8b8b_full, 4, P180, P270);
    count_combined("yuv444 to rgb888 1.5x down", tavu_csc_rsz_yuv444_to_rgb888, 3, P270, P180);
    count_combined("yuv444 to rgba8888 to half", tavu_csc_rsz_yuv444_to_rgba8888, 4, P360, P180);
    count_combined("yuv444 to rgba8888 1.5x up", tavu_csc_rsz_yuv444_to_rgba8888, 4, P180, P270);
    count_combined("r8g8b8 to rgb888 1.5x down", tavu_csc_rsz_r8g8b8_to_rgb888, 3, P270, P180);
    count_combined("r8g8b8 to rgba8888 1.5x down", tavu_csc_rsz_r8g8b8_to_rgba8888, 4, P270, P180);
}

void count_memory() {
    constexpr int32_t BYTES = 1 << 14;
    count("mset_x32 per byte", BYTES, [] { tavu_mset_x32(target, 0x11223344, BYTES); });
    count("mset_x64 per byte", BYTES, [] { tavu_mset_x64(target, 7, BYTES); });
    count("mcpy_pic per byte", BYTES,
          [] { tavu_mcpy_pic(target, source, 128, 128, 128, BYTES / 128); });
    count("mcpy_pic per byte, rows of 128", BYTES,
          [] { tavu_mcpy_pic(target, source, 192, 192, 128, BYTES / 128); });
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
