#include <gtest/gtest.h>

#include <string>

#include "bits.h"
#include "bsw_model.h"
#include "memory.h"
#include "tavu.h"

namespace {

// A writer on a guarded buffer that is `slack` bytes longer than the writer's size.
struct Writer : tavu_bsw_t {
    explicit Writer(size_t bytes, size_t slack = 0) : memory(bytes + slack) {
        tavu_bsw_init(this, memory.data(), static_cast<int32_t>(bytes), nullptr);
    }
    void expect(uint32_t cache, int free_bits, const Bytes &written) const {
        EXPECT_EQ(code, cache);
        EXPECT_EQ(leftbits, free_bits);
        EXPECT_EQ(Bytes(beg, cur), written);
    }
    GuardedBytes memory;
};

// Writes and reads each number in the three forms that share their codes.
TEST(Bsw, ExpGolombCodesOfAllLengthsAtAllPositions) {
    for (int lead = 0; lead < 32; lead++) {
        Writer w(512);
        tavu_bsw_write(&w, UINT32_MAX, lead);
        std::string bits(static_cast<size_t>(lead), '1');
        std::vector<std::pair<int32_t, int32_t>> numbers;
        for (int n = 0; n < 16; n++) {
            for (int v : {(1 << n) - 1, 1 << n, (2 << n) - 2}) {
                if (v > 65534) continue;
                const std::string code = exp_golomb(static_cast<uint32_t>(v));
                const int half = v % 2 != 0 ? (v + 1) / 2 : -v / 2;
                tavu_bsw_write_ue(&w, static_cast<uint32_t>(v));
                tavu_bsw_write_se(&w, half);
                tavu_bsw_write_te(&w, v, 2);
                bits.append(code).append(code).append(code);
                numbers.emplace_back(v, half);
                ASSERT_EQ(tavu_bsw_size_ue(static_cast<uint32_t>(v)), code.size());
                ASSERT_EQ(tavu_bsw_size_se(half), code.size());
            }
        }
        ASSERT_EQ(tavu_bsw_sink(&w), 0);
        ASSERT_EQ(Bytes(w.beg, w.cur), pack(bits)) << "lead " << lead;
        tavu_bsr_t r;
        tavu_bsr_init(&r, w.beg, static_cast<int32_t>(w.cur - w.beg), nullptr);
        tavu_bsr_skip(&r, lead);
        for (const auto &[v, half] : numbers) {
            ASSERT_EQ(tavu_bsr_read_ue(&r), v) << "lead " << lead;
            ASSERT_EQ(tavu_bsr_read_se(&r), half);
            ASSERT_EQ(tavu_bsr_read_te(&r, 2), v);
        }
    }
}

TEST(Bsw, CodesWithoutAValue) {
    Writer w(8);
    EXPECT_EQ(tavu_bsw_write_ue(&w, UINT32_MAX), 0);  // wraps to the code of 0
    EXPECT_EQ(tavu_bsw_write_te(&w, 5, 0), 0);
    EXPECT_EQ(tavu_bsw_write_te(&w, 5, -1), 0);
    w.expect(0x80000000, 31, {});
}

// A full cache is spilled only if one byte more than needed is left.
TEST(Bsw, WritesNeedASpareByte) {
    Writer five(5);
    EXPECT_EQ(tavu_bsw_write(&five, 0x12345678, 32), 0);
    five.expect(0, 32, {0x12, 0x34, 0x56, 0x78});

    // Without one the cache keeps the bits that fit, and the number of free bits is unchanged.
    Writer four(4);
    EXPECT_EQ(tavu_bsw_write(&four, 0xABC, 12), 0);
    EXPECT_EQ(tavu_bsw_write(&four, 0xDEF012, 24), -1);
    four.expect(0xABCDEF01, 20, {});

    Writer three(3);
    EXPECT_EQ(tavu_bsw_write(&three, 5, 17), 0);
    EXPECT_EQ(tavu_bsw_sink(&three), -1);
    three.expect(0x00028000, 15, {});
    three.end++;
    EXPECT_EQ(tavu_bsw_sink(&three), 0);
    three.expect(0, 32, {0, 2, 0x80});
}

// A single bit requires only one byte, and tavu_bsw_deinit() none: full caches reach 7 bytes past
// the end, and refused bits count as 1 byte for each 8.
TEST(Bsw, SingleBitsAndDeinitWritePastTheEnd) {
    Writer w(1, 8);
    for (int i = 0; i < 63; i++) EXPECT_EQ(tavu_bsw_write1(&w, i % 2 * 2 + 1), 0);  // only bit 0
    w.expect(0xFFFFFFFE, 1, {0xFF, 0xFF, 0xFF, 0xFF});
    // Without a free byte the cache stays full; further bits are dropped without an error.
    EXPECT_EQ(tavu_bsw_write1(&w, 2), -1);
    w.expect(0xFFFFFFFE, 0, {0xFF, 0xFF, 0xFF, 0xFF});
    for (int i = 0; i < 8; i++) EXPECT_EQ(tavu_bsw_write1(&w, 1), 0);
    EXPECT_EQ(tavu_bsw_write(&w, 1, 1), -1);
    EXPECT_EQ(tavu_bsw_sink(&w), -1);
    w.expect(0xFFFFFFFE, -8, {0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(tavu_bsw_deinit(&w), 0);
    w.expect(0, -8, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0});
}

TEST(Bsw, AnyCallsOnAnySizeEqualTheModel) { EXPECT_TRUE(on_random_inputs(writer_equals_model)); }

}  // namespace
