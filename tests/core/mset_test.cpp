// Fills and block copies: exactly the stated bytes, for every size.
#include <gtest/gtest.h>

#include <algorithm>

#include "memory.h"
#include "tavu.h"
#include "variants.h"

namespace {

constexpr uint32_t VALUE = 0x11223344;

// Each level of a fill writes these bytes to a target that ends at an unreadable page.
template <auto *Fill, class... Arguments>
void expect_filled(const Bytes &expected, Arguments... arguments) {
    for (const auto &form : variants<Fill>()) {
        GuardedBytes dst(expected.size());
        form.run(dst.data(), arguments...);
        EXPECT_EQ(dst.bytes(), expected) << form.level;
        EXPECT_TRUE(dst.front_is_intact()) << form.level;
    }
}

// `written` bytes of VALUE's pattern, the last `low` of them its low byte, and `rest` unchanged
// bytes.
Bytes pattern(int written, int low, int rest) {
    constexpr uint8_t PATTERN[] = {0x44, 0x33, 0x22, 0x11};
    Bytes bytes(static_cast<size_t>(written + rest), GuardedBytes::CANARY);
    for (int i = 0; i < written; i++) {
        bytes[static_cast<size_t>(i)] = i < written - low ? PATTERN[i % 4] : 0x44;
    }
    return bytes;
}

Bytes single_byte(int written, int rest) { return pattern(written, written, rest); }

TEST(Mset, WritesItsBlocksAndItsRemainder) {
    std::vector<int> sizes = {1 << 19, (1 << 19) + 33, (1 << 19) + 300};  // more than a cache
    for (int size = -200; size <= 600; size++) sizes.push_back(size);
    for (const int size : sizes) {
        SCOPED_TRACE(size);
        // `rest` and `words` vary the alignment of the target, by bytes or by whole words.
        const int n = std::max(size, 0), rest = n % 37, words = n % 9 * 4;
        expect_filled<tavu_mset_x128>(pattern(n == 0 ? 128 : (n + 127) / 128 * 128, 0, rest), VALUE,
                                      size);
        expect_filled<tavu_mset_x64>(single_byte(n / 128 * 128, rest), uint8_t{0x44}, size);
        expect_filled<tavu_mset_x64a>(single_byte(n, rest), 0x11223344, size);
        expect_filled<tavu_mset_x32>(pattern(n / 32 * 32, 0, words), VALUE, size);
        expect_filled<tavu_mset_x32>(single_byte(n / 32 * 32, words), 0x44444444U, size);
        expect_filled<tavu_mset_x32ax4>(pattern(n < 32 ? 0 : n, n % 32, rest), VALUE, size);
        if (HasFailure()) return;
    }
}

TEST(Mset, ClearsWholeBlocksOf64Words) {
    for (const int words : {-64, 0, 1, 63, 64, 65, 127, 128, 1024}) {
        const int cleared = std::max(words, 0) / 64 * 256;
        Bytes expected = pattern(0, 0, cleared + 4);
        std::fill_n(expected.begin(), cleared, static_cast<uint8_t>(0));
        expect_filled<tavu_mclr_x64>(expected, words);
    }
}

using Copy = void(void *, const void *, int32_t, int32_t, int32_t, int32_t);

// Copies between guarded blocks of these strides; exactly the bytes for which `copied(x, y)` is
// true must be copied.
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

// Only the first byte of the remainder after the last 64 bytes of a run is copied.
void expect_one_run(int width, int height) {
    const int total = width * height;
    expect_copied(tavu_mcpy_pic, width, width, width, height, [&](int x, int y) {
        const int at = y * width + x;
        return total >= 64 && at <= total / 64 * 64;
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
