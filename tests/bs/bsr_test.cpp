#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bits.h"
#include "bsr_model.h"
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

    // Missing bits read as zeros and are owed; the next read that needs a refill fails.
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

// A run that fills the cache takes its 0 from the empty position after the cache.
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

    // A full cache is not examined: it is consumed if it holds enough bits, else counted as ones.
    Reader full({0, 0, 0, 0, 0xF0, 0, 0, 0});
    tavu_bsr_peek(&full, 32);
    EXPECT_EQ(tavu_bsr_read_tu(&full, 3), 3);
    EXPECT_EQ(full.leftbits, 29);
    Reader refilled({0, 0, 0, 0, 0xF0, 0, 0, 0});
    tavu_bsr_peek(&refilled, 32);
    EXPECT_EQ(tavu_bsr_read_tu(&refilled, 40), 36);
    EXPECT_EQ(refilled.leftbits, 27);
    // With more ones than `max`, `max` bits of the new cache are consumed.
    Reader over({0, 0, 0, 0, 0xFF, 0xFF, 0, 0});
    tavu_bsr_peek(&over, 32);
    EXPECT_EQ(tavu_bsr_read_tu(&over, 33), 33);
    EXPECT_EQ(over.leftbits, -1);
}

TEST(Bsr, CustomRefillIsAskedForFourBytesOrWhatFits) {
    const uint8_t data[] = {1, 2, 3, 4, 5, 6, 7, 8};
    ShortReader bs(data, sizeof data, {4, 4, 4, 4});
    EXPECT_EQ(tavu_bsr_read(&bs, 12), 0x010);
    EXPECT_EQ(bs.asked, 4);
    EXPECT_EQ(tavu_bsr_peek(&bs, 24), 0x203040U);
    EXPECT_EQ(tavu_bsr_peek(&bs, 28), 0x2030405U);
    EXPECT_EQ(bs.asked, 1);
    EXPECT_EQ(bs.refills, 2U);
    EXPECT_EQ(bs.size, 8);
    EXPECT_EQ(bs.end, data + 7);

    EXPECT_EQ(tavu_bsr_flush(&bs, 0), -1);
    EXPECT_EQ(bs.leftbits, 0);
    EXPECT_EQ(tavu_bsr_flush(&bs, 4), 0);
    EXPECT_EQ(bs.code, 0x06070800U);
    EXPECT_EQ(bs.leftbits, 24);
    EXPECT_EQ(tavu_bsr_flush(&bs, 4), -1);
}

// A peek also asks for the bytes that owed bits stand for: 8 after a code of zeros, and 4 more with
// every 12 hostile bytes. A refill that loads 4 keeps the position.
TEST(Bsr, HostileBytesRaiseWhatAPeekAsksForWithoutBound) {
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
TEST(Bsr, EachFunctionHasItsWayWithAnOwedBit) {
    enum { READ1, PEEK, SKIP, SKIP_PEEK, UN, READ_ALIGN8, UE, SE, TU, TE, ALIGN8, READ };
    struct {
        uint32_t word;
        int op, n, most;
        uint32_t value;
        int moved;  // bits of the second word that count as consumed
    } const cases[] = {
        {0x60000000, READ, 4, 0, 0xC, 5},  // the owed bit is above those asked for
        {0xE0000000, READ, 4, 0, 0x1C, 5},
        {0xE0000000, READ, 0, 0, 1, 1},
        {0xE0000001, READ, 31, 0, 0xE0000001, 32},
        {0xE0000001, READ, 32, 0, 0, 33},  // one bit more than a word is lost
        {0xE0000000, READ1, 0, 0, 0, 2},   // without a look
        {0x00000000, TE, 0, 1, 1, 2},
        {0x60000000, SKIP, 0, 0, 0, 1},
        {0x60000000, SKIP_PEEK, 3, 0, 6, 1},
        {0x60000000, SKIP_PEEK, 3, 1, 4, 2},
        {0xFFFFFFFF, PEEK, 8, 0, 0, 1},  // the word becomes zeros
        {0xFFFFFFFF, ALIGN8, 0, 0, 0, 8},
        {0xFFFFFFFF, READ_ALIGN8, 0, 0, 7 * 256, 8},
        {0x20000000, UE, 0, 0, 1, 4},  // right if the owed bit and the next are 0
        {0x10000000, SE, 0, 0, 2, 6},
        {0x60000000, UE, 0, 0, 0, 1},           // the code is not consumed
        {0xA0000000, UE, 0, 0, UINT32_MAX, 0},  // nothing is
        {0xA0000000, SE, 0, 0, 0, 0},
        {0xD0000000, UN, 0, 0, 1, 3},  // right if the owed bit is 1
        {0x60000000, UN, 0, 0, UINT32_MAX, 1},
        {0xD0000000, TU, 1, 0, 1, 3},
        {0x60000000, TU, 1, 0, UINT32_MAX, 1},
        {0xF8000000, TU, 1, 0, 2, 2},  // the owed bit is taken for one of `max`
    };
    for (const auto &c : cases) {
        Bytes data(12, 0xFF);
        for (size_t i = 0; i < 4; i++) data[4 + i] = static_cast<uint8_t>(c.word >> (24 - 8 * i));
        Reader r(data);
        tavu_bsr_read1(&r);
        ASSERT_EQ(tavu_bsr_read_un(&r), 31);
        ASSERT_EQ(r.leftbits, -1);
        ReaderModel m{r.copy.data(), 12, nullptr};
        m.left = -1;
        m.loaded = 4;
        EXPECT_EQ(operate(&m, c.op, c.n, c.most), c.value) << c.op << ' ' << c.n;
        EXPECT_EQ(operate(&r, c.op, c.n, c.most), c.value) << c.op << ' ' << c.n;
        EXPECT_EQ(r.position(), 32 + c.moved) << c.op << ' ' << c.n;
    }
}

TEST(Bsr, AnyCallsOnAnyDataFollowTheRules) {
    std::mt19937 random(1);
    const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
    int asked = 0;  // the most, by a call with no bits owed
    for (int round = 0; round < 20000; round++) {
        Bytes data(random() % 40);
        for (uint8_t &byte : data)
            byte = static_cast<uint8_t>(random() % 3 - 1 + random() % 2 * 77);
        Loads loads{4, 4, 4, 4};
        if (round % 4 > 1) loads[random() % 4] = static_cast<uint8_t>(random() % 4);
        const auto size = static_cast<int32_t>(data.size());
        ShortReader r(data.data(), size, loads);
        if (round % 2 != 0) tavu_bsr_init(&r, data.data(), size, nullptr);
        ReaderModel m{data.data(), size, round % 2 == 0 ? &loads : nullptr};
        for (int i = 0; i < 25; i++) {
            const int op = below(READER_OPERATIONS), n = below(33), most = below(33);
            const bool owes = m.left < 0;
            m.asked = r.asked = 0;
            ASSERT_TRUE(step(&r, &m, op, n, most)) << "round " << round << ", operation " << op;
            ASSERT_TRUE(round % 2 != 0 || (r.asked == m.asked && r.refills == m.refills));
            if (!owes) asked = std::max(asked, m.asked);
        }
    }
    EXPECT_EQ(asked, 7);  // tavu_bsr_skip_peek() when one byte is left
}

// A refill that notes the end of the data, as the header describes it.
struct Noting {
    tavu_bsr_t bits;
    bool ended;
    static int32_t refill(tavu_bsr_t *bs, int32_t bytes) {
        const int32_t status = tavu_bsr_flush(bs, bytes);
        if (status != 0) reinterpret_cast<Noting *>(bs)->ended = true;
        return status;
    }
    bool cut_short() const { return ended || bits.leftbits < 0; }
};

// A header: its fields, and the bit after each.
struct Header {
    enum Kind { BITS, BIT, SKIP, UE, SE, ALIGN, KINDS };
    struct Field {
        int kind, size;
        size_t end;
    };
    explicit Header(std::mt19937 *random) {
        for (auto n = (*random)() % 20 + 1; n > 0; n--) {
            const int kind = static_cast<int>((*random)() % KINDS);
            const int size = static_cast<int>((*random)() % 31) + 1;
            // Many single bits in a row owe more than a code can be long.
            for (auto i = kind == BIT && size > 24 ? 90 : 1; i > 0; i--) add(kind, size, random);
        }
    }
    void add(int kind, int size, std::mt19937 *random) {
        if (kind == UE || kind == SE) {
            bits += exp_golomb(static_cast<uint32_t>((*random)() % 65535 >> (*random)() % 16));
        } else if (kind == ALIGN) {
            bits.resize((bits.size() + 7) / 8 * 8, '0');
        } else {
            for (int i = kind == BIT ? 1 : size; i > 0; i--) bits += (*random)() % 2 ? '1' : '0';
        }
        fields.push_back({kind, size, bits.size()});
    }
    std::vector<Field> fields;
    std::string bits;
};

// Odd sizes are read by the other function of the kind.
int32_t read_field(tavu_bsr_t *r, const Header::Field &field) {
    const bool other = field.size % 2 != 0;
    switch (field.kind) {
        case Header::BITS: return tavu_bsr_read(r, field.size);
        case Header::BIT: return other ? 1 - tavu_bsr_read_te(r, 1) : tavu_bsr_read1(r);
        case Header::SKIP: return tavu_bsr_skip(r, field.size), 0;
        case Header::UE: return other ? tavu_bsr_read_te(r, 2) : tavu_bsr_read_ue(r);
        case Header::SE: return tavu_bsr_read_se(r), 0;
        default: return other ? tavu_bsr_read_align8(r, nullptr) : (tavu_bsr_skip_align8(r), 0);
    }
}

TEST(Bsr, ARefillThatNotesTheEndFindsEveryHeaderCutShortAndNoOther) {
    std::mt19937 random(1);
    for (int round = 0; round < 500; round++) {
        const Header header(&random);
        const Bytes whole = pack(header.bits);
        for (size_t size = 0; size <= whole.size(); size++) {
            const Reader cut(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)));
            Noting r{};
            tavu_bsr_init(&r.bits, cut.beg, cut.size, Noting::refill);
            bool noticed = false;  // by a caller who tests each result
            for (const Header::Field &field : header.fields) {
                const bool failed = read_field(&r.bits, field) < 0 || r.bits.leftbits < 0;
                const bool shows = field.kind != Header::SKIP && field.kind != Header::SE;
                if (field.end <= 8 * size) {
                    ASSERT_FALSE(failed || r.cut_short());
                } else if (shows && field.kind != Header::ALIGN && !noticed) {
                    ASSERT_TRUE(failed);
                    noticed = true;
                }
            }
            ASSERT_EQ(r.cut_short(), header.bits.size() > 8 * size) << "round " << round;
        }
    }
}

TEST(Bsr, CountsLeadingZeros) {
    EXPECT_EQ(tavu_bsr_clz_in_code(0), 32);
    for (int n = 0; n < 32; n++) EXPECT_EQ(tavu_bsr_clz_in_code(0xFFFFFFFFU >> n), n);
}

}  // namespace
