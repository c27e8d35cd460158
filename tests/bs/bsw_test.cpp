#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bits.h"
#include "bsw_model.h"
#include "memory.h"
#include "tavu.h"

namespace {

// A writer on a guarded buffer; compares it with all bits written so far, as a string.
struct Writer : tavu_bsw_t {
    explicit Writer(size_t bytes, size_t slack = 0) : memory(bytes + slack) {
        tavu_bsw_init(this, memory.data(), static_cast<int32_t>(bytes), nullptr);
    }
    // Fields and bytes after `bits` were written; whole words of them are spilled.
    void expect(const std::string &bits) const {
        const size_t spilled = bits.size() / 32 * 4, left = bits.size() % 32;
        std::string cached = bits.substr(spilled * 8);
        cached.resize(32, '0');
        EXPECT_EQ(code, value_of(cached, 0, 32));
        EXPECT_EQ(leftbits, 32 - static_cast<int32_t>(left));
        ASSERT_EQ(cur - beg, static_cast<ptrdiff_t>(spilled));
        EXPECT_EQ(unpack(Bytes(beg, cur)), bits.substr(0, spilled * 8));
    }
    GuardedBytes memory;
};

std::string binary(uint32_t value, int length) {
    std::string bits;
    for (int i = length - 1; i >= 0; i--) bits += static_cast<char>('0' + (value >> i & 1));
    return bits;
}

TEST(Bsw, LongestCodesAndTheirSizes) {
    Writer w(64);
    EXPECT_EQ(tavu_bsw_write_ue(&w, 65534), 0);
    EXPECT_EQ(tavu_bsw_write_se(&w, 32767), 0);
    EXPECT_EQ(tavu_bsw_write_se(&w, -32767), 0);
    EXPECT_EQ(tavu_bsw_write_ue(&w, 0xFFFFFFFF), 0);  // wraps to the code of 0
    w.expect(exp_golomb(65534) + exp_golomb(65533) + exp_golomb(65534) + "1");
    for (const auto &[value, size] : {std::pair(0U, 1),
                                      {1U, 3},
                                      {2U, 3},
                                      {254U, 15},
                                      {255U, 17},
                                      {510U, 17},
                                      {511U, 19},
                                      {65534U, 31}}) {
        EXPECT_EQ(tavu_bsw_size_ue(value), size);
        const auto half = static_cast<int32_t>((value + 1) / 2);
        EXPECT_EQ(tavu_bsw_size_se(value % 2 != 0 ? half : -half), size);
    }
    EXPECT_EQ(tavu_bsw_write_te(&w, 5, 0), 0);
    EXPECT_EQ(tavu_bsw_write_te(&w, 5, -1), 0);
    w.expect(exp_golomb(65534) + exp_golomb(65533) + exp_golomb(65534) + "1");
}

// A full cache is spilled only if one byte more than needed is left.
TEST(Bsw, WritesWantASpareByte) {
    Writer five(5);
    EXPECT_EQ(tavu_bsw_write(&five, 0x12345678, 32), 0);
    five.expect(binary(0x12345678, 32));

    // Without one the cache keeps what went into it, and the free bits stay as they were.
    Writer four(4);
    ASSERT_EQ(tavu_bsw_write(&four, 0xABC, 12), 0);
    EXPECT_EQ(tavu_bsw_write(&four, 0xDEF012, 24), -1);
    EXPECT_EQ(four.code, 0xABCDEF01U);
    EXPECT_EQ(four.leftbits, 20);
    EXPECT_EQ(four.cur, four.beg);

    Writer three(3);
    ASSERT_EQ(tavu_bsw_write(&three, 5, 17), 0);
    EXPECT_EQ(tavu_bsw_sink(&three), -1);
    EXPECT_EQ(three.leftbits, 15);
    EXPECT_EQ(three.cur, three.beg);
    three.end++;
    EXPECT_EQ(tavu_bsw_sink(&three), 0);
    EXPECT_EQ(Bytes(three.beg, three.cur), (Bytes{0, 2, 0x80}));
    Writer none(0);
    EXPECT_EQ(tavu_bsw_sink(&none), -1);
}

// Single bits require one byte only, so three may go past the end.
TEST(Bsw, SingleBitsMayWriteThreeBytesBeyondTheEnd) {
    Writer w(1, 3);
    std::string bits;
    for (int i = 0; i < 32; i++) {
        EXPECT_EQ(tavu_bsw_write1(&w, i % 3), 0);
        bits += i % 3 == 1 ? '1' : '0';
    }
    w.expect(bits);

    // Without a byte the full cache stays; further bits are dropped without an error.
    for (int i = 0; i < 31; i++) EXPECT_EQ(tavu_bsw_write1(&w, 1), 0);
    EXPECT_EQ(tavu_bsw_write1(&w, 0), -1);
    EXPECT_EQ(w.code, 0xFFFFFFFEU);
    EXPECT_EQ(w.leftbits, 0);
    EXPECT_EQ(tavu_bsw_write1(&w, 1), 0);
    EXPECT_EQ(w.code, 0xFFFFFFFEU);
    EXPECT_EQ(w.leftbits, -1);
    EXPECT_EQ(tavu_bsw_write(&w, 1, 1), -1);
    EXPECT_EQ(w.code, 0xFFFFFFFEU);
}

// Nothing bounds what tavu_bsw_deinit() writes. Full caches without a refused bit reach 7 bytes past
// the end; refused bits count as 1 byte for each 8.
TEST(Bsw, DeinitWritesBeyondTheEnd) {
    for (const int refused : {0, 1, 2, 8, 9, 17, 1000}) {
        Writer w(1, 7 + 125 + 1);
        for (int i = 0; i < 63; i++) ASSERT_EQ(tavu_bsw_write1(&w, 1), 0);
        for (int i = 0; i < refused; i++) ASSERT_EQ(tavu_bsw_write1(&w, 1), i == 0 ? -1 : 0);
        if (refused > 0) {
            ASSERT_EQ(tavu_bsw_sink(&w), -1);
        }
        ASSERT_EQ(tavu_bsw_deinit(&w), 0);
        Bytes wanted(w.memory.bytes().size(), GuardedBytes::CANARY);
        const int written = 8 + (std::max(refused, 1) + 6) / 8;
        std::fill_n(wanted.begin(), written, uint8_t{0});
        std::fill_n(wanted.begin(), 8, uint8_t{0xFF});
        if (refused == 0) wanted[7] = 0xFE;
        EXPECT_EQ(w.memory.bytes(), wanted) << refused;
        EXPECT_EQ(w.cur - w.beg, written);
    }
}

TEST(Bsw, AnyCallsOnAnySizeFollowTheRules) {
    std::mt19937 random(1);
    for (int round = 0; round < 5000; round++) {
        Writer w(random() % 20, 200);
        if (round % 2 != 0) w.flush = failing_spill;
        WriterModel m{w.size};
        for (int i = 0; i < 30; i++) {
            const auto value = static_cast<uint32_t>(random());
            const int length = static_cast<int>(random() % 33);
            int got = 0, wanted = 0;
            switch (random() % 8) {
                case 0: got = tavu_bsw_sink(&w), wanted = m.sink(); break;
                case 1:
                case 2:
                    for (int n = 0; n < length; n++) {
                        got += tavu_bsw_write1(&w, static_cast<int32_t>(value >> n));
                        wanted += m.write1(static_cast<int>(value >> n & 1));
                    }
                    break;
                default: got = tavu_bsw_write(&w, value, length), wanted = m.write(value, length);
            }
            ASSERT_TRUE(got == wanted && m.equals(w)) << "round " << round;
        }
        tavu_bsw_deinit(&w);
        m.spill();
        m.written.resize(w.memory.bytes().size(), GuardedBytes::CANARY);
        ASSERT_EQ(w.memory.bytes(), m.written) << "round " << round;
    }
}

TEST(Bsw, SpillsThroughTheGivenFunction) {
    static int spills;
    spills = 0;
    GuardedBytes memory(8);
    tavu_bsw_t w;
    tavu_bsw_init(&w, memory.data(), 8, [](tavu_bsw_t *bs) {
        spills++;
        for (int n = (39 - bs->leftbits) / 8; n > 0; n--, bs->code <<= 8) {
            *bs->cur++ = static_cast<uint8_t>(~(bs->code >> 24));
        }
        return 77;
    });
    EXPECT_EQ(w.size, 8);
    EXPECT_EQ(w.end, memory.data() + 7);
    EXPECT_EQ(tavu_bsw_write(&w, 0, 31), 0);
    EXPECT_EQ(tavu_bsw_write(&w, 3, 2), 0);
    EXPECT_EQ(spills, 1);
    EXPECT_EQ(w.code, 0x80000000U);
    EXPECT_EQ(tavu_bsw_deinit(&w), 77);
    EXPECT_EQ(Bytes(w.beg, w.cur), (Bytes{0xFF, 0xFF, 0xFF, 0xFE, 0x7F}));

    // The default one writes whole bytes, checks nothing, and keeps the count of free bits.
    Writer own(4);
    EXPECT_EQ(tavu_bsw_deinit(&own), 0);
    EXPECT_EQ(own.cur, own.beg);
    for (int i = 0; i < 3; i++) tavu_bsw_write1(&own, 1);
    EXPECT_EQ(tavu_bsw_deinit(&own), 0);
    EXPECT_EQ(Bytes(own.beg, own.cur), (Bytes{0xE0}));
    EXPECT_EQ(own.leftbits, 29);
}

}  // namespace
