#include <gtest/gtest.h>

#include <algorithm>
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

// Expected bytes: each plane by the single-channel resizer, then pixel by pixel.
Bytes expected(const Combined &c, const std::vector<Bytes> &scaled, int w, int h) {
    Bytes out;
    for (size_t i = 0; i < static_cast<size_t>(w * h); i++) {
        uint8_t in[4] = {0, 0, 0, 255};
        for (int p = 0; p < c.planes; p++) in[p] = scaled[static_cast<size_t>(p)][i];
        int rgb[3] = {in[0], in[1], in[2]};
        const int column = static_cast<int>(i) % w;
        if (c.yuv) to_rgb(in, column < w / 8 * 8, rgb);
        for (int k : rgb) out.push_back(static_cast<uint8_t>(k));
        if (c.bytes == 4) out.push_back(in[3]);
    }
    return out;
}

TEST(CscRsz, IsResizingOfEachPlaneThenConversionByGroupsOfEight) {
    const int sizes[][4] = {{40, 30, 24, 20}, {33, 17, 50, 40}, {20, 20, 7, 9}, {64, 64, 9, 5},
                            {5, 4, 16, 3},    {1, 1, 13, 2},    {100, 9, 31, 9}};
    for (const Combined &c : ROUTINES) {
        for (const auto &s : sizes) {
            std::vector<Bytes> scaled;
            std::vector<std::unique_ptr<GuardedBytes>> planes;
            uint8_t *src[4] = {};
            int32_t src_stride[4] = {};
            for (int p = 0; p < c.planes; p++) {
                src_stride[p] = s[0] + 5 * p;
                planes.push_back(std::make_unique<GuardedBytes>(
                    random_bytes(static_cast<size_t>(src_stride[p] * (s[1] - 1) + s[0]),
                                 static_cast<unsigned>(p))));
                src[p] = planes.back()->data();
                int32_t step_x, step_y;
                bilinear_rsz_step_size(s[0], s[1], s[2], s[3], &step_x, &step_y);
                scaled.emplace_back(s[2] * s[3]);
                tavu_irsz8b_full(src[p], src_stride[p], s[2], s[3], s[2], scaled.back().data(),
                                 step_x, step_y);
            }
            // Rows of the target stand apart; what is between them stays.
            const int row = s[2] * c.bytes, stride = row + 11;
            GuardedBytes target(static_cast<size_t>(stride * (s[3] - 1) + row));
            uint8_t *dst[4] = {target.data()};
            const int32_t dst_stride[4] = {stride};
            c.routine(src, s[0], s[1], src_stride, 0, dst, s[2], s[3], dst_stride, 501);
            const Bytes pixels = expected(c, scaled, s[2], s[3]);
            for (int y = 0; y < s[3]; y++) {
                ASSERT_TRUE(std::equal(target.data() + y * stride, target.data() + y * stride + row,
                                       pixels.begin() + y * row))
                    << s[0] << 'x' << s[1] << " to " << s[2] << 'x' << s[3] << ", row " << y;
                for (int i = row; y + 1 < s[3] && i < stride; i++) {
                    ASSERT_EQ(target.data()[y * stride + i], GuardedBytes::CANARY);
                }
            }
            EXPECT_TRUE(target.front_is_intact());
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
