#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "container/ring_model.h"
#include "memory.h"
#include "tavu.h"

namespace {

using Ring = std::unique_ptr<tavu_rbuf_t, decltype(&tavu_rbuf_delete)>;

Ring create(int size) { return {tavu_rbuf_create(size), tavu_rbuf_delete}; }

// A ring of 8 bytes, filled from `start` on.
Ring ring_of(const std::string &content, int start = 0) {
    Ring ring = create(8);
    ring->head = ring->tail = start;
    tavu_rbuf_put(ring.get(), content.data(), static_cast<int>(content.size()));
    return ring;
}

TEST(Rbuf, LengthsDifferFromTheBytesStoredAndFree) {
    EXPECT_EQ(tavu_rbuf_get_tot_len(ring_of("").get()), 7);
    EXPECT_EQ(tavu_rbuf_get_free_len(ring_of("abc").get()), 6);
    EXPECT_EQ(tavu_rbuf_get_free_len(ring_of("abcde", 5).get()), 2);
    EXPECT_EQ(tavu_rbuf_get_fill_len(ring_of("abcde").get()), 5);
    EXPECT_EQ(tavu_rbuf_get_fill_len(ring_of("abcde", 5).get()), 4);
}

TEST(Rbuf, WritesUpToTheEndOfTheStorage) {
    const Ring skipped = ring_of("abc"), failed = ring_of("abcdefgh", 2);
    EXPECT_EQ(ring_of("abcdefgh")->head, 8);
    EXPECT_EQ(tavu_rbuf_skip_head(skipped.get(), 5), 4);
    EXPECT_EQ(skipped->head, 3);
    EXPECT_EQ(failed->head, 2);
    EXPECT_EQ(failed->buf[7], 'f');
}

void expect_line(const std::string &stored, int start, int size, const std::string &line,
                 int tail) {
    const Ring ring = ring_of(stored, start);
    std::string got(12, '#');
    got.resize(static_cast<size_t>(tavu_rbuf_get_one_line(ring.get(), got.data(), size)));
    EXPECT_EQ(got, line);
    EXPECT_EQ(ring->tail, tail);
}

TEST(Rbuf, CompletesLinesAndMovesTheTailByTheirLength) {
    expect_line("ab\r\ncd", 0, 12, "ab\r\n", 4);
    expect_line("ab\ncd", 0, 12, "ab\r\n", 4);
    expect_line("abc", 0, 12, "", 0);
    expect_line("ab\r\n", 0, 4, "", 0);
    // The size does not limit a line before the end of the storage; a split line end counts for 3.
    expect_line("ab\r\nc", 4, 1, "ab\r\n", 8);
    expect_line("a\r\nb", 6, 12, "a\r\n#", 1);
}

using State = std::pair<int32_t, int32_t>;  // head and tail

// All texts of a small size; some of a larger size.
std::vector<Bytes> texts(size_t size) {
    std::vector<Bytes> list;
    for (size_t digits = 0; digits < size_t{1} << 2 * size; digits += size < 5 ? 1 : 13) {
        Bytes &text = list.emplace_back(size);
        for (size_t i = 0; i < size; i++) {
            text[i] = static_cast<uint8_t>("a\r\n\0"[digits >> 2 * i & 3]);
        }
    }
    return list;
}

// The states that any operation reaches from one state.
std::set<State> try_everything(RingPair *pair, const State &from) {
    const auto size = static_cast<size_t>(pair->model.s);
    const std::vector<Bytes> lines = texts(size), any = {random_bytes(size, 1)};
    const Bytes src = random_bytes(size + 8, 2);
    std::set<State> reached;
    for (const RingOp op : {RingOp::EMPTY, RingOp::GET, RingOp::SKIP_HEAD, RingOp::SKIP_TAIL,
                            RingOp::PUT, RingOp::LINE}) {
        for (const Bytes &content : op == RingOp::LINE ? lines : any) {
            for (int32_t n : {-3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, INT32_MAX, INT32_MIN}) {
                pair->set(from.first, from.second, content);
                EXPECT_TRUE(pair->step(op, n, src))
                    << "size " << size << ", head " << from.first << ", tail " << from.second
                    << ", operation " << static_cast<int>(op) << ", count " << n;
                reached.emplace(pair->model.h, pair->model.t);
            }
        }
    }
    return reached;
}

TEST(Rbuf, EqualsItsModelInEveryState) {
    for (int32_t size = 1; size <= 6 && !HasFailure(); size++) {
        RingPair pair(size);
        std::set<State> known;
        for (std::set<State> open = {{0, 0}}; !open.empty() && !HasFailure();) {
            const State from = open.extract(open.begin()).value();
            const auto [low, high] = std::minmax(from.first, from.second);
            if (low < -3 || high > 100 || !known.insert(from).second) continue;
            open.merge(try_everything(&pair, from));
        }
    }
}

TEST(Rbuf, EqualsItsModelInLargeRings) { EXPECT_TRUE(on_random_inputs(ring_equals_model)); }

// Heads and tails far outside the storage, whose 32-bit sums and differences wrap.
TEST(Rbuf, TouchesNothingOutsideItsStorageOrTheDestination) {
    const int32_t far[] = {0, 1, -1, 4, 5, INT32_MIN, INT32_MIN + 3, INT32_MAX, INT32_MAX - 3};
    GuardedBytes storage(Bytes(4, 'x')), line(18);
    for (const int32_t head : far) {
        for (const int32_t tail : far) {
            for (const int32_t count : {0, 3, 16}) {
                const tavu_rbuf_t start = {head, tail, 4, storage.data()};
                tavu_rbuf_t a = start, b = start, c = start;
                tavu_rbuf_get(&a, line.data(), count);
                tavu_rbuf_get_one_line(&b, line.data(), count);
                tavu_rbuf_put(&c, Bytes(16, '\n').data(), count);
            }
            EXPECT_TRUE(storage.front_is_intact() && line.front_is_intact()) << head << " " << tail;
        }
    }
}

// Vectors must stop at the last byte of the storage, and start at the tail.
TEST(Rbuf, SearchesLineEndsOnlyInStoredBytes) {
    constexpr int32_t BEFORE = 40;
    for (int32_t length = 1; length < 100; length++) {
        Bytes content(static_cast<size_t>(BEFORE), '\n');
        content.resize(static_cast<size_t>(BEFORE + length), 'x');
        GuardedBytes storage(content), line(static_cast<size_t>(length + 3));
        for (const int32_t head : {0, BEFORE + length}) {
            tavu_rbuf_t ring{head, BEFORE, BEFORE + length, storage.data()};
            EXPECT_EQ(tavu_rbuf_get_one_line(&ring, line.data(), length + 1), 0);
            storage.data()[BEFORE + length - 1] = '\n';
            EXPECT_EQ(tavu_rbuf_get_one_line(&ring, line.data(), length + 1), length + 1);
            storage.data()[BEFORE + length - 1] = 'x';
        }
    }
}

TEST(Rbuf, RefusesSizesBelowOne) {
    for (int size : {0, -1, INT32_MIN}) EXPECT_EQ(create(size), nullptr);
}

}  // namespace
