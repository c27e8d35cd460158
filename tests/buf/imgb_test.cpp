#include <gtest/gtest.h>

#include <memory>

#include "recorder.h"
#include "tavu.h"

namespace {

struct Release {
    void operator()(tavu_imgb_t *imgb) const { imgb->release(imgb); }
};
using Image = std::unique_ptr<tavu_imgb_t, Release>;

class Imgb : public testing::Test {
  protected:
    void SetUp() override { memory = {}; }

    static Image create(int32_t w, int32_t h, int32_t cs, int32_t opt = 0,
                        const uint32_t *align = nullptr, const uint32_t *pad = nullptr) {
        return Image(tavu_imgb_create(w, h, cs, opt, align, pad, allocate, release, nullptr));
    }
};

constexpr uint32_t pair(uint32_t horizontal, uint32_t vertical) {
    return horizontal << 16 | vertical;
}

TEST_F(Imgb, LaysPlanesOutByColourSpace) {
    const int cases[][5] = {{10, 1, 5, 0, 0},   {11, 3, 5, 3, 2},   {12, 3, 5, 3, 3},
                            {13, 3, 5, 5, 3},   {18, 3, 5, 5, 2},   {43, 4, 5, 5, 3},
                            {100, 1, 10, 0, 0}, {299, 1, 10, 0, 0}, {300, 1, 20, 0, 0},
                            {399, 1, 20, 0, 0}, {400, 1, 15, 0, 0}, {499, 1, 15, 0, 0},
                            {500, 1, 20, 0, 0}, {599, 1, 20, 0, 0}};
    for (const auto &[cs, planes, stride, chroma_stride, chroma_rows] : cases) {
        SCOPED_TRACE(cs);
        const Image image = create(5, 3, cs);
        ASSERT_NE(image, nullptr);
        int offset = 0;
        for (int p = 0; p < 4; p++) {
            const bool exists = p < planes;
            EXPECT_EQ(image->stride[p], !exists ? 0 : p == 0 ? stride : chroma_stride);
            EXPECT_EQ(image->rows[p], !exists ? 0 : p == 0 ? 3 : chroma_rows);
            EXPECT_EQ(image->addr[p], exists ? image->base[0] + offset : nullptr);
            EXPECT_EQ(image->base[p], image->addr[p]);
            EXPECT_EQ(image->pbase[p], exists ? static_cast<uint32_t>(offset) : 0U);
            offset += image->stride[p] * image->rows[p];
        }
        EXPECT_EQ(image->size, offset);
    }
}

TEST_F(Imgb, AlignsAndPadsEachPlane) {
    const uint32_t align[] = {pair(16, 8), pair(8, 4), pair(1, 1)};
    const uint32_t pad[] = {pair(3, 2), pair(1, 0), pair(0, 5)};
    memory.second = 0x1000;
    const Image image = create(20, 9, TAVU_CS_YUV420, 0, align, pad);
    EXPECT_EQ(image->aw, 32);
    EXPECT_EQ(image->ah, 16);
    const int strides[] = {38, 18, 10}, rows[] = {20, 8, 15}, offsets[] = {2 * 38 + 3, 1, 50};
    uint32_t base = 0;
    for (int p = 0; p < 3; p++) {
        EXPECT_EQ(image->stride[p], strides[p]);
        EXPECT_EQ(image->rows[p], rows[p]);
        EXPECT_EQ(image->base[p], image->base[0] + base);
        EXPECT_EQ(image->addr[p], image->base[p] + offsets[p]);
        EXPECT_EQ(image->pbase[p], 0x1000 + base);
        EXPECT_EQ(image->paddr[p], image->pbase[p] + static_cast<uint32_t>(offsets[p]));
        base += static_cast<uint32_t>(strides[p] * rows[p]);
    }

    // Packed formats pad in pixels and use only the first entry.
    const Image packed = create(20, 9, TAVU_CS_RGB888, 0, align, pad);
    EXPECT_EQ(packed->stride[0], (32 + 6) * 3);
    EXPECT_EQ(packed->addr[0] - packed->base[0], 2 * 38 * 3 + 3 * 3);

    // Without a second address, later planes still get their offset.
    memory.second = 0;
    const Image none = create(20, 9, TAVU_CS_YUV420, 0, align, pad);
    EXPECT_EQ(none->paddr[0], 0U);
    EXPECT_EQ(none->pbase[1], 38U * 20);
    EXPECT_EQ(none->paddr[1], 38U * 20 + 1);
}

// Expects 0 where `is_cleared(plane, row, byte)` is true, with rows and bytes counted from the
// plane's base, and 0xFF elsewhere.
template <class Rule>
void expect_cleared(const tavu_imgb_t &image, int planes, Rule is_cleared) {
    for (int p = 0; p < planes; p++) {
        for (int r = 0; r < image.rows[p]; r++) {
            for (int b = 0; b < image.stride[p]; b++) {
                const int value = image.base[p][r * image.stride[p] + b];
                ASSERT_EQ(value, is_cleared(p, r, b) ? 0 : 0xFF) << p << ' ' << r << ' ' << b;
            }
        }
    }
}

TEST_F(Imgb, ClearsTheAlignmentArea) {
    const uint32_t align[] = {pair(8, 4), pair(8, 8), pair(4, 4)};
    const Image planar = create(5, 3, TAVU_CS_YUV420, TAVU_IMGB_OPT_CLEAR_ALIGN, align);
    const int w[] = {5, 3, 3}, h[] = {3, 2, 2};
    expect_cleared(*planar, 3, [&](int p, int r, int b) { return r >= h[p] || b >= w[p]; });

    // Packed: in rows below the picture `aw` bytes are cleared, not `aw` pixels.
    const Image packed = create(5, 3, TAVU_CS_RGBA8888, TAVU_IMGB_OPT_CLEAR_ALIGN, align);
    expect_cleared(*packed, 1, [](int, int r, int b) { return r >= 3 ? b < 8 : b >= 20; });
}

TEST_F(Imgb, ClearsPadding) {
    const uint32_t align[] = {pair(8, 4), pair(1, 1), pair(1, 1)};
    const uint32_t pad[] = {pair(4, 2), 0, pair(2, 1)};
    const Image planar = create(5, 3, TAVU_CS_YUV420, TAVU_IMGB_OPT_CLEAR_PAD, align, pad);
    const int aw[] = {8, 3, 3}, ah[] = {4, 2, 2}, ph[] = {4, 0, 2}, pv[] = {2, 0, 1};
    expect_cleared(*planar, 3, [&](int p, int r, int b) {
        return r < pv[p] || r >= pv[p] + ah[p] || b < ph[p] || b >= ph[p] + aw[p];
    });

    // Packed: the horizontal padding is counted in bytes.
    const Image packed = create(8, 3, TAVU_CS_RGB565, TAVU_IMGB_OPT_CLEAR_PAD, nullptr, pad);
    expect_cleared(*packed, 1, [](int, int r, int b) {
        return r < 2 || r >= 5 || b < 4 || (b >= 12 && b < 16);
    });

    // No padding array, and no known flag: nothing to clear.
    const Image none = create(5, 3, TAVU_CS_YUV420, TAVU_IMGB_OPT_CLEAR_PAD | 4, align);
    expect_cleared(*none, 3, [](int, int, int) { return false; });
}

TEST_F(Imgb, OptionTakesItsGeometryFromTheCaller) {
    const Image image = create(16, 4, TAVU_CS_RGB888);
    const int32_t w = 3, h = 2, aw = 5, ah = 3;
    const uint32_t unit = pair(3, 1);
    const int32_t both = TAVU_IMGB_OPT_CLEAR_ALIGN | TAVU_IMGB_OPT_CLEAR_PAD;
    EXPECT_EQ(tavu_imgb_option(image.get(), both, 1, &w, &h, &aw, &ah, nullptr, &unit), TAVU_OK);
    expect_cleared(*image, 1, [](int, int r, int b) {
        return (r < 2 && b >= 9 && b < 15) || (r == 2 && b < 5);
    });
    EXPECT_EQ(tavu_imgb_option(nullptr, 1, 0, &w, &h, &aw, &ah, nullptr, &unit),
              TAVU_ERR_INVALID_ARGUMENT);
}

TEST_F(Imgb, FreesThePayloadWithTheLastReference) {
    int32_t status = TAVU_OK;
    EXPECT_EQ(tavu_imgb_create(4, 4, 10, 0, nullptr, nullptr, allocate, nullptr, &status), nullptr);
    EXPECT_EQ(status, TAVU_ERR_INVALID_ARGUMENT);
    memory.second = 77;
    Image image = create(4, 4, 10);
    image->addref(image.get());
    EXPECT_EQ(image->release(image.get()), 1);
    EXPECT_EQ(memory.freed, 0);
    image.reset();
    EXPECT_EQ(memory.freed, 1);
    EXPECT_EQ(memory.mismatched, 0);
}

// The record equals that of a new image with the same payload.
TEST_F(Imgb, RebirthChangesTheLayoutOfThePayload) {
    const int32_t cases[][3] = {{8, 4, TAVU_CS_YUV444}, {176, 1, TAVU_CS_YUV400}};
    const uint32_t pad[] = {pair(4, 0), 0, 0};
    memory.second = 0x100;
    const Image image = create(16, 8, TAVU_CS_YUV420);
    for (const auto &[w, h, cs] : cases) {
        const int32_t opt = TAVU_IMGB_OPT_CLEAR_PAD;
        const Image fresh = create(w, h, cs, opt, nullptr, pad);
        tavu_imgb_t expected = *fresh;
        expected.size = 192;
        for (int p = 0; p < 4 && fresh->base[p] != nullptr; p++) {
            expected.base[p] = image->base[0] + (fresh->base[p] - fresh->base[0]);
            expected.addr[p] = expected.base[p] + (fresh->addr[p] - fresh->base[p]);
        }
        image->x = image->y = 2;
        memset(image->base[0], 0xFF, 192);
        EXPECT_EQ(tavu_imgb_rebirth(image.get(), w, h, cs, opt, nullptr, pad), TAVU_OK);
        EXPECT_EQ(memcmp(&expected, image.get(), sizeof expected), 0);  // NOLINT: padding is zero
        EXPECT_EQ(memcmp(fresh->base[0], image->base[0], static_cast<size_t>(fresh->size)), 0);
    }
    EXPECT_EQ(tavu_imgb_rebirth(nullptr, 8, 8, 10, 0, nullptr, nullptr), TAVU_ERR_INVALID_ARGUMENT);
}

}  // namespace
