#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "memory.h"
#include "tavu.h"

namespace {

struct Plane {
    int32_t stride, rows, left, top, w, h;
};

// An image over one guarded block, filled with random bytes.
struct Picture {
    Picture(int32_t cs, const std::vector<Plane> &planes, size_t size)
        : payload(random_bytes(size, 3)), before(payload.bytes()) {
        image.cs = cs;
        image.aw = planes[0].w;
        image.ah = planes[0].h;
        size_t at = 0;
        for (size_t p = 0; p < planes.size(); p++) {
            const Plane &plane = planes[p];
            image.stride[p] = plane.stride;
            image.addr[p] = payload.data() + at + plane.top * plane.stride + plane.left;
            at += static_cast<size_t>(plane.stride * plane.rows);
        }
    }
    GuardedBytes payload;
    Bytes before;
    tavu_imgb_t image{};
};

// Every sample of every plane is the nearest one of the w x h picture at (left, top).
void expect_replicated(const std::vector<Plane> &planes, const Bytes &before, const Bytes &after) {
    size_t at = 0;
    for (const Plane &p : planes) {
        for (int32_t y = 0; y < p.rows; y++) {
            for (int32_t x = 0; x < p.stride; x++) {
                const int32_t from_y = p.top + std::clamp(y - p.top, 0, p.h - 1);
                const int32_t from_x = p.left + std::clamp(x - p.left, 0, p.w - 1);
                const auto from = static_cast<size_t>(from_y * p.stride + from_x);
                ASSERT_EQ(after[at + static_cast<size_t>(y * p.stride + x)], before[at + from])
                    << x << ',' << y;
            }
        }
        at += static_cast<size_t>(p.stride * p.rows);
    }
}

std::vector<Plane> make_planes(int count, int32_t w, int32_t h, int32_t pad) {
    std::vector<Plane> planes;
    for (int p = 0; p < count; p++) {
        const int32_t pw = p == 0 ? w : (w + 1) / 2, ph = p == 0 ? h : (h + 1) / 2;
        planes.push_back({pw + 2 * pad, ph + 2 * pad, pad, pad, pw, ph});
    }
    return planes;
}

size_t total(const std::vector<Plane> &planes) {
    size_t size = 0;
    for (const Plane &p : planes) size += static_cast<size_t>(p.stride * p.rows);
    return size;
}

TEST(Expand, FillsThePaddingWithTheNearestSample) {
    for (const auto &[cs, count] : {std::pair(10, 1), std::pair(11, 3)}) {
        for (const int32_t pad : {0, 1, 3, 4, 8, 12, 16, 24, 32, 40, 50, 80}) {
            for (const auto &[w, h] : {std::pair(16, 8), std::pair(5, 3), std::pair(1, 1)}) {
                SCOPED_TRACE(testing::Message() << cs << ' ' << pad << ' ' << w << 'x' << h);
                const auto planes = make_planes(count, w, h, pad);
                Picture picture(cs, planes, total(planes));
                const auto both = static_cast<uint32_t>(pad);
                const uint32_t pads[] = {both << 16 | both, both << 16 | both, both << 16 | both};
                EXPECT_EQ(tavu_imgb_expand(&picture.image, pads), TAVU_OK);
                EXPECT_TRUE(picture.payload.front_is_intact());
                expect_replicated(planes, picture.before, picture.payload.bytes());
                if (HasFatalFailure()) return;
            }
        }
    }
}

// Chroma counts as half as wide and high in every layout, so that the strips of a larger plane fall
// into the picture.
TEST(Expand, ChromaIsTakenAsHalvedInEveryLayout) {
    for (const int32_t cs : {12, 13, 18}) {
        const std::vector<Plane> planes = {
            {20, 12, 2, 2, 16, 8}, {12, 8, 2, 2, 8, 4}, {12, 8, 2, 2, 8, 4}};
        Picture picture(cs, planes, total(planes));
        const uint32_t pads[] = {2 << 16 | 2, 2 << 16 | 2, 2 << 16 | 2};
        EXPECT_EQ(tavu_imgb_expand(&picture.image, pads), TAVU_OK);
        expect_replicated(planes, picture.before, picture.payload.bytes());
    }
}

// The left strip begins as many bytes left of the picture as there are rows above.
TEST(Expand, LeftStripBeginsByTheRowCount) {
    Picture picture(10, {{10, 11, 4, 4, 4, 2}}, 110);
    memset(picture.payload.data(), 7, 110);
    for (uint8_t x = 0; x < 4; x++) picture.payload.data()[54 + x] = static_cast<uint8_t>(10 + x);
    const uint32_t pad = 2 << 16 | 4;
    EXPECT_EQ(tavu_imgb_expand(&picture.image, &pad), TAVU_OK);
    const Bytes row(picture.payload.data() + 50, picture.payload.data() + 60);
    EXPECT_EQ(row, (Bytes{10, 10, 7, 7, 10, 11, 12, 13, 13, 13}));
}

TEST(Expand, OtherLayoutsAreLeftAlone) {
    const uint32_t pads[4] = {1 << 16 | 1, 1 << 16 | 1, 1 << 16 | 1, 1 << 16 | 1};
    for (const int32_t cs : {0, 14, 43, 100, 200, 400, 500, 600}) {
        Picture picture(cs, {{6, 6, 1, 1, 4, 4}}, 36);
        EXPECT_EQ(tavu_imgb_expand(&picture.image, pads), TAVU_ERR_UNSUPPORTED);
        EXPECT_EQ(picture.payload.bytes(), picture.before);
    }
    Picture empty(10, {{6, 6, 1, 1, 0, 4}}, 36);
    EXPECT_EQ(tavu_imgb_expand(&empty.image, pads), TAVU_OK);
    empty.image.aw = 4;
    empty.image.ah = 0;
    EXPECT_EQ(tavu_imgb_expand(&empty.image, pads), TAVU_OK);
    EXPECT_EQ(empty.payload.bytes(), empty.before);
    EXPECT_EQ(tavu_imgb_expand(nullptr, pads), TAVU_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(tavu_imgb_expand(&empty.image, nullptr), TAVU_ERR_INVALID_ARGUMENT);
}

TEST(Expand, RowsAreRoundedUpToEightForNarrowColumns) {
    for (const auto &[len, rows, written] :
         {std::tuple(16, 3, 3), std::tuple(48, 9, 9), std::tuple(8, 1, 8), std::tuple(24, 9, 16),
          std::tuple(4, 8, 8), std::tuple(12, 3, 8), std::tuple(7, 3, 3), std::tuple(2, 1, 1),
          std::tuple(8, 0, 0), std::tuple(16, -1, 0), std::tuple(4, -3, 0), std::tuple(0, 9, 0),
          std::tuple(-4, 9, 0)}) {
        const size_t size = len > 0 ? static_cast<size_t>(len) : 0;
        const Bytes row = random_bytes(size, 5);
        GuardedBytes src(row), dst(size * static_cast<size_t>(written));
        tavu_imgb_expand_hor(src.data(), dst.data(), len, rows);
        Bytes expected;
        for (int i = 0; i < written; i++) expected.insert(expected.end(), row.begin(), row.end());
        EXPECT_EQ(dst.bytes(), expected) << len << ' ' << rows;
        EXPECT_TRUE(dst.front_is_intact());
    }
}

TEST(Expand, ColumnsOfAnyWidth) {
    for (const int32_t width : {-1, 0, 1, 8, 13, 16, 24, 32, 40, 80}) {
        for (const int32_t rows : {-1, 0, 1, 3, 4}) {
            const int32_t w = std::max(width, 0), stride = w + 2;
            const size_t size = rows < 1 ? 0 : static_cast<size_t>((rows - 1) * stride + w);
            const Bytes column = random_bytes(5 * 90, 6);
            GuardedBytes dst(size);
            Bytes expected = dst.bytes();
            for (int32_t i = 0; i < static_cast<int32_t>(size); i++) {
                if (i % stride < w) {
                    expected[static_cast<size_t>(i)] =
                        column[static_cast<size_t>(i / stride * stride)];
                }
            }
            tavu_imgb_expand_ver(column.data(), dst.data(), rows, stride, width);
            EXPECT_EQ(dst.bytes(), expected) << width << ' ' << rows;
            EXPECT_TRUE(dst.front_is_intact());
        }
    }
}

}  // namespace
