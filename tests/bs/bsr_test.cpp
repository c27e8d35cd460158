#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bits.h"
#include "bsr_model.h"
#include "memory.h"
#include "tavu.h"

namespace {

struct Call {
    int op, n;
    int64_t value;
    int left;  // bits in the cache afterwards
    int most = 0;
};

// Checks calls on a reader and on the model. The data fills its heap block, so that sanitizers see
// a read past the end.
void expect_calls(const Bytes &data, const std::vector<Call> &calls) {
    SCOPED_TRACE(testing::PrintToString(data));
    tavu_bsr_t r;
    ReaderModel m{data.data(), static_cast<int>(data.size()), nullptr};
    tavu_bsr_init(&r, m.data, m.size, nullptr);
    for (const Call &c : calls) {
        const auto value = static_cast<uint32_t>(c.value);
        EXPECT_EQ(operate(&r, c.op, c.n, c.most), value) << c.op;
        EXPECT_EQ(operate(&m, c.op, c.n, c.most), value) << c.op;
        EXPECT_EQ(r.leftbits, c.left) << c.op;
        EXPECT_EQ(r.cur - r.beg, m.loaded) << c.op;
    }
}

TEST(Bsr, MissingBits) {
    expect_calls({}, {{READ, 1, -1, 0}, {UE, 0, -2, 0}, {SE, 0, 1, 0}, {UN, 0, 0, -1}});
    // They read as zeros and are owed; the next read that needs a refill fails.
    expect_calls({0xAB}, {{READ, 12, 0xAB0, -4}, {READ1, 0, 0, -5}, {READ, 1, -1, 0}});
    expect_calls({0x12, 0x34, 0x56, 0x78}, {{READ, 32, 0x12345678, 0}, {READ, 1, -1, 0}});
}

TEST(Bsr, PeekBorrowsFromTheNextByteWithoutLoadingIt) {
    expect_calls({0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC},
                 {{SKIP, 4, 0, 28}, {PEEK, 32, 0x23456789, 28}, {READ, 32, 0x23456789, 12}});
    // If there is no next byte, the cache stays as it was.
    expect_calls({0xF1}, {{SKIP, 4, 0, 4}, {PEEK, 8, 0x10, 4}, {READ, 4, 1, 0}});
}

TEST(Bsr, AlignmentDropsTheRestOfAByteOrReturnsItAndItsLength) {
    expect_calls(
        {0xFF, 0x80, 0x01},
        {{SKIP, 5, 0, 19}, {READ_ALIGN8, 0, 0x307, 16}, {SKIP, 1, 0, 15}, {ALIGN8, 0, 0, 8}});
}

TEST(Bsr, TruncatedExpGolombCodesOfSmallRanges) {
    expect_calls({0x40}, {{TE, 0, 0, 0}, {TE, 0, 0, 0, -1}, {TE, 0, 1, 7, 1}, {TE, 0, 0, 6, 1}});
}

TEST(Bsr, UnaryRuns) {
    expect_calls({0x5B, 0xFE, 0x80},
                 {{UN, 0, 0, 23}, {UN, 0, 1, 21}, {UN, 0, 2, 18}, {UN, 0, 9, 8}});
    // A run that fills the cache takes its 0 from the empty position after it.
    expect_calls({0, 0, 0, 3, 0xE0, 0, 0, 0, 0},
                 {{SKIP, 30, 0, 2}, {UN, 0, 2, -1}, {READ, 4, 0x1C, 27}});
    // A full cache is dropped and counted as 32 ones, whatever it holds.
    expect_calls({0, 0, 0, 0, 0xC0}, {{PEEK, 32, 0, 32}, {UN, 0, 34, 5}});
}

// The limit is twice `n`.
TEST(Bsr, TruncatedUnaryRuns) {
    expect_calls({0xF7, 0xC0, 0x40},
                 {{TU, 2, 4, 19}, {TU, 2, 4, 15}, {TU, 2, 1, 13}, {TU, 2, 0, 12}});
    // A full cache that holds the limit is consumed unexamined.
    const Bytes ones_at_32 = {0, 0, 0, 0, 0xF0, 0, 0, 0};
    expect_calls(ones_at_32, {{PEEK, 32, 0, 32}, {TU, 2, 4, 28}, {TU, 0, 0, 28}});
    // A full cache that does not counts as ones.
    expect_calls(ones_at_32, {{PEEK, 32, 0, 32}, {TU, 20, 36, 27}});
    // With more ones than the limit, as many bits of the new cache are consumed.
    expect_calls({0, 0, 0, 0, 0xFF, 0xFF, 0, 0}, {{PEEK, 32, 0, 32}, {TU, 17, 34, -2}});
}

// A peek also requests the bytes of the owed bits (a negative leftbits): 8 after a code of zeros,
// and 4 more with every 12 hostile bytes. A refill that loads only 4 keeps the position.
TEST(Bsr, HostileBytesRaiseThePeekRequestWithoutBound) {
    for (int rounds = 0; rounds < 100; rounds++) {
        Bytes data(static_cast<size_t>(12 * rounds) + 20);
        for (int i = 1; i <= rounds; i++) data[static_cast<size_t>(12 * i)] = 0x80;
        ShortReader bs(data.data(), static_cast<int32_t>(data.size()), {4, 4, 4, 4});
        tavu_bsr_peek(&bs, 1);
        tavu_bsr_read_ue(&bs);
        for (int i = 0; i < rounds; i++) {
            do tavu_bsr_read_ue(&bs);
            while (bs.code != 0);
            tavu_bsr_read_ue(&bs);
        }
        ASSERT_EQ(bs.asked, 4);
        const auto position = (bs.cur - bs.beg) * 8 - bs.leftbits;
        tavu_bsr_peek(&bs, 8);
        ASSERT_EQ(bs.asked, 8 + 4 * rounds);
        ASSERT_EQ((bs.cur - bs.beg) * 8 - bs.leftbits, position);
    }
}

// A run of ones to the end of the first word leaves the first bit of the second one owed.
TEST(Bsr, OwedBitsAffectEachFunctionAsDocumented) {
    const std::pair<uint32_t, Call> cases[] = {
        {0x60000000, {READ, 4, 0xC, 27}},  // the owed bit is above the requested ones
        {0xE0000000, {READ, 4, 0x1C, 27}},
        {0xE0000000, {READ, 0, 1, 31}},
        {0xE0000001, {READ, 31, 0xE0000001, 0}},
        {0xE0000001, {READ, 32, 0, -1}},  // more than a word, so its value is lost
        {0xE0000000, {READ1, 0, 0, -2}},  // the bit is not examined
        {0x00000000, {TE, 0, 1, -2, 1}},
        {0x60000000, {SKIP, 0, 0, 31}},
        {0x60000000, {SKIP_PEEK, 3, 6, 31}},
        {0x60000000, {SKIP_PEEK, 3, 4, 30, 1}},
        {0xFFFFFFFF, {PEEK, 8, 0, 31}},  // the word becomes zeros
        {0xFFFFFFFF, {ALIGN8, 0, 0, -8}},
        {0xFFFFFFFF, {READ_ALIGN8, 0, 7 * 256, -8}},
        {0x20000000, {UE, 0, 1, 28}},  // correct if the owed bit and the next are 0
        {0x10000000, {SE, 0, 2, 26}},
        {0x60000000, {UE, 0, 0, 31}},           // the code is not consumed
        {0xA0000000, {UE, 0, UINT32_MAX, 32}},  // nothing is consumed
        {0xA0000000, {SE, 0, 0, 32}},
        {0xD0000000, {UN, 0, 1, 29}},  // correct if the owed bit is 1
        {0x60000000, {UN, 0, UINT32_MAX, 31}},
        {0xD0000000, {TU, 1, 1, 29}},
        {0x60000000, {TU, 1, UINT32_MAX, 31}},
        {0xF8000000, {TU, 1, 2, 30}},  // the owed bit counts as one of the limit
    };
    for (const auto &[word, call] : cases) {
        Bytes data(12, 0xFF);
        for (size_t i = 0; i < 4; i++) data[4 + i] = static_cast<uint8_t>(word >> (24 - 8 * i));
        expect_calls(data, {{READ1, 0, 1, 31}, {UN, 0, 31, -1}, call});
    }
}

TEST(Bsr, AnyCallsOnAnyDataEqualTheModel) { EXPECT_TRUE(on_random_inputs(reader_equals_model)); }

// The most that a call asks for if no bits are owed.
TEST(Bsr, SkipAndPeekOfTheLastByteAskForSeven) {
    const uint8_t last = 0;
    ShortReader bs(&last, 1, {4, 4, 4, 4});
    tavu_bsr_skip_peek(&bs, 32, 8);
    EXPECT_EQ(bs.asked, 7);
}

struct Field {
    int op, n;
    size_t end;  // the bit after it
};

struct Header {
    explicit Header(std::mt19937 *random) {
        for (auto count = (*random)() % 20 + 1; count > 0; count--) {
            constexpr int OPS[] = {READ, READ1, SKIP, UE, SE, ALIGN8, READ_ALIGN8};
            const int op = OPS[(*random)() % 7], n = static_cast<int>((*random)() % 31) + 1;
            // Many single bits in a row owe more bits than the longest code.
            for (int i = op == READ1 && n > 24 ? 90 : 1; i > 0; i--) {
                add(op, n, random);
                fields.push_back({op, n, bits.size()});
            }
        }
    }
    void add(int op, int n, std::mt19937 *random) {
        if (op == UE || op == SE) {
            bits += exp_golomb(static_cast<uint32_t>((*random)() % 65535 >> (*random)() % 16));
        } else if (op == ALIGN8 || op == READ_ALIGN8) {
            bits.resize((bits.size() + 7) / 8 * 8, '0');
        } else {
            for (int i = op == READ1 ? 1 : n; i > 0; i--) bits += (*random)() % 2 ? '1' : '0';
        }
    }
    std::vector<Field> fields;
    std::string bits;
};

TEST(Bsr, ARefillThatRecordsTheEndDetectsExactlyTheTruncatedHeaders) {
    std::mt19937 random(1);
    for (int round = 0; round < 500; round++) {
        const Header header(&random);
        const Bytes whole = pack(header.bits);
        for (size_t size = 0; size <= whole.size(); size++) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
            ShortReader r(cut.data(), static_cast<int32_t>(size), {4, 4, 4, 4});
            bool noticed = false;  // by a caller that checks each result
            for (const auto &[op, n, end] : header.fields) {
                const bool shows = op == READ || op == READ1 || op == UE;
                const auto result = static_cast<int32_t>(operate(&r, op, n, 0));
                const bool failed = (shows && result < 0) || r.leftbits < 0;
                if (end <= 8 * size) {
                    ASSERT_FALSE(failed || r.ended);
                } else if (shows && !noticed) {
                    ASSERT_TRUE(failed);
                    noticed = true;
                }
            }
            ASSERT_EQ(r.ended || r.leftbits < 0, header.bits.size() > 8 * size) << round;
        }
    }
}

TEST(Bsr, CountsLeadingZeros) {
    EXPECT_EQ(tavu_bsr_clz_in_code(0), 32);
    for (int n = 0; n < 32; n++) EXPECT_EQ(tavu_bsr_clz_in_code(0xFFFFFFFFU >> n), n);
}

}  // namespace
