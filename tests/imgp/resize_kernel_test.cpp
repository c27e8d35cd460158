// Every variant of every resize kernel against its model on random sizes. Sources end where the
// model's last sample does, at an unreadable page; so do targets.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>

#include "content.h"
#include "memory.h"
#include "resize_kernels.h"

namespace {

using Random = std::mt19937;

int pick(Random &random, int from, int to) {
    return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
}

// Small sizes often, rows of several thousand pixels and steep ratios sometimes.
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

    // Of a wide target, for the models take their time.
    void limit_rows() { dst_h = std::min(dst_h, std::max(1, 16000 / dst_w)); }

    // Source pixels of an axis up to the last sample, and to its neighbour if that is read: with a
    // step, or if weights may be others than the standard ones.
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

size_t plane_size(int stride, int rows, int row_bytes) {
    return static_cast<size_t>(stride * (rows - 1) + row_bytes);
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
            // Kernels read the writable table, whatever it holds.
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

// Lines take the neighbour's distance and any weights from the caller.
TEST(ResizeKernels, LinesEqualTheirModels) {
    Random random(2);
    const Bytes other_weights = random_bytes(256, 5);
    for (const ResizeKernel &kernel : resize_kernels()) {
        for (int round = 0; round < 1500; round++) {
            const Case c(random);
            const int32_t step = c.step_x >> 3, shift = c.step_x & 7;
            const int32_t next = round % 4 == 0 ? pick(random, -3, 70) : 1 << shift;
            const int32_t after = std::max(next, 0), before = after - next;
            const bool other = round % 10 == 0;
            const bool neighbour = step != 0 || other;
            const int pixels = before + c.columns(other) + (neighbour ? after - (1 << shift) : 0);
            const auto size = static_cast<size_t>(pixels * kernel.src_bytes);
            GuardedBytes top(make_content(c.content, size, static_cast<unsigned>(random())));
            GuardedBytes bottom(make_content(c.content, size, static_cast<unsigned>(random())));
            const int first = before * kernel.src_bytes;
            const uint8_t *rows[] = {top.data() + first, bottom.data() + first};
            const uint8_t *weights =
                (other ? other_weights.data() : tavu_irsz_tbl_rsz_weight) + 4 * (random() % 8);
            const auto run = [&](tavu_irsz_line_t *line) {
                GuardedBytes dst(static_cast<size_t>(c.dst_w * kernel.dst_bytes));
                line(rows, weights, c.dst_w, shift, next, step, dst.data());
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

TEST(ResizeKernels, CombinedRoutinesEqualTheirModels) {
    Random random(3);
    for (const CscKernel &kernel : csc_rsz_kernels()) {
        for (int round = 0; round < 1500; round++) {
            const Case c(random);
            std::vector<std::unique_ptr<GuardedBytes>> planes;
            uint8_t *src[4] = {};
            int32_t src_stride[4];
            for (int p = 0; p < kernel.src_planes; p++) {
                src_stride[p] = c.src_w + c.src_gap + p;
                planes.push_back(std::make_unique<GuardedBytes>(
                    make_content(c.content, plane_size(src_stride[p], c.rows(), c.columns()),
                                 static_cast<unsigned>(random()))));
                src[p] = planes.back()->data();
            }
            const int row = c.dst_w * kernel.dst_bytes[0], stride = row + c.dst_gap;
            const bool bottom_up = round % 3 == 0;
            const int32_t dst_stride[4] = {bottom_up ? -stride : stride};
            const auto run = [&](tavu_fn_csc_t routine) {
                GuardedBytes target(plane_size(stride, c.dst_h, row));
                uint8_t *dst[4] = {target.data() + (bottom_up ? stride * (c.dst_h - 1) : 0)};
                routine(src, c.src_w, c.src_h, src_stride, 13, dst, c.dst_w, c.dst_h, dst_stride,
                        kernel.codes[0]);
                return written(target);
            };
            const Bytes expected = run(kernel.model);
            for (const CscVariant &variant : kernel.variants) {
                ASSERT_EQ(run(variant.run), expected)
                    << kernel.name << ' ' << variant.level << ' ' << c;
            }
        }
    }
}

}  // namespace
