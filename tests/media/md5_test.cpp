#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

#include "memory.h"
#include "tavu.h"

namespace {

std::string hex(const uint8_t *digest) {
    std::string text;
    for (int i = 0; i < 32; i++) text += "0123456789abcdef"[digest[i / 2] >> (i % 2 ? 0 : 4) & 15];
    return text;
}

using Digest = std::array<uint8_t, 16>;

// Feeds `text` in pieces of `piece` bytes.
Digest digest_of(const std::string &text, size_t piece) {
    tavu_md5_t context;
    tavu_md5_init(&context);
    for (size_t at = 0; at < text.size(); at += piece) {
        const size_t size = std::min(piece, text.size() - at);
        tavu_md5_update(&context, text.data() + at, static_cast<uint32_t>(size));
    }
    Digest digest;
    tavu_md5_finish(&context, digest.data());
    return digest;
}

std::string md5(const std::string &text) { return hex(digest_of(text, 1000).data()); }

// RFC 1321, A.5.
TEST(Md5, KnownDigests) {
    EXPECT_EQ(md5(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5(std::string(1000000, 'a')), "7707d6ae4e027c70eea2a935c2296f21");
}

// The digest of all digests of the prefixes of a pattern, computed with Python's hashlib.
TEST(Md5, EveryLengthUpTo300InPiecesOfAnySizeAndAlignment) {
    std::string pattern;
    for (int i = 0; i < 300; i++) pattern += static_cast<char>((i * 7 + 3) % 256);
    for (size_t piece : {1U, 3U, 63U, 64U, 65U, 300U}) {
        std::string all;
        for (size_t n = 0; n <= 300; n++) {
            const Digest digest = digest_of(pattern.substr(0, n), piece);
            all.append(digest.begin(), digest.end());
        }
        EXPECT_EQ(md5(all), "bbc8219ce2f09cb1b1235ce3b7ef018c") << piece;
    }
}

// Padding appended by hand must give the same digest: its length counts all bits, in two words.
TEST(Md5, CountsBitsInTwoWordsAndClearsTheContextAtTheEnd) {
    tavu_md5_t context;
    tavu_md5_init(&context);
    context.bits[0] = 0xFFFFFE00;
    context.bits[1] = 0x12345677;
    const Bytes block(64, 0);
    tavu_md5_update(&context, block.data(), 64);
    tavu_md5_update(&context, nullptr, 0);
    tavu_md5_update(&context, block.data(), 3);
    EXPECT_EQ(context.bits[0], 24U);
    EXPECT_EQ(context.bits[1], 0x12345678U);
    Bytes padding(61, 0);
    padding[0] = 0x80;
    const uint8_t length[8] = {24, 0, 0, 0, 0x78, 0x56, 0x34, 0x12};
    std::copy_n(length, 8, &padding[53]);
    tavu_md5_t padded = context;
    tavu_md5_update(&padded, padding.data(), 61);
    uint8_t digest[16];
    tavu_md5_finish(&context, digest);
    for (int i = 0; i < 16; i++) EXPECT_EQ(digest[i], padded.state[i / 4] >> i % 4 * 8 & 0xFF);
    const tavu_md5_t zero{};
    EXPECT_EQ(memcmp(&context, &zero, sizeof zero), 0);
}

#if defined(NDEBUG) && defined(__x86_64__)
// 2^29 bytes in one call have 2^32 bits. The mapping is never written, so it takes no memory.
// Hashing takes a second, but half a minute with sanitizers or an emulator.
TEST(Md5, OneCallMayAddMoreBitsThanAWordCounts) {
    constexpr size_t SIZE = size_t{1} << 29;
    void *zeros = mmap(nullptr, SIZE, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(zeros, MAP_FAILED);
    tavu_md5_t context;
    tavu_md5_init(&context);
    tavu_md5_update(&context, zeros, SIZE);
    munmap(zeros, SIZE);
    EXPECT_EQ(context.bits[0], 0U);
    EXPECT_EQ(context.bits[1], 1U);
}
#endif

struct Region {
    int first, rows, bytes;
};

using Image = std::unique_ptr<tavu_imgb_t, decltype(tavu_imgb_t::release)>;

// An image buffer whose whole payload is filled, including the padding.
Image picture(int w, int h, int cs, const uint32_t *pad = nullptr) {
    tavu_imgb_t *image = tavu_imgb_create(w, h, cs, 0, nullptr, pad, nullptr, nullptr, nullptr);
    for (int i = 0; i < image->size; i++) image->base[0][i] = static_cast<uint8_t>(i * 11 + 3);
    return {image, image->release};
}

// The bytes that should be hashed; both chroma planes have the same region.
std::string bytes(const Image &image, const Region &luma, const Region &chroma) {
    std::string text;
    for (int plane = 0; plane < 3; plane++) {
        const Region &region = plane == 0 ? luma : chroma;
        for (int r = region.first; r < region.first + region.rows; r++) {
            const auto *row = image->addr[plane] + r * image->stride[plane];
            text.append(row, row + region.bytes);
        }
    }
    return text;
}

void expect_hashed(const Image &image, const Region &luma, const Region &chroma) {
    uint8_t digest[16];
    EXPECT_EQ(tavu_md5_imgb(image.get(), digest), TAVU_OK);
    EXPECT_EQ(hex(digest), md5(bytes(image, luma, chroma)));
}

TEST(Md5Imgb, HashesOnlyTheVisibleRows) {
    constexpr uint32_t PAD = 5 << 16 | 4;
    const struct {
        const char *name;
        int w, h, cs, x, y;
        uint32_t pad;
        Region luma, chroma;
    } cases[] = {
        {"padding is not hashed", 3, 3, 11, 0, 0, PAD, {0, 3, 3}, {0, 2, 2}},
        {"no chroma", 5, 4, 10, 0, 0, 0, {0, 4, 5}, {0, 0, 0}},
        {"chroma is treated as 4:2:0 in every layout", 5, 4, 43, 0, 0, 0, {0, 4, 5}, {0, 2, 3}},
        {"an origin lowers the start and shortens rows", 9, 8, 11, 3, 5, 0, {5, 3, 6}, {2, 2, 3}},
        {"half of -3 is -2", 5, 7, 11, -3, -3, PAD, {-3, 10, 8}, {-2, 6, 4}},
    };
    for (const auto &c : cases) {
        const uint32_t pad[] = {c.pad, c.pad, c.pad, c.pad};
        SCOPED_TRACE(c.name);
        const Image image = picture(c.w, c.h, c.cs, pad);
        image->x = c.x;
        image->y = c.y;
        expect_hashed(image, c.luma, c.chroma);
    }
}

// The largest height plus 1 overflows 32 bits. A stride of 0 makes all rows the same.
TEST(Md5Imgb, LargestHeight) {
    const Image image = picture(5, 4, 11);
    for (int32_t &stride : image->stride) stride = 0;
    image->h = INT32_MAX;
    image->y = INT32_MAX - 2;
    expect_hashed(image, {0, 2, 5}, {0, 2, 3});
}

TEST(Md5Imgb, RefusesPackedPictures) {
    const Image packed = picture(4, 4, 300);
    uint8_t digest[16] = {1, 2, 3};
    for (int32_t cs : {300, -1, 100, INT32_MIN}) {
        packed->cs = cs;
        EXPECT_EQ(tavu_md5_imgb(packed.get(), digest), TAVU_ERR_UNSUPPORTED_CS);
    }
    EXPECT_EQ(tavu_md5_imgb(nullptr, digest), TAVU_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(digest[0] + digest[1] + digest[2], 6);
    packed->cs = 99;
    packed->addr[1] = packed->addr[2] = packed->addr[0];
    EXPECT_EQ(tavu_md5_imgb(packed.get(), digest), TAVU_OK);
}

}  // namespace
