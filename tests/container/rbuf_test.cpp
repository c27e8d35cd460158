#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

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
    EXPECT_EQ(tavu_rbuf_get_free_len(ring_of("").get()), 9);
    EXPECT_EQ(tavu_rbuf_get_free_len(ring_of("abc").get()), 6);
    EXPECT_EQ(tavu_rbuf_get_free_len(ring_of("abcde", 5).get()), 2);
    EXPECT_EQ(tavu_rbuf_get_fill_len(ring_of("abcde").get()), 5);
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
