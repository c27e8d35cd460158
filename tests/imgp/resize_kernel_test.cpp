// Compares every variant of every resize kernel with its model on random sizes. Sources end with
// the model's last sample at an unreadable page; targets end at an unreadable page too.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <ostream>
#include <string>

#include "content.h"
#include "memory.h"
#include "picture.h"

namespace {

using Random = std::mt19937;

int pick(Random &random, int from, int to) {
    return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
}

// Often small sizes, sometimes rows of several thousand pixels and steep ratios.
int pick_size(Random &random) {
    const int largest[] = {4, 40, 40, 200, 600};
    return pick(random, 1, largest[random() % 5]);
}

struct Case {
    int src_w, src_h, dst_w, dst_h, content, src_gap, dst_gap;
    int32_t step_x, step_y;  // packed

    explicit Case(Random &random)
        : src_w(pick_size(random)),
          src_h(pick(random, 1, 40)),
          dst_w(pick_size(random)),
          dst_h(pick(random, 1, 30)),
          content(pick(random, 0, CONTENTS - 1)),
          src_gap(pick(random, 0, 2) * 7),
          dst_gap(pick(random, 0, 2) * 5) {
        if (random() % 20 == 0) dst_w = pick(random, 2000, 5000);
        limit_rows();
        const int ratio = pick(random, 1, 20);
        if (random() % 8 == 0) src_w = std::min(dst_w * ratio, ratio > 3 ? 16000 : 8000);
        if (random() % 8 == 0) src_h = dst_h * pick(random, 1, 20);
        if (random() % 8 == 0) {
            const bool wide = random() % 4 == 0;
            dst_w = wide ? pick(random, 300, 1100) : pick(random, 50, 300);
            dst_h = wide ? pick(random, 20, 40) : pick(random, 60, 120);
            if (wide && random() % 4 == 0) dst_w = pick(random, 4090, 4097);
            limit_rows();
            src_w = std::min(2 * dst_w + pick(random, -4, 1), 8192);
            src_h = 2 * dst_h + pick(random, -1, 1);
        }
        bilinear_rsz_step_size(src_w, src_h, dst_w, dst_h, &step_x, &step_y);
    }

    // Limits the rows of a wide target, because the models are slow.
    void limit_rows() { dst_h = std::min(dst_h, std::max(1, 16000 / dst_w)); }

    // Source pixels of an axis up to the last sample, and to its neighbour if that is read: if the
    // step is not 0 or the weights may not be the standard ones.
    static int reach(int32_t packed, int outputs, bool any_weights) {
        const int32_t step = packed >> 3, unit = 1 << (packed & 7);
        const bool neighbour = step != 0 || any_weights;
        return ((step * (outputs - 1)) >> 18) * unit + (neighbour ? unit : 0) + 1;
    }
    int columns(bool any_weights = false) const { return reach(step_x, dst_w, any_weights); }
    int rows(bool any_weights = false) const { return reach(step_y, dst_h, any_weights); }
};

std::ostream &operator<<(std::ostream &s, const Case &c) {
    return s << c.src_w << 'x' << c.src_h << " to " << c.dst_w << 'x' << c.dst_h << ", content "
             << c.content << ", gaps " << c.src_gap << ' ' << c.dst_gap;
}

Bytes written(GuardedBytes &target) {
    EXPECT_TRUE(target.front_is_intact());
    return target.bytes();
}

TEST(ResizeKernels, WholeImagesEqualTheirModels) {
    Random random(1);
    for (const ResizeKernel &kernel : resize_kernels()) {
        for (int round = 0; round < 1500; round++) {
            const Case c(random);
            const int unit = kernel.line_unit;
            const bool other = round % 10 == 0;
            const int src_line = c.src_w * kernel.src_bytes + c.src_gap * unit;
            const int dst_line = c.dst_w * kernel.dst_bytes + c.dst_gap * unit;
            GuardedBytes src(make_content(
                c.content, plane_size(src_line, c.rows(other), c.columns(other) * kernel.src_bytes),
                static_cast<unsigned>(random())));
            const auto run = [&](tavu_irsz_full_t *full) {
                GuardedBytes dst(plane_size(dst_line, c.dst_h, c.dst_w * kernel.dst_bytes));
                full(src.data(), src_line / unit, c.dst_w, c.dst_h, dst_line / unit, dst.data(),
                     c.step_x, c.step_y);
                return written(dst);
            };
            // Kernels read the writable table, whatever it contains.
            const uint8_t weight = tavu_irsz_tbl_rsz_weight[round % 256];
            if (other) tavu_irsz_tbl_rsz_weight[round % 256] ^= 3;
            const Bytes expected = run(kernel.model.full);
            for (const ResizeVariant &variant : kernel.variants) {
                ASSERT_EQ(run(variant.full), expected)
                    << kernel.name << ' ' << variant.level << ' ' << c;
            }
            tavu_irsz_tbl_rsz_weight[round % 256] = weight;
        }
    }
}

// The caller of a line kernel chooses the neighbour's distance and the weights: all groups, in 228
// bytes. A row that stays at position 0 reads one group, and only pixels with weight.
TEST(ResizeKernels, LinesEqualTheirModels) {
    Random random(2);
    Bytes other_weights = random_bytes(256, 5);
    for (uint8_t &w : other_weights) w = w % 3 == 0 ? 0 : w;
    for (const ResizeKernel &kernel : resize_kernels()) {
        for (int round = 0; round < 1500; round++) {
            const Case c(random);
            const int32_t step = c.step_x >> 3, shift = c.step_x & 7;
            const int32_t next = round % 4 == 0 ? pick(random, -3, 70) : 1 << shift;
            const int32_t after = std::max(next, 0), before = after - next;
            const bool other = round % 3 == 0;
            const uint8_t *table =
                (other ? other_weights.data() : tavu_irsz_tbl_rsz_weight) + 4 * (random() % 8);
            GuardedBytes weights(Bytes(table, table + (step == 0 ? 4 : 228)));
            const auto row = [&](bool used, int right_weight) {
                const bool neighbour = step != 0 || right_weight > 0;
                const int pixels = c.columns() - (step != 0 ? 1 << shift : 0) + before;
                const int size = (used || neighbour ? pixels : 0) + (neighbour ? after : 0);
                return make_content(c.content, static_cast<size_t>(size * kernel.src_bytes),
                                    static_cast<unsigned>(random()));
            };
            // The first pixel is read even without weight.
            GuardedBytes top(row(true, table[1])), bottom(row(table[2] > 0, table[3]));
            const int first = before * kernel.src_bytes;
            const uint8_t *rows[] = {top.data() + first, bottom.data() + first};
            const auto run = [&](tavu_irsz_line_t *line) {
                GuardedBytes dst(static_cast<size_t>(c.dst_w * kernel.dst_bytes));
                line(rows, weights.data(), c.dst_w, shift, next, step, dst.data());
                return written(dst);
            };
            const Bytes expected = run(kernel.model.line);
            for (const ResizeVariant &variant : kernel.variants) {
                ASSERT_EQ(run(variant.line), expected)
                    << kernel.name << ' ' << variant.level << ' ' << c << ", neighbour " << next;
            }
        }
    }
}

// Converts one pixel; `wrap` reduces the products to 16 bits.
void to_rgb(int *yuv, bool wrap) {
    const int y = yuv[0], u = yuv[1] - 128, v = yuv[2] - 128;
    const auto term = [wrap](int x) { return ((wrap ? static_cast<int16_t>(x) : x) + 128) >> 8; };
    yuv[0] = std::clamp(y + term(359 * v), 0, 255);
    yuv[1] = std::clamp(y - term(183 * v + 88 * u), 0, 255);
    yuv[2] = std::clamp(y + term(454 * u), 0, 255);
}

// Output of a combined routine, with canaries between the rows: each plane by the single-channel
// resizer, then pixel by pixel, where products wrap in groups of eight.
Bytes combine(const PicturePlanes &planes, const Case &c, bool bottom_up) {
    const CscKernel &kernel = planes.kernel;
    const bool yuv = std::string(kernel.name).find("yuv") == 0;
    const int bytes = kernel.dst_bytes[0], row = c.dst_w * bytes, stride = row + c.dst_gap;
    Bytes scaled[4], out(plane_size(stride, c.dst_h, row), GuardedBytes::CANARY);
    for (int p = 0; p < 4; p++) {
        scaled[p].assign(static_cast<size_t>(c.dst_w * c.dst_h), 255);
        if (p >= kernel.src_planes) continue;
        tavu_irsz8b_full(planes.src[p], planes.src_stride[p], c.dst_w, c.dst_h, c.dst_w,
                         scaled[p].data(), c.step_x, c.step_y);
    }
    for (int i = 0; i < c.dst_w * c.dst_h; i++) {
        const int x = i % c.dst_w, y = bottom_up ? c.dst_h - 1 - i / c.dst_w : i / c.dst_w;
        int pixel[4];
        for (int p = 0; p < 4; p++) pixel[p] = scaled[p][static_cast<size_t>(i)];
        if (yuv) to_rgb(pixel, x < c.dst_w / 8 * 8);
        std::copy_n(pixel, bytes, &out[static_cast<size_t>(y * stride + x * bytes)]);
    }
    return out;
}

TEST(ResizeKernels, CombinedRoutinesResizeEachPlaneThenConvert) {
    Random random(3);
    for (const CscKernel &kernel : csc_rsz_kernels()) {
        for (int round = 0; round < 1500; round++) {
            const Case c(random);
            std::deque<GuardedBytes> sources;
            // The order of the target code counts in conversions alone.
            PicturePlanes planes(kernel, 501, c.src_w, c.src_h, c.dst_w, c.dst_h);
            const auto allocate = [&](size_t) {
                const int stride = c.src_w + c.src_gap + static_cast<int>(sources.size());
                const size_t size = plane_size(stride, c.rows(), c.columns());
                const auto seed = static_cast<unsigned>(random());
                return sources.emplace_back(make_content(c.content, size, seed)).data();
            };
            planes.set_sources(c.src_gap, allocate, 1);
            const bool bottom_up = round % 3 == 0;
            const Bytes expected = combine(planes, c, bottom_up);
            const auto check = [&](const char *level, tavu_fn_csc_t routine) {
                GuardedBytes target(expected.size());
                planes.set_targets(c.dst_gap, [&](size_t) { return target.data(); });
                if (bottom_up) {
                    planes.dst[0] += planes.dst_stride[0] * (c.dst_h - 1);
                    planes.dst_stride[0] *= -1;
                }
                planes.convert(routine);
                ASSERT_EQ(written(target), expected) << kernel.name << ' ' << level << ' ' << c;
            };
            check("model", kernel.model);
            for (const CscVariant &variant : kernel.variants) check(variant.level, variant.run);
            if (HasFatalFailure()) return;
        }
    }
}

// The same saturated red: wrapped in the group of eight, exact in the remainder.
TEST(CscRsz, WrappedAndExactPixelsInOneRow) {
    Bytes y(64, 128), u(64, 128), v(64, 255);
    uint8_t *src[4] = {y.data(), u.data(), v.data()}, out[11 * 3], *dst[4] = {out};
    const int32_t src_stride[4] = {8, 8, 8}, dst_stride[4] = {33};
    tavu_csc_rsz_yuv444_to_rgb888(src, 8, 8, src_stride, 13, dst, 11, 1, dst_stride, 400);
    for (int i = 0; i < 11; i++) EXPECT_EQ(out[3 * i], i < 8 ? 50 : 255) << i;
}

}  // namespace
