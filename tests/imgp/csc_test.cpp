// The scalar results of the conversions: values computed by hand, properties, and the oddities.
#include <gtest/gtest.h>

#include <cmath>

#include "memory.h"
#include "tavu.h"

namespace {

// A picture of `w` x 2 with its own stride for each plane.
struct Planes {
    Planes(int w, int step) {
        for (int p = 0; p < 4; p++) {
            stride[p] = w * step + 3 + p;
            bytes[p] = random_bytes(static_cast<size_t>(2 * stride[p]), static_cast<unsigned>(p));
            at[p] = bytes[p].data();
        }
    }
    int sample(int plane, int x, int y) const {
        return bytes[plane][static_cast<size_t>(y * stride[plane] + x)];
    }
    Bytes bytes[4];
    uint8_t *at[4];
    int32_t stride[4];
};

// Checks random colours by the equations, in planes of unequal strides; the first channels of a
// source may be interleaved.
TEST(RgbToYuv, IsExactInEveryPlane) {
    const auto chroma = [](double t) { return t + 128 > 255 ? 255 : static_cast<int>(t) + 128; };
    for (int round = 0; round < 8; round++) {
        const int step = 3 + round % 2, together = 1 + round / 2;
        constexpr int W = 1000;
        Planes src(W * step, 1), dst(W, 1);
        for (int p = 1; p < std::min(step, together); p++) {
            src.at[p] = src.at[0] + p;
            src.stride[p] = src.stride[0];
        }
        const auto in = [&](int p, int x, int y) {
            return src.at[p][y * src.stride[p] + x * step];
        };
        const Planes untouched(W, 1);
        for (int p = 0; p < 3; p++) {  // blue and red, whose chroma of 256 is stored as 255
            src.at[p][0] = p == 2 ? 255 : 0;
            src.at[p][step] = p == 0 ? 255 : 0;
        }
        const auto routine = step == 3 ? tavu_csc_r8g8b8_to_yuv444 : tavu_csc_r8g8b8a8_to_yuv444a8;
        routine(src.at, W, 2, src.stride, 0, dst.at, 0, 0, dst.stride, 13);
        EXPECT_EQ(dst.sample(0, 0, 0) | dst.sample(1, 0, 0) << 8 | dst.sample(2, 0, 0) << 16,
                  29 | 255 << 8 | 107 << 16);
        for (int i = 0; i < 2 * W; i++) {
            const int x = i % W, y = i / W, r = in(0, x, y), g = in(1, x, y), b = in(2, x, y);
            ASSERT_EQ(dst.sample(0, x, y), std::floor((77 * r + 150 * g + 29 * b + 128) / 256.0));
            ASSERT_EQ(dst.sample(1, x, y),
                      chroma(std::floor((-43 * r - 85 * g + 128 * b + 128) / 256.0)));
            ASSERT_EQ(dst.sample(2, x, y),
                      chroma(std::floor((128 * r - 107 * g - 21 * b + 128) / 256.0)));
            ASSERT_EQ(dst.sample(3, x, y), step == 4 ? in(3, x, y) : untouched.sample(3, x, y));
        }
        EXPECT_EQ(dst.sample(0, W, 0), untouched.sample(0, W, 0));
    }
}

TEST(ToYuv, CopiesThreePlanesAndAFourthOnlyIfBothSidesHaveIt) {
    for (int32_t code : {13, 43}) {
        for (bool alpha : {false, true}) {
            Planes src(9, 1), dst(9, 2);
            const Planes before(9, 2);
            if (!alpha) src.at[3] = nullptr;
            tavu_csc_yuv444x_to_yuv444x(src.at, 9, 2, src.stride, 43, dst.at, 9, 2, dst.stride,
                                        code);
            for (int p = 0; p < 4; p++) {
                const bool copied = p < 3 || (alpha && code == 43);
                for (int x = 0; x < dst.stride[p]; x++) {
                    for (int y = 0; y < 2; y++) {
                        EXPECT_EQ(dst.sample(p, x, y),
                                  copied && x < 9 ? src.sample(p, x, y) : before.sample(p, x, y));
                    }
                }
            }
        }
    }
}

// Compares each 5-6-5 routine with the 8-bit result truncated to 5, 6 and 5 bits; checks its alpha.
TEST(To565, TruncatesTheEightBitResult) {
    enum AlphaRule { NONE, OPAQUE, PLANE };
    const struct {
        tavu_fn_csc_t routine;
        tavu_fn_csc_t eight_bits;
        AlphaRule alpha;
        int alpha_step;
    } cases[] = {{tavu_csc_yuv444_to_rgb565, tavu_csc_yuv444_to_rgb888, NONE, 1},
                 {tavu_csc_yuv444_to_rgb565a8, tavu_csc_yuv444_to_rgb888, OPAQUE, 1},
                 {tavu_csc_yuv444a8_to_rgb565a8, tavu_csc_yuv444_to_rgb888, PLANE, 1},
                 {tavu_csc_yuv444a8_to_rgba5658, tavu_csc_yuv444_to_rgb888, PLANE, 3},
                 {tavu_csc_r8g8b8_to_rgb565, tavu_csc_r8g8b8_to_rgb888, NONE, 1},
                 {tavu_csc_x8y8z8_to_xyz565a8, tavu_csc_r8g8b8_to_rgb888, OPAQUE, 1},
                 {tavu_csc_x8y8z8a8_to_xyz565a8, tavu_csc_r8g8b8_to_rgb888, PLANE, 1},
                 {tavu_csc_r8g8b8a8_to_rgba5658, tavu_csc_r8g8b8_to_rgb888, PLANE, 3}};
    constexpr int W = 11;
    for (size_t i = 0; i < std::size(cases); i++) {
        const auto &c = cases[i];
        SCOPED_TRACE(i);
        Planes src(W, 1);
        const bool grey = c.routine == tavu_csc_r8g8b8a8_to_rgba5658;  // uses only plane 0
        if (grey) src.at[1] = src.at[2] = nullptr;
        // The padding of a row of 5-6-5 pixels counts twice.
        constexpr int STRIDES[4] = {2 * W + 8, 40}, ROW = 2 * STRIDES[0] - 2 * W;
        GuardedBytes units(ROW + 2 * W);
        GuardedBytes alpha(static_cast<size_t>(40 + (W - 1) * c.alpha_step + 1));
        uint8_t *dst[4] = {units.data(), c.alpha == NONE ? nullptr : alpha.data()};
        Bytes expected_units = units.bytes(), expected_alpha = alpha.bytes();
        c.routine(src.at, W, 2, src.stride, 0, dst, 0, 0, STRIDES, 0);
        for (int y = 0; y < 2; y++) {
            uint8_t rgb[3 * W], *out[4] = {rgb}, *row[4];
            for (int p = 0; p < 3; p++)
                row[p] = src.at[grey ? 0 : p] + y * src.stride[grey ? 0 : p];
            c.eight_bits(row, W, 1, src.stride, 0, out, 0, 0, STRIDES, 400);
            for (int x = 0; x < W; x++) {
                const uint8_t *pixel = rgb + 3 * x;
                const int unit = pixel[0] / 8 << 11 | pixel[1] / 4 << 5 | pixel[2] / 8;
                const auto at = static_cast<size_t>(ROW * y + 2 * x);
                expected_units[at] = static_cast<uint8_t>(unit);
                expected_units[at + 1] = static_cast<uint8_t>(unit >> 8);
                if (c.alpha == NONE) continue;
                expected_alpha[static_cast<size_t>(40 * y + x * c.alpha_step)] =
                    static_cast<uint8_t>(c.alpha == PLANE ? src.sample(3, x, y) : 255);
            }
        }
        EXPECT_EQ(units.bytes(), expected_units);
        EXPECT_EQ(alpha.bytes(), expected_alpha);
    }
}

// If the two streams of 430 overlap, each pixel's colour is written before its alpha.
TEST(To565, OverlappingStreamsAreWrittenPixelByPixel) {
    constexpr int W = 40;
    Planes src(W, 1);
    Bytes out(3 * W), expected(3 * W), units(2 * W), alpha(3 * W);
    uint8_t *together[4] = {out.data(), out.data() + 2}, *apart[4] = {units.data(), alpha.data()};
    const int32_t stride[4] = {};
    tavu_csc_yuv444a8_to_rgba5658(src.at, W, 1, src.stride, 43, together, 0, 0, stride, 430);
    tavu_csc_yuv444a8_to_rgba5658(src.at, W, 1, src.stride, 43, apart, 0, 0, stride, 430);
    for (size_t x = 0; x < W; x++) {
        expected[2 * x] = units[2 * x];
        expected[2 * x + 1] = units[2 * x + 1];
        expected[3 * x + 2] = alpha[3 * x];
    }
    EXPECT_EQ(out, expected);
}

// The target code selects the order and the pointer, even if it is not one of the named codes.
TEST(ToPacked, OrderAndPointerFollowTheTargetCode) {
    const struct {
        tavu_fn_csc_t routine;
        int32_t code;
        bool third;
        Bytes pixel;
    } cases[] = {{tavu_csc_r8g8b8_to_rgb888, 400, false, {100, 90, 200}},
                 {tavu_csc_r8g8b8_to_rgb888, 401, true, {200, 90, 100}},
                 {tavu_csc_r8g8b8_to_rgb888, 0, true, {200, 90, 100}},
                 {tavu_csc_r8g8b8_to_rgba8888, 500, false, {100, 90, 200, 255}},
                 {tavu_csc_r8g8b8_to_rgba8888, 501, true, {200, 90, 100, 255}},
                 {tavu_csc_r8g8b8_to_rgba8888, 502, false, {100, 90, 200, 255}},
                 {tavu_csc_r8g8b8a8_to_rgba8888, 501, true, {200, 90, 100, 7}},
                 {tavu_csc_r8g8b8a8_to_rgba8888, 430, false, {100, 90, 200, 7}},
                 {tavu_csc_yuv444_to_rgb888, 401, true, {33, 62, 201}},
                 {tavu_csc_yuv444_to_rgb888, 402, false, {201, 62, 33}},
                 {tavu_csc_yuv444_to_rgba8888, 501, true, {33, 62, 201, 255}},
                 {tavu_csc_yuv444_to_rgba8888, 503, false, {201, 62, 33, 255}},
                 {tavu_csc_yuv444a8_to_rgba8888, 501, true, {33, 62, 201, 7}}};
    for (const auto &c : cases) {
        // The second of two rows; all planes advance by the first stride.
        const size_t bytes = c.pixel.size();
        uint8_t samples[8] = {0, 0, 0, 0, 100, 90, 200, 7};
        Bytes first(2 * bytes + 1), third(first.size());
        uint8_t *src[4] = {samples, samples + 1, samples + 2, samples + 3};
        uint8_t *dst[4] = {first.data(), nullptr, third.data(), nullptr};
        const int32_t src_stride[4] = {4}, dst_stride[4] = {static_cast<int32_t>(bytes) + 1};
        c.routine(src, 1, 2, src_stride, 0, dst, 0, 0, dst_stride, c.code);
        const Bytes &used = c.third ? third : first;
        EXPECT_EQ(Bytes(&used[bytes + 1], &used[2 * bytes] + 1), c.pixel) << c.code;
        EXPECT_EQ(c.third ? first : third, Bytes(first.size())) << c.code;
    }
}

TEST(Conversions, WriteNothingWithoutWidthOrHeight) {
    const tavu_fn_csc_t routines[] = {tavu_csc_yuv444_to_rgb888, tavu_csc_r8g8b8a8_to_rgba8888,
                                      tavu_csc_yuv444a8_to_rgba5658, tavu_csc_r8g8b8a8_to_yuv444a8,
                                      tavu_csc_yuv444x_to_yuv444x};
    for (tavu_fn_csc_t routine : routines) {
        Planes src(4, 4), dst(4, 4);
        const Planes before(4, 4);
        for (int n : {0, -1, INT32_MIN}) {
            routine(src.at, 4, n, src.stride, 0, dst.at, 4, 4, dst.stride, 43);
            routine(src.at, n == INT32_MIN ? -5 : n, 2, src.stride, 0, dst.at, 4, 4, dst.stride,
                    43);
        }
        for (int p = 0; p < 4; p++) EXPECT_EQ(dst.bytes[p], before.bytes[p]);
    }
}

}  // namespace
