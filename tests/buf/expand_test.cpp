#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "memory.h"
#include "tavu.h"

namespace {

// A w x h picture with `pad` samples of padding on every side, all random.
struct Plane {
    int32_t w, h, pad, stride = w + 2 * pad;
    Bytes before = random_bytes(static_cast<size_t>(stride * (h + 2 * pad)), 3);
    GuardedBytes memory{before};

    // The expected result: every sample is the nearest one of the picture.
    Bytes replicated() const {
        Bytes bytes;
        for (int32_t i = 0; i < static_cast<int32_t>(before.size()); i++) {
            const int32_t x = std::clamp(i % stride, pad, pad + w - 1);
            const int32_t y = std::clamp(i / stride, pad, pad + h - 1);
            bytes.push_back(before[static_cast<size_t>(y * stride + x)]);
        }
        return bytes;
    }
};

// Chroma is treated as 4:2:0 in every layout, so the strips of larger chroma planes are inside the
// picture.
struct Picture {
    Picture(int32_t cs, int32_t w, int32_t h, int32_t pad)
        : planes{{w, h, pad}, {(w + 1) / 2, (h + 1) / 2, pad}, {(w + 1) / 2, (h + 1) / 2, pad}} {
        image.cs = cs;
        image.aw = w;
        image.ah = h;
        for (int p = 0; p < 3; p++) {
            image.stride[p] = planes[p].stride;
            image.addr[p] = planes[p].memory.data() + pad * planes[p].stride + pad;
        }
    }

    Plane planes[3];
    tavu_imgb_t image{};
};

TEST(Expand, FillsThePaddingWithTheNearestSample) {
    for (const int32_t cs : {10, 11, 12, 13, 18}) {
        for (const uint32_t pad : {0U, 1U, 3U, 4U, 8U, 12U, 16U, 24U, 32U, 40U, 50U, 80U}) {
            for (const auto &[w, h] : {std::pair(16, 8), std::pair(5, 3), std::pair(1, 1)}) {
                SCOPED_TRACE(testing::Message() << cs << ' ' << pad << ' ' << w << 'x' << h);
                Picture picture(cs, w, h, static_cast<int32_t>(pad));
                const uint32_t both = pad << 16 | pad, pads[] = {both, both, both};
                EXPECT_EQ(tavu_imgb_expand(&picture.image, pads), TAVU_OK);
                for (Plane &plane : picture.planes) {
                    const bool used = cs != 10 || &plane == picture.planes;
                    EXPECT_EQ(plane.memory.bytes(), used ? plane.replicated() : plane.before);
                    EXPECT_TRUE(plane.memory.front_is_intact());
                }
            }
        }
    }
}

// The left strip starts as many bytes before the picture as there are padding rows above.
TEST(Expand, LeftStripStartsByTheNumberOfRows) {
    Picture picture(10, 4, 3, 4);
    picture.image.ah = 2;
    uint8_t *const row = picture.planes[0].memory.data() + 5 * 12;
    const uint8_t before[] = {7, 7, 7, 7, 10, 11, 12, 13, 7, 7, 7, 7};
    const uint8_t after[] = {10, 10, 7, 7, 10, 11, 12, 13, 13, 13, 7, 7};
    memcpy(row, before, sizeof before);
    const uint32_t pad = 2 << 16 | 4;
    EXPECT_EQ(tavu_imgb_expand(&picture.image, &pad), TAVU_OK);
    EXPECT_EQ(memcmp(row, after, sizeof after), 0);
}

TEST(Expand, LeavesOtherLayoutsAndEmptyPicturesUnchanged) {
    const uint32_t pads[4] = {1 << 16 | 1, 1 << 16 | 1, 1 << 16 | 1, 1 << 16 | 1};
    Picture picture(10, 4, 4, 1);
    for (const int32_t cs : {0, 14, 43, 100, 200, 400, 500, 600}) {
        picture.image.cs = cs;
        EXPECT_EQ(tavu_imgb_expand(&picture.image, pads), TAVU_ERR_UNSUPPORTED);
    }
    picture.image.cs = 10;
    for (const auto &[w, h] : {std::pair(0, 4), std::pair(4, 0)}) {
        picture.image.aw = w;
        picture.image.ah = h;
        EXPECT_EQ(tavu_imgb_expand(&picture.image, pads), TAVU_OK);
    }
    EXPECT_EQ(picture.planes[0].memory.bytes(), picture.planes[0].before);
    EXPECT_EQ(tavu_imgb_expand(nullptr, pads), TAVU_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(tavu_imgb_expand(&picture.image, nullptr), TAVU_ERR_INVALID_ARGUMENT);
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
            const auto w = static_cast<size_t>(std::max(width, 0)), stride = w + 2;
            const Bytes column = random_bytes(5 * 90, 6);
            GuardedBytes dst(rows < 1 ? 0 : static_cast<size_t>(rows - 1) * stride + w);
            Bytes expected = dst.bytes();
            for (size_t i = 0; i < expected.size(); i++) {
                if (i % stride < w) expected[i] = column[i / stride * stride];
            }
            tavu_imgb_expand_ver(column.data(), dst.data(), rows, static_cast<int32_t>(stride),
                                 width);
            EXPECT_EQ(dst.bytes(), expected) << width << ' ' << rows;
            EXPECT_TRUE(dst.front_is_intact());
        }
    }
}

}  // namespace
