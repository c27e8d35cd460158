// Compares every variant of every kernel with its model: all widths around a vector, all
// alignments, several strides and kinds of data, between unreadable pages and canaries.
#include <gtest/gtest.h>

#include <deque>
#include <string>

#include "content.h"
#include "memory.h"
#include "picture.h"

namespace {

struct Shape {
    int width, height, src_stride, dst_extra;
};

// Runs one routine; every source and target plane ends `slack` bytes before an unreadable page.
// Returns all targets with the bytes between their rows.
Bytes run(const CscKernel &kernel, tavu_fn_csc_t routine, const Shape &s, int32_t code, int content,
          size_t slack) {
    std::deque<GuardedBytes> sources, targets;
    PicturePlanes planes(kernel, code, s.width, s.height);
    planes.set_sources((s.src_stride - s.width) * kernel.src_step, [&](size_t size) {
        const auto seed =
            static_cast<unsigned>(s.width * 31) + static_cast<unsigned>(sources.size());
        return sources.emplace_back(make_content(content, size + slack, seed)).data();
    });
    planes.set_targets(s.dst_extra,
                       [&](size_t size) { return targets.emplace_back(size + slack).data(); });
    // Packed 8-bit targets take the first source stride for all planes.
    if (code >= 400) std::fill(planes.src_stride + 1, planes.src_stride + 4, -1);
    // The channels of a packed source have either order, alpha last.
    if (kernel.src_step > 1 && s.height == 2) std::swap(planes.src[0], planes.src[2]);
    planes.convert(routine);
    Bytes written;
    for (GuardedBytes &target : targets) {
        EXPECT_TRUE(target.front_is_intact());
        written.insert(written.end(), target.data(), target.data() + target.size());
    }
    return written;
}

void expect_equal_to_model(const CscKernel &kernel, const Shape &shape, int32_t code, int content,
                           size_t slack) {
    const Bytes expected = run(kernel, kernel.model, shape, code, content, slack);
    for (const CscVariant &variant : kernel.variants) {
        ASSERT_EQ(run(kernel, variant.run, shape, code, content, slack), expected)
            << kernel.name << ' ' << variant.level << " to " << code << ", " << shape.width << 'x'
            << shape.height << ", strides " << shape.src_stride << ' ' << shape.dst_extra
            << ", content " << content << ", slack " << slack;
    }
}

TEST(Kernels, EqualTheirModelsInEveryShape) {
    for (const CscKernel &kernel : csc_kernels()) {
        for (int width = 0; width <= 200; width += width < 70 ? 1 : 7) {
            const Shape shapes[] = {{width, 1, width, 0},
                                    {width, 3, width, 0},
                                    {width, 2, width + 1, 1},
                                    {width, 2, width + 37, 101}};
            for (const Shape &shape : shapes) {
                const int32_t code = kernel.codes[static_cast<size_t>(width) % kernel.codes.size()];
                expect_equal_to_model(kernel, shape, code, width % CONTENTS, 0);
                if (HasFatalFailure()) return;
            }
        }
        for (size_t slack = 0; slack < 16; slack++) {
            for (int32_t code : kernel.codes) {
                for (int content = 0; content < CONTENTS; content++) {
                    expect_equal_to_model(kernel, {67, 2, 80, 99}, code, content, slack);
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
}

// Checks the vector arithmetic by the equations: all chroma pairs, and luma in 16 steps.
TEST(Kernels, ColourArithmeticIsExact) {
    const auto clamp = [](int x) { return std::clamp(x, 0, 255); };
    for (const auto &variant : variants<tavu_csc_yuv444_to_rgb888>()) {
        for (int u = 0; u < 256; u++) {
            Bytes ys(4096), us(4096, static_cast<uint8_t>(u)), vs(4096), out(3 * 4096);
            for (size_t i = 0; i < 4096; i++) {
                ys[i] = static_cast<uint8_t>(i % 16 * 17);
                vs[i] = static_cast<uint8_t>(i / 16);
            }
            uint8_t *src[4] = {ys.data(), us.data(), vs.data()}, *dst[4] = {out.data()};
            const int32_t stride[4] = {};
            variant.run(src, 4096, 1, stride, 13, dst, 0, 0, stride, 400);
            for (size_t i = 0; i < 4096; i++) {
                const int y = ys[i], v = vs[i] - 128, b = u - 128;
                ASSERT_EQ(out[3 * i], clamp(y + ((359 * v + 128) >> 8)));
                ASSERT_EQ(out[3 * i + 1], clamp(y - ((183 * v + 88 * b + 128) >> 8)));
                ASSERT_EQ(out[3 * i + 2], clamp(y + ((454 * b + 128) >> 8)));
            }
        }
    }
}

}  // namespace
