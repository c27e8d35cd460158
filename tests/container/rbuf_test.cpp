#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "memory.h"
#include "rbuf_model.h"
#include "tavu.h"

namespace {

using Ring = std::unique_ptr<tavu_rbuf_t, decltype(&tavu_rbuf_delete)>;

Ring create(int size) { return {tavu_rbuf_create(size), tavu_rbuf_delete}; }

void expect_equal(tavu_rbuf_t *ring, const RbufModel &m) {
    const int h = m.h, t = m.t, s = m.s, fillc = h < t ? s - t : h - t;
    const int freec = h < t ? t - 1 - h : t == 0 ? s - 1 - h : s - h;
    ASSERT_EQ(std::pair(ring->head, ring->tail), std::pair(h, t));
    ASSERT_EQ(Bytes(ring->buf, ring->buf + s), m.storage);
    ASSERT_EQ(tavu_rbuf_is_empty(ring), h == t);
    ASSERT_EQ(tavu_rbuf_is_full(ring), m.full());
    ASSERT_EQ(tavu_rbuf_get_fill_len(ring), h < t ? h + s - 1 - t : h - t);
    ASSERT_EQ(tavu_rbuf_get_fillc_len(ring), fillc);
    ASSERT_EQ(tavu_rbuf_get_free_len(ring), h < t ? t - 1 - h : t + s + 1 - h);
    ASSERT_EQ(tavu_rbuf_get_freec_len(ring), freec);
    std::pair<uint8_t *, int32_t> place;
    const std::pair<uint8_t *, int32_t> none, head(ring->buf + h, freec),
        tail(ring->buf + t, fillc);
    ASSERT_EQ(tavu_rbuf_get_head(ring, &place.first, &place.second), 0);
    ASSERT_EQ(place, m.full() || freec < 0 ? none : head);
    ASSERT_EQ(tavu_rbuf_get_tail(ring, &place.first, &place.second), 0);
    ASSERT_EQ(place, h == t || fillc < 0 ? none : tail);
}

// One random operation on both: what they return.
std::pair<int, int> step(tavu_rbuf_t *ring, RbufModel *m, uint8_t *dst, uint8_t *expected,
                         unsigned random) {
    const int n = static_cast<int>(random / 12 % static_cast<unsigned>(m->s + 4)) - 1;
    Bytes src = random_bytes(static_cast<size_t>(std::max(n, 0)), random);
    // Large rings get lines of tens of bytes.
    const unsigned letters = m->s < 10 ? 8 : 99;
    for (uint8_t &b : src) b = b % letters < 8 ? static_cast<uint8_t>("ab\r\n\r\nc"[b % 8]) : 'd';
    switch (random % 12) {
        case 0:
            m->t = m->h;
            tavu_rbuf_empty(ring);
            return {};
        case 1: return {tavu_rbuf_get(ring, dst, n), m->get(expected, n)};
        case 2: return {tavu_rbuf_skip_head(ring, n), m->skip_head(n)};
        case 3: return {tavu_rbuf_skip_tail(ring, n), m->skip_tail(n)};
        case 4: return {tavu_rbuf_get_one_line(ring, dst, n), m->get_one_line(expected, n)};
        default: return {tavu_rbuf_put(ring, src.data(), n), m->put(src, n)};
    }
}

TEST(Rbuf, FollowsTheModel) {
    std::mt19937 random(1);
    for (int i = 0; i < 2000; i++) {
        const int size = i % 3 == 0 ? i % 150 + 1 : i % 9 + 1;
        const Ring ring = create(size);
        RbufModel model{size};
        for (int j = 0; j < 100 && !HasFatalFailure(); j++) {
            // Room for the longest line and its end, whatever size is told.
            Bytes dst(static_cast<size_t>(size) + 3, '#'), expected(dst);
            const auto [got, wanted] = step(ring.get(), &model, dst.data(), expected.data(),
                                            static_cast<unsigned>(random()));
            ASSERT_EQ(got, wanted);
            ASSERT_EQ(dst, expected);
            expect_equal(ring.get(), model);
        }
    }
}

// A ring of 8 bytes, filled from `start` on.
Ring ring_of(const std::string &content, int start = 0) {
    Ring ring = create(8);
    ring->head = ring->tail = start;
    tavu_rbuf_put(ring.get(), content.data(), static_cast<int>(content.size()));
    return ring;
}

TEST(Rbuf, LengthsDifferFromTheBytesStoredAndFree) {
    EXPECT_EQ(tavu_rbuf_get_tot_len(ring_of("").get()), 7);
    EXPECT_EQ(tavu_rbuf_get_free_len(ring_of("").get()), 9);
    EXPECT_EQ(tavu_rbuf_get_fill_len(ring_of("abcde", 5).get()), 4);
}

TEST(Rbuf, WritesUpToTheEndOfTheStorage) {
    const Ring skipped = ring_of("abc"), full = ring_of("abcdefg"), brimming = ring_of("abcdefgh");
    EXPECT_EQ(tavu_rbuf_skip_head(skipped.get(), 5), 4);
    EXPECT_EQ(skipped->head, 3);
    EXPECT_EQ(tavu_rbuf_put(full.get(), "h", 1), 0);
    EXPECT_EQ(brimming->head, 8);
    const Ring failed = ring_of("abcdefgh", 2);
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
    // At the end of the storage the size is not looked at, and a line end split by it counts for 3.
    expect_line("ab\r\nc", 4, 1, "ab\r\n", 8);
    expect_line("a\r\nb", 6, 12, "a\r\n#", 1);
}

TEST(Rbuf, RefusesWhatItCannotHold) {
    for (int size : {0, -1, INT32_MIN}) EXPECT_EQ(create(size), nullptr);
}

}  // namespace
