#include <gtest/gtest.h>

#include <string>

#include "memory.h"
#include "tavu.h"

namespace {

std::string hex(const uint8_t *digest) {
    std::string text;
    for (int i = 0; i < 32; i++) text += "0123456789abcdef"[digest[i / 2] >> (i % 2 ? 0 : 4) & 15];
    return text;
}

// Feeds `data` in pieces of `piece` bytes.
void digest_of(const char *data, size_t size, size_t piece, uint8_t *digest) {
    tavu_md5_t context;
    tavu_md5_init(&context);
    for (size_t at = 0; at < size; at += piece) {
        tavu_md5_update(&context, data + at, static_cast<uint32_t>(std::min(piece, size - at)));
    }
    tavu_md5_finish(&context, digest);
}

std::string md5(const std::string &text, size_t piece = 1000) {
    uint8_t digest[16];
    digest_of(text.data(), text.size(), piece, digest);
    return hex(digest);
}

// RFC 1321, A.5.
TEST(Md5, KnownDigests) {
    EXPECT_EQ(md5(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5("abc", 1), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(
        md5("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
        "57edf4a22be3c955ac49da2e2107b67a");
    EXPECT_EQ(md5(std::string(1000000, 'a')), "7707d6ae4e027c70eea2a935c2296f21");
}

// The digest of all digests of the prefixes of a pattern, made by an independent implementation.
TEST(Md5, EveryLengthUpTo300InPiecesOfAnySizeAndAlignment) {
    std::string pattern;
    for (int i = 0; i < 300; i++) pattern += static_cast<char>((i * 7 + 3) % 256);
    for (size_t piece : {1U, 3U, 63U, 64U, 65U, 300U}) {
        tavu_md5_t all;
        tavu_md5_init(&all);
        for (size_t n = 0; n <= 300; n++) {
            uint8_t digest[16];
            digest_of(pattern.data(), n, piece, digest);
            tavu_md5_update(&all, digest, 16);
        }
        uint8_t digest[16];
        tavu_md5_finish(&all, digest);
        EXPECT_EQ(hex(digest), "bbc8219ce2f09cb1b1235ce3b7ef018c") << piece;
    }
}

// The padding, added by hand, must give the same: the length is that of all bytes, in two words.
TEST(Md5, CountsBitsInTwoWordsAndForgetsEverythingAtTheEnd) {
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
// 2^29 bytes in one call have 2^32 bits. The memory is one page that is never written. The half
// gigabyte takes a second, but half a minute with sanitizers or an emulator.
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

// An image buffer whose whole payload is filled, padding too.
struct Picture {
    Picture(int w, int h, int cs, const uint32_t *pad = nullptr)
        : image(tavu_imgb_create(w, h, cs, 0, nullptr, pad, nullptr, nullptr, nullptr)) {
        for (int i = 0; i < image->size; i++) image->base[0][i] = static_cast<uint8_t>(i * 11 + 3);
    }
    ~Picture() { image->release(image); }
    Picture(const Picture &) = delete;
    Picture &operator=(const Picture &) = delete;

    std::string digest() const {
        uint8_t out[16];
        EXPECT_EQ(tavu_md5_imgb(image, out), TAVU_OK);
        return hex(out);
    }
    // The bytes that should be hashed: `rows` rows from `first` on, `bytes` each.
    std::string region(int plane, int first, int rows, int bytes) const {
        std::string text;
        for (int r = first; r < first + rows; r++) {
            const auto *row = image->addr[plane] + r * image->stride[plane];
            text.append(row, row + bytes);
        }
        return text;
    }
    tavu_imgb_t *image;
};

TEST(Md5Imgb, HashesTheVisiblePictureAlone) {
    const uint32_t pad[] = {5 << 16 | 2, 1 << 16, 3};
    const Picture p(3, 3, 11, pad);
    EXPECT_EQ(p.digest(), md5(p.region(0, 0, 3, 3) + p.region(1, 0, 2, 2) + p.region(2, 0, 2, 2)));
}

TEST(Md5Imgb, TakesChromaAsHalvedInEveryLayout) {
    const Picture grey(5, 4, 10), full(5, 4, 43);
    EXPECT_EQ(grey.digest(), md5(grey.region(0, 0, 4, 5)));
    EXPECT_EQ(full.digest(),
              md5(full.region(0, 0, 4, 5) + full.region(1, 0, 2, 3) + full.region(2, 0, 2, 3)));
}

TEST(Md5Imgb, RegionOfInterestStartsLowerAndShortensRows) {
    const Picture p(9, 8, 11);
    p.image->x = 3;
    p.image->y = 5;
    EXPECT_EQ(p.digest(), md5(p.region(0, 5, 3, 6) + p.region(1, 2, 2, 3) + p.region(2, 2, 2, 3)));
}

TEST(Md5Imgb, NegativeOriginsReachIntoThePadding) {
    const uint32_t pad[] = {4 << 16 | 4, 4 << 16 | 4, 4 << 16 | 4};
    const Picture p(5, 7, 11, pad);
    p.image->x = -3;
    p.image->y = -3;  // half of it, rounded down, is -2
    EXPECT_EQ(p.digest(),
              md5(p.region(0, -3, 10, 8) + p.region(1, -2, 6, 4) + p.region(2, -2, 6, 4)));
}

// The largest height has no successor in 32 bits. All rows are the same one.
TEST(Md5Imgb, LargestHeight) {
    const Picture p(5, 4, 11);
    for (int32_t &stride : p.image->stride) stride = 0;
    p.image->h = INT32_MAX;
    p.image->y = INT32_MAX - 2;
    EXPECT_EQ(p.digest(), md5(p.region(0, 0, 2, 5) + p.region(1, 0, 1, 3) + p.region(1, 0, 1, 3) +
                              p.region(2, 0, 1, 3) + p.region(2, 0, 1, 3)));
}

TEST(Md5Imgb, RefusesPackedPictures) {
    const Picture packed(4, 4, 300);
    uint8_t digest[16] = {1, 2, 3};
    for (int32_t cs : {300, -1, 100, INT32_MIN}) {
        packed.image->cs = cs;
        EXPECT_EQ(tavu_md5_imgb(packed.image, digest), TAVU_ERR_UNSUPPORTED_CS);
    }
    EXPECT_EQ(tavu_md5_imgb(nullptr, digest), TAVU_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(digest[0] + digest[1] + digest[2], 6);
    packed.image->cs = 99;
    packed.image->addr[1] = packed.image->addr[2] = packed.image->addr[0];
    EXPECT_EQ(tavu_md5_imgb(packed.image, digest), TAVU_OK);
}

}  // namespace
