// Every variant of every kernel against its model: all widths around a vector, all alignments,
// several strides and kinds of data, between unreadable pages and canaries.
#include "kernels.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "memory.h"

namespace {

enum Content { RANDOM, EXTREME, RAMP, SINGLE_HOT, CONTENTS };

Bytes make_content(int content, size_t size, unsigned seed) {
    Bytes bytes = random_bytes(size, seed);
    for (size_t i = 0; i < size; i++) {
        if (content == EXTREME) bytes[i] = bytes[i] & 1 ? 255 : 0;
        if (content == RAMP) bytes[i] = static_cast<uint8_t>(i * (seed % 5 + 1));
        if (content == SINGLE_HOT) bytes[i] = i == seed % size ? 255 : 0;
    }
    return bytes;
}

struct Shape {
    int width, height, src_stride, dst_stride;
};

// Runs one routine into a target that ends at an unreadable page; source planes end at one too,
// each `slack` bytes from it. The target's rows keep what was between them.
Bytes run(const CscKernel &kernel, tavu_fn_csc_t routine, const Shape &s, int32_t code, int content,
          size_t slack) {
    std::vector<std::unique_ptr<GuardedBytes>> planes;
    uint8_t *src[4] = {};
    for (int p = 0; p < kernel.src_planes; p++) {
        const auto size = static_cast<size_t>(s.src_stride * (s.height - 1) + s.width) + slack;
        planes.push_back(std::make_unique<GuardedBytes>(
            make_content(content, size, static_cast<unsigned>(s.width * 31 + p))));
        src[p] = planes.back()->data();
    }
    GuardedBytes target(
        static_cast<size_t>(s.dst_stride * (s.height - 1) + s.width * kernel.dst_bytes) + slack);
    // B, G, R order goes through the third pointer; the others must not be touched.
    const bool third = code == 401 || code == 501, units = code == 200;
    GuardedBytes alpha(static_cast<size_t>(s.src_stride * (s.height - 1) + s.width) + slack);
    uint8_t *dst[4] = {};
    dst[third ? 2 : 0] = target.data();
    if (kernel.alpha_target) dst[1] = alpha.data();
    // Packed targets take the first source stride for all planes; rows of units lie twice the
    // stride less twice the width apart.
    const int32_t other = units ? s.src_stride : -1;
    const int32_t src_stride[4] = {s.src_stride, other, other, other};
    const int32_t dst_stride[4] = {units ? s.dst_stride / 2 + s.width : s.dst_stride, other};
    routine(src, s.width, s.height, src_stride, 13, dst, 0, 0, dst_stride, code);
    EXPECT_TRUE(target.front_is_intact());
    EXPECT_TRUE(alpha.front_is_intact());
    Bytes written = target.bytes();
    const Bytes alpha_written = alpha.bytes();
    written.insert(written.end(), alpha_written.begin(), alpha_written.end());
    return written;
}

void expect_equal_to_model(const CscKernel &kernel, const Shape &shape, int32_t code, int content,
                           size_t slack) {
    const Bytes expected = run(kernel, kernel.model, shape, code, content, slack);
    for (const CscVariant &variant : kernel.variants) {
        ASSERT_EQ(run(kernel, variant.run, shape, code, content, slack), expected)
            << kernel.name << ' ' << variant.level << " to " << code << ", " << shape.width << 'x'
            << shape.height << ", strides " << shape.src_stride << ' ' << shape.dst_stride
            << ", content " << content << ", slack " << slack;
    }
}

TEST(Kernels, EqualTheirModelsInEveryShape) {
    for (const CscKernel &kernel : csc_kernels()) {
        for (int width = 0; width <= 100; width++) {
            const int row = width * kernel.dst_bytes;
            const Shape shapes[] = {{width, 1, width, row},
                                    {width, 3, width, row},
                                    {width, 2, width + 1, row + 1},
                                    {width, 2, width + 37, row + 101}};
            for (const Shape &shape : shapes) {
                const int32_t code = kernel.codes[static_cast<size_t>(width) % kernel.codes.size()];
                expect_equal_to_model(kernel, shape, code, width % CONTENTS, 0);
                if (HasFatalFailure()) return;
            }
        }
        for (size_t slack = 0; slack < 16; slack++) {
            for (int32_t code : kernel.codes) {
                for (int content = 0; content < CONTENTS; content++) {
                    expect_equal_to_model(kernel, {67, 2, 80, 300}, code, content, slack);
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
}

// The algebra of the vector forms, against the equations: all chroma pairs, and luma in 16 steps.
TEST(Kernels, ColourArithmeticIsExact) {
    const auto clamp = [](int x) { return x < 0 ? 0 : x > 255 ? 255 : x; };
    for (const CscKernel &kernel : csc_kernels()) {
        if (std::string(kernel.name) != "yuv444_to_rgb888") continue;
        for (const CscVariant &variant : kernel.variants) {
            for (int u = 0; u < 256; u++) {
                Bytes planes[3], out(4096 * 3);
                for (int i = 0; i < 4096; i++) {
                    planes[0].push_back(static_cast<uint8_t>(i % 16 * 17));
                    planes[1].push_back(static_cast<uint8_t>(u));
                    planes[2].push_back(static_cast<uint8_t>(i / 16));
                }
                uint8_t *src[4] = {planes[0].data(), planes[1].data(), planes[2].data(), nullptr};
                uint8_t *dst[4] = {out.data()};
                const int32_t stride[4] = {};
                variant.run(src, 4096, 1, stride, 13, dst, 0, 0, stride, 400);
                for (int i = 0; i < 4096; i++) {
                    const int y = i % 16 * 17, v = i / 16 - 128, b = u - 128;
                    const auto *p = &out[static_cast<size_t>(3 * i)];
                    ASSERT_EQ(p[0], clamp(y + ((359 * v + 128) >> 8)));
                    ASSERT_EQ(p[1], clamp(y - ((183 * v + 88 * b + 128) >> 8)));
                    ASSERT_EQ(p[2], clamp(y + ((454 * b + 128) >> 8)));
                }
            }
        }
    }
}

}  // namespace
