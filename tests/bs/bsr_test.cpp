#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bits.h"
#include "memory.h"
#include "tavu.h"

namespace {

// A reader over a copy that fills its heap block, so that sanitizers see a read past the end.
struct Reader : tavu_bsr_t {
    explicit Reader(const Bytes &content) : copy(content) {
        tavu_bsr_init(this, copy.data(), static_cast<int32_t>(copy.size()), nullptr);
    }
    int position() const { return static_cast<int>(cur - beg) * 8 - leftbits; }
    Bytes copy;
};

TEST(Bsr, ExpGolombCodesOfAllLengthsAtAllPositions) {
    for (int lead = 0; lead < 32; lead++) {
        std::string bits(static_cast<size_t>(lead), '1');
        std::vector<uint32_t> values;
        for (uint32_t n = 0; n < 16; n++) {
            for (uint32_t v : {(1U << n) - 1, (1U << n), (2U << n) - 2}) {
                if (v > 65534) continue;
                values.push_back(v);
                bits += exp_golomb(v);
            }
        }
        Reader ue(pack(bits)), se(pack(bits)), te(pack(bits));
        for (Reader *r : {&ue, &se, &te}) tavu_bsr_skip(r, lead);
        for (uint32_t v : values) {
            const auto k = static_cast<int32_t>(v);
            ASSERT_EQ(tavu_bsr_read_ue(&ue), k) << "lead " << lead;
            ASSERT_EQ(tavu_bsr_read_te(&te, 2), k);
            ASSERT_EQ(tavu_bsr_read_se(&se), k % 2 ? (k + 1) / 2 : -k / 2);
        }
    }
}

TEST(Bsr, TruncatedExpGolombOfSmallRanges) {
    Reader r({0x40});
    EXPECT_EQ(tavu_bsr_read_te(&r, 0) | tavu_bsr_read_te(&r, -1) | r.position(), 0);
    EXPECT_EQ(tavu_bsr_read_te(&r, 1), 1);
    EXPECT_EQ(tavu_bsr_read_te(&r, 1), 0);
    EXPECT_EQ(r.position(), 2);
}

TEST(Bsr, EndOfData) {
    tavu_bsr_t none;
    tavu_bsr_init(&none, nullptr, 0, nullptr);
    EXPECT_EQ(tavu_bsr_read(&none, 1), -1);
    EXPECT_EQ(tavu_bsr_read1(&none), -1);
    EXPECT_EQ(tavu_bsr_read_ue(&none), -2);
    EXPECT_EQ(tavu_bsr_read_se(&none), 1);
    EXPECT_EQ(tavu_bsr_read_te(&none, 1), 2);
    EXPECT_EQ(tavu_bsr_skip_peek(&none, 1, 8) | tavu_bsr_peek(&none, 32), 0U);
    tavu_bsr_skip(&none, 5);
    EXPECT_EQ(none.leftbits, 0);

    // Missing bits are zeros, and the next bits count as read; only then a read fails.
    Reader byte({0xAB});
    EXPECT_EQ(tavu_bsr_read(&byte, 12), 0xAB0);
    EXPECT_EQ(byte.leftbits, -4);
    EXPECT_EQ(tavu_bsr_read1(&byte), 0);
    EXPECT_EQ(byte.leftbits, -5);
    EXPECT_EQ(tavu_bsr_read(&byte, 1), -1);
    EXPECT_EQ(byte.leftbits, 0);

    Reader word({0x12, 0x34, 0x56, 0x78});
    EXPECT_EQ(tavu_bsr_read(&word, 32), 0x12345678);
    EXPECT_EQ(word.code, 0U);
    EXPECT_EQ(tavu_bsr_read(&word, 1), -1);
}

TEST(Bsr, PeekTakesTheMissingBitsFromTheNextByteWithoutLoadingIt) {
    Reader r({0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC});
    tavu_bsr_skip(&r, 4);
    const uint8_t *cur = r.cur;
    EXPECT_EQ(tavu_bsr_peek(&r, 32), 0x23456789U);
    EXPECT_EQ(r.cur, cur);
    EXPECT_EQ(r.leftbits, 28);

    // A refill that finds nothing leaves the cache as it was; there is no next byte to borrow from.
    Reader last({0xF1});
    tavu_bsr_skip(&last, 4);
    EXPECT_EQ(tavu_bsr_peek(&last, 8), 0x10U);
    EXPECT_EQ(last.leftbits, 4);
    EXPECT_EQ(tavu_bsr_read(&last, 4), 1);
}

TEST(Bsr, AlignsToBytes) {
    Reader r({0xFF, 0x80, 0x01});
    tavu_bsr_skip_align8(&r);
    EXPECT_EQ(r.position(), 0);
    tavu_bsr_skip(&r, 9);
    EXPECT_EQ(tavu_bsr_read_align8(&r, nullptr), 0);
    tavu_bsr_skip_align8(&r);
    EXPECT_EQ(tavu_bsr_read(&r, 8), 1);
}

TEST(Bsr, UnaryRunsEndWithinTheCache) {
    Reader r(
        pack("0"
             "10"
             "110"
             "1111111110"
             "1"));
    tavu_bsr_peek(&r, 17);
    EXPECT_EQ(tavu_bsr_read_un(&r), 0);
    EXPECT_EQ(tavu_bsr_read_un(&r), 1);
    EXPECT_EQ(tavu_bsr_read_un(&r), 2);
    EXPECT_EQ(tavu_bsr_read_un(&r), 9);
    EXPECT_EQ(r.position(), 16);
}

// A run that fills the cache takes its 0 from the empty position behind it.
TEST(Bsr, UnaryRunsToTheEndOfTheCacheStopThere) {
    Reader r({0x00, 0x00, 0x00, 0x03, 0xE0, 0, 0, 0, 0});
    tavu_bsr_skip(&r, 30);
    EXPECT_EQ(tavu_bsr_read_un(&r), 2);
    EXPECT_EQ(r.leftbits, -1);
    EXPECT_EQ(tavu_bsr_read(&r, 4), 0xE << 1 | 0);  // absorbs the first bit of the refill too

    // A full cache is dropped and counted as 32 ones, whatever it holds.
    Reader full({0, 0, 0, 0, 0xC0});
    tavu_bsr_peek(&full, 32);
    EXPECT_EQ(full.leftbits, 32);
    EXPECT_EQ(tavu_bsr_read_un(&full), 34);
    EXPECT_EQ(full.leftbits, 5);

    // So is an empty one at the end of the data, where the refill yields zeros.
    Reader end({});
    EXPECT_EQ(tavu_bsr_read_un(&end), 0);
    EXPECT_EQ(end.leftbits, -1);
}

TEST(Bsr, TruncatedUnary) {
    struct {
        const char *bits;
        int32_t max, value, consumed;
    } const cases[] = {{"1110", 3, 3, 4},   {"1111", 3, 3, 3}, {"10", 3, 1, 2}, {"0", 3, 0, 1},
                       {"111111", 1, 1, 1}, {"10", 0, 0, 0},   {"01", 0, 0, 0}, {"0111", 1, 0, 1}};
    for (const auto &c : cases) {
        Reader r(pack(std::string("0") + c.bits));
        tavu_bsr_read1(&r);  // fills the cache
        EXPECT_EQ(tavu_bsr_read_tu(&r, c.max), c.value) << c.bits;
        EXPECT_EQ(r.position(), 1 + c.consumed) << c.bits;
    }

    // A full cache is not looked at when it holds enough bits, else dropped and counted as ones.
    Reader full({0, 0, 0, 0, 0xF0, 0, 0, 0});
    tavu_bsr_peek(&full, 32);
    EXPECT_EQ(tavu_bsr_read_tu(&full, 3), 3);
    EXPECT_EQ(full.leftbits, 29);
    Reader refilled({0, 0, 0, 0, 0xF0, 0, 0, 0});
    tavu_bsr_peek(&refilled, 32);
    EXPECT_EQ(tavu_bsr_read_tu(&refilled, 40), 36);
    EXPECT_EQ(refilled.leftbits, 27);
    // With more ones than `max`, that many bits of the new cache are consumed all the same.
    Reader over({0, 0, 0, 0, 0xFF, 0xFF, 0, 0});
    tavu_bsr_peek(&over, 32);
    EXPECT_EQ(tavu_bsr_read_tu(&over, 33), 33);
    EXPECT_EQ(over.leftbits, -1);
}

TEST(Bsr, CustomRefillIsAskedForFourBytesOrWhatFits) {
    static std::vector<int32_t> asked;
    asked.clear();
    tavu_bsr_t bs;
    const uint8_t data[] = {1, 2, 3, 4, 5, 6, 7, 8};
    tavu_bsr_init(&bs, data, sizeof data, [](tavu_bsr_t *b, int32_t n) {
        asked.push_back(n);
        return tavu_bsr_flush(b, n);
    });
    EXPECT_EQ(tavu_bsr_read(&bs, 12), 0x010);
    EXPECT_EQ(tavu_bsr_peek(&bs, 24), 0x203040U);
    EXPECT_EQ(tavu_bsr_peek(&bs, 28), 0x2030405U);
    EXPECT_EQ(asked, (std::vector<int32_t>{4, 1}));
    EXPECT_EQ(bs.size, 8);
    EXPECT_EQ(bs.end, data + 7);

    EXPECT_EQ(tavu_bsr_flush(&bs, 0), -1);
    EXPECT_EQ(bs.leftbits, 0);
    EXPECT_EQ(tavu_bsr_flush(&bs, 4), 0);
    EXPECT_EQ(bs.code, 0x06070800U);
    EXPECT_EQ(bs.leftbits, 24);
    EXPECT_EQ(tavu_bsr_flush(&bs, 4), -1);
}

TEST(Bsr, CountsLeadingZeros) {
    EXPECT_EQ(tavu_bsr_clz_in_code(0), 32);
    for (int n = 0; n < 32; n++) EXPECT_EQ(tavu_bsr_clz_in_code(0xFFFFFFFFU >> n), n);
}

}  // namespace
