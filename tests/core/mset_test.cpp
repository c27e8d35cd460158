// Fills and block copies: exactly the stated bytes, for every size.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "memory.h"
#include "tavu.h"

namespace {

constexpr uint32_t VALUE = 0x11223344;

// Runs fill(dst) on a target of which `written` bytes must become the pattern of VALUE's bytes, the
// last `low` of them its low byte, and that ends at an unreadable page or `rest` bytes before it.
void expect_filled(const std::function<void(uint8_t *)> &fill, int written, int low, int rest,
                   bool single_byte) {
    GuardedBytes dst(static_cast<size_t>(written + rest));
    Bytes expected = dst.bytes();
    constexpr uint8_t PATTERN[] = {0x44, 0x33, 0x22, 0x11};
    for (int i = 0; i < written; i++) {
        const bool pattern = !single_byte && i < written - low;
        expected[static_cast<size_t>(i)] = pattern ? PATTERN[i % 4] : 0x44;
    }
    fill(dst.data());
    EXPECT_EQ(dst.bytes(), expected);
    EXPECT_TRUE(dst.front_is_intact());
}

TEST(Mset, WritesItsBlocksAndItsRemainder) {
    for (int size = -200; size <= 600; size++) {
        SCOPED_TRACE(size);
        // With all phases of the target: any, or of whole words where these are asked for.
        const int n = std::max(size, 0), rest = n % 37, words = n % 9 * 4;
        expect_filled([&](uint8_t *dst) { tavu_mset_x128(dst, VALUE, size); },
                      n == 0 ? 128 : (n + 127) / 128 * 128, 0, rest, false);
        expect_filled([&](uint8_t *dst) { tavu_mset_x64(dst, 0x44, size); }, n / 128 * 128, 0, rest,
                      true);
        expect_filled([&](uint8_t *dst) { tavu_mset_x64a(dst, 0x11223344, size); }, n, 0, rest,
                      true);
        expect_filled([&](uint8_t *dst) { tavu_mset_x32(dst, VALUE, size); }, n / 32 * 32, 0, words,
                      false);
        expect_filled([&](uint8_t *dst) { tavu_mset_x32ax4(dst, VALUE, size); }, n < 32 ? 0 : n,
                      n % 32, rest, false);
        if (HasFailure()) return;
    }
}

TEST(Mset, FillsMoreThanACache) {
    for (const int size : {1 << 19, (1 << 19) + 33, (1 << 19) + 300}) {
        SCOPED_TRACE(size);
        expect_filled([&](uint8_t *dst) { tavu_mset_x64(dst, 0x44, size); }, size / 128 * 128, 0, 5,
                      true);
        expect_filled([&](uint8_t *dst) { tavu_mset_x64a(dst, 0x44, size); }, size, 0, 0, true);
        expect_filled([&](uint8_t *dst) { tavu_mset_x32(dst, 0x44444444, size); }, size / 32 * 32,
                      0, 4, true);
        expect_filled([&](uint8_t *dst) { tavu_mset_x32(dst, VALUE, size); }, size / 32 * 32, 0, 4,
                      false);
    }
}

TEST(Mset, ClearsWholeBlocksOf64Words) {
    for (const int words : {-64, 0, 1, 63, 64, 65, 127, 128, 1024}) {
        const int cleared = std::max(words, 0) / 64 * 256;
        GuardedBytes dst(static_cast<size_t>(cleared + 4));
        Bytes expected = dst.bytes();
        std::fill_n(expected.begin(), cleared, static_cast<uint8_t>(0));
        tavu_mclr_x64(dst.data(), words);
        EXPECT_EQ(dst.bytes(), expected) << words;
        EXPECT_TRUE(dst.front_is_intact());
    }
}

using Copy = void(void *, const void *, int32_t, int32_t, int32_t, int32_t);

// Copies between guarded blocks of these strides; the `copied(x, y)` bytes of each row must come
// over and no others.
template <class Rule>
void expect_copied(Copy copy, int dst_stride, int src_stride, int width, int height, Rule copied) {
    SCOPED_TRACE(testing::Message()
                 << width << 'x' << height << ' ' << dst_stride << ' ' << src_stride);
    const auto size = [&](int stride) {
        return static_cast<size_t>(height < 1 || width < 1 ? 0 : stride * (height - 1) + width);
    };
    GuardedBytes src(random_bytes(size(src_stride), static_cast<unsigned>(width * 7 + height)));
    GuardedBytes dst(size(dst_stride));
    Bytes expected = dst.bytes();
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            if (!copied(x, y)) continue;
            expected[static_cast<size_t>(y * dst_stride + x)] = src.data()[y * src_stride + x];
        }
    }
    copy(dst.data(), src.data(), dst_stride, src_stride, width, height);
    EXPECT_EQ(dst.bytes(), expected);
    EXPECT_TRUE(dst.front_is_intact());
}

TEST(Mcpy, PicturesRowByRow) {
    for (int width = 1; width < 300; width += width < 70 ? 1 : 13) {
        for (const int height : {-1, 0, 1, 2, 5}) {
            const auto rows = [&](int, int) { return width >= 64; };
            expect_copied(tavu_mcpy_pic, width + 1, width + 5, width, height, rows);
            expect_copied(tavu_mcpy_pic, width, width + 5, width, height, rows);
            expect_copied(tavu_mcpy_pic, width + 9, width, width, height, rows);
        }
    }
}

// Of what remains behind the last 64 bytes of one run only the first byte is copied.
void expect_one_run(int width, int height) {
    const int total = width * height;
    expect_copied(tavu_mcpy_pic, width, width, width, height, [&](int x, int y) {
        const int at = y * width + x;
        return total >= 64 && (at < total / 64 * 64 || at == total / 64 * 64);
    });
}

TEST(Mcpy, PicturesInOneRunKeepOneByteOfTheRemainder) {
    for (int width = 1; width < 300; width += width < 20 ? 1 : 13) {
        for (const int height : {-1, 0, 1, 2, 5, 7, 10, 64}) expect_one_run(width, height);
    }
    for (const int height : {255, 256, 257, 512}) expect_one_run(1024, height);
    expect_one_run(511, 1100);
    GuardedBytes row(100);
    tavu_mcpy_pic(row.data(), row.data(), 0, 0, 0, 64);
    tavu_mcpy_pic(row.data(), row.data(), -16, -16, -16, -16);
}

TEST(Mcpy, BlocksOfSomeWidthsCopyNothing) {
    for (int width = 1; width <= 130; width++) {
        for (const int height : {0, 4, 8}) {
            const bool known = width == 2 || width == 4 || width == 6 || width == 8 ||
                               width == 12 || width == 16 || width == 24;
            expect_copied(tavu_mcpy_blk, width + 3, width + 1, width, height,
                          [&](int, int) { return known; });
        }
    }
}

}  // namespace
