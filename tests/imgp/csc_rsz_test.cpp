#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "memory.h"
#include "tavu.h"

namespace {

struct Combined {
    tavu_fn_csc_t routine;
    bool yuv;
    int planes, bytes;
};

const Combined ROUTINES[] = {{tavu_csc_rsz_r8g8b8_to_rgb888, false, 3, 3},
                             {tavu_csc_rsz_r8g8b8_to_rgba8888, false, 3, 4},
                             {tavu_csc_rsz_r8g8b8a8_to_rgba8888, false, 4, 4},
                             {tavu_csc_rsz_yuv444_to_rgb888, true, 3, 3},
                             {tavu_csc_rsz_yuv444_to_rgba8888, true, 3, 4},
                             {tavu_csc_rsz_yuv444a8_to_rgba8888, true, 4, 4}};

int clamp(int x) { return x < 0 ? 0 : x > 255 ? 255 : x; }
int wrap16(int x) { return static_cast<int16_t>(x); }

// One pixel, its products wrapped to 16 bits or not.
void to_rgb(const uint8_t *yuv, bool wrap, int *rgb) {
    const int y = yuv[0], u = yuv[1] - 128, v = yuv[2] - 128;
    const auto term = [wrap](int x) { return ((wrap ? wrap16(x) : x) + 128) >> 8; };
    rgb[0] = clamp(y + term(359 * v));
    rgb[1] = clamp(y - term(183 * v + 88 * u));
    rgb[2] = clamp(y + term(454 * u));
}

constexpr int GAP = 11;  // canaries between the rows of the target

// Expected bytes: each plane by the single-channel resizer, then pixel by pixel.
Bytes expected(const Combined &c, const std::vector<Bytes> &scaled, size_t w, size_t h,
               bool bottom_up) {
    Bytes out;
    for (size_t at = 0; at < w * h; at++) {
        if (at > 0 && at % w == 0) out.insert(out.end(), GAP, GuardedBytes::CANARY);
        const size_t i = (bottom_up ? h - 1 - at / w : at / w) * w + at % w;
        uint8_t in[4] = {0, 0, 0, 255};
        for (size_t p = 0; p < scaled.size(); p++) in[p] = scaled[p][i];
        int rgb[3] = {in[0], in[1], in[2]};
        if (c.yuv) to_rgb(in, i % w < w / 8 * 8, rgb);
        for (int k : rgb) out.push_back(static_cast<uint8_t>(k));
        if (c.bytes == 4) out.push_back(in[3]);
    }
    return out;
}

TEST(CscRsz, IsResizingOfEachPlaneThenConversionByGroupsOfEight) {
    const int sizes[][4] = {{40, 30, 24, 20}, {33, 17, 50, 40}, {20, 20, 7, 9}, {64, 64, 9, 5},
                            {5, 4, 16, 3},    {1, 1, 13, 2},    {100, 9, 31, 9}};
    for (const Combined &c : ROUTINES) {
        for (const auto &[sw, sh, dw, dh] : sizes) {
            std::vector<Bytes> scaled;
            std::vector<std::unique_ptr<GuardedBytes>> planes;
            uint8_t *src[4] = {};
            int32_t src_stride[4] = {}, step_x, step_y;
            bilinear_rsz_step_size(sw, sh, dw, dh, &step_x, &step_y);
            for (int p = 0; p < c.planes; p++) {
                src_stride[p] = sw + 5 * p;
                const auto size = static_cast<size_t>(src_stride[p] * (sh - 1) + sw);
                planes.push_back(
                    std::make_unique<GuardedBytes>(random_bytes(size, static_cast<unsigned>(p))));
                src[p] = planes.back()->data();
                scaled.emplace_back(dw * dh);
                tavu_irsz8b_full(src[p], src_stride[p], dw, dh, dw, scaled.back().data(), step_x,
                                 step_y);
            }
            for (const bool bottom_up : {false, true}) {
                const int32_t stride = dw * c.bytes + GAP;
                const int32_t dst_stride[4] = {bottom_up ? -stride : stride};
                GuardedBytes target(static_cast<size_t>(stride * dh - GAP));
                uint8_t *dst[4] = {target.data() + (bottom_up ? stride * (dh - 1) : 0)};
                c.routine(src, sw, sh, src_stride, 0, dst, dw, dh, dst_stride, 501);
                ASSERT_EQ(target.bytes(), expected(c, scaled, static_cast<size_t>(dw),
                                                   static_cast<size_t>(dh), bottom_up))
                    << sw << 'x' << sh << " to " << dw << 'x' << dh << ' ' << bottom_up;
                EXPECT_TRUE(target.front_is_intact());
            }
        }
    }
}

// The same strong red: wrapped in the group of eight, exact in the remainder.
TEST(CscRsz, BothArithmeticsStandInOneRow) {
    Bytes y(64, 128), u(64, 128), v(64, 255);
    uint8_t *src[4] = {y.data(), u.data(), v.data()}, out[11 * 3], *dst[4] = {out};
    const int32_t src_stride[4] = {8, 8, 8}, dst_stride[4] = {33};
    tavu_csc_rsz_yuv444_to_rgb888(src, 8, 8, src_stride, 13, dst, 11, 1, dst_stride, 400);
    for (int i = 0; i < 11; i++) EXPECT_EQ(out[3 * i], i < 8 ? 50 : 255) << i;
}

}  // namespace
