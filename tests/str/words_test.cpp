#include <gtest/gtest.h>

#include "str/text.h"
#include "tavu.h"

namespace {

// Offsets of the first word, its end, the next word and the line end.
void expect_bounds(const Cases &cases) {
    for (const Case &c : cases) {
        const Text text(c.text);
        std::string found = text.at(tavu_str_move_to_validw(text));
        found += " " + text.at(tavu_str_move_to_eow(text));
        found += " " + text.at(tavu_str_move_to_nextw(text));
        found += " " + text.at(tavu_str_move_to_nextl(text));
        EXPECT_EQ(found, c.expected) << c.text;
    }
}

// Status, length and offset of the text after the token.
template <typename Parse>
void expect_pieces(const Cases &cases, Parse parse) {
    for (const Case &c : cases) {
        const Text text(c.text), delim(c.delim);
        const char *next = "untouched";
        int32_t len = 99;
        std::string found = std::to_string(parse(text, delim, &len, &next));
        found += " " + std::to_string(len) + " " + text.at(next);
        EXPECT_EQ(found, c.expected) << c.text;
    }
}

// The last byte is never a word end, but a string or remainder of one byte is a word.
TEST(Words, Bounds) {
    const Cases cases = {{nullptr, "- - - -"},     {"   ", "- - - -"},
                         {" \t\r\nab", "4 - 4 3"}, {"  ab cd", "2 3 2 -"},
                         {"ab\r\nc", "0 1 0 3"},   {"\n\n", "- - - 0"},
                         {"ab\rcd\n ", "0 1 0 2"}, {"\va\fb\bc\x85\xA0", "0 - 0 -"},
                         {" ", "- 0 - -"},         {"\n", "- 0 - -"},
                         {"a", "0 0 - -"},         {" a", "1 1 - -"},
                         {"ab", "0 - 0 -"},        {"abc ", "0 - 0 -"},
                         {"abc  ", "0 2 0 -"},     {"  abc\n", "2 - 2 -"},
                         {"ab\r\n", "0 1 0 -"}};
    expect_bounds(cases);
}

TEST(Words, TokensEndedByAByte) {
    const Cases cases = {{nullptr, "-1 0 -", ":"},    {"", "-1 0 -", ":"},
                         {"host:80:1", "0 4 5", ":"}, {"host:", "0 4 -", ":"},
                         {":x", "0 0 1", ":"},        {"ab\r\nc:d", "0 2 3", ":"},
                         {"host", "0 4 -", ""},       {"a\xE9z", "0 1 2", "\xE9"}};
    expect_pieces(cases, [](const char *text, const char *delim, int32_t *len, const char **next) {
        return tavu_str_parse_by_ctok(text, static_cast<uint8_t>(*delim), len, next);
    });
}

// Unlike with a byte, the end of the string does not end a token.
TEST(Words, TokensEndedByAString) {
    const Cases cases = {{nullptr, "-1 0 -", ""},  {"rtsp://a://", "0 4 7", "://"},
                         {"abc", "-1 0 -", "://"}, {"ab\r\ncd", "0 2 3", "://"},
                         {"a:/", "-1 0 -", "://"}, {"a:/:://b", "0 4 7", "://"},
                         {"a\nb", "0 1 -", "\nb"}, {"ab", "0 0 0", ""},
                         {"ab", "0 0 0"}};
    expect_pieces(cases, tavu_str_parse_by_stok);
}

TEST(Words, OneLine) {
    const Cases cases = {{nullptr, "-1 0 -"}, {"ab\r\ncd", "0 2 4"}, {"ab\n", "0 2 -"},
                         {"\nx", "0 0 1"},    {"abc", "-1 3 -"},     {"ab\rc\n", "-1 0 -"}};
    expect_pieces(cases, [](const char *text, const char *, int32_t *len, const char **next) {
        return tavu_str_parse_one_line(text, len, next);
    });
}

TEST(Words, TokensWithANullNext) {
    int32_t len = 99;
    // Only the low 8 bits of a delimiter are used.
    for (const int delim : {0xE9, -0x17, 0x1E9, INT32_MAX - 0x16}) {
        EXPECT_EQ(tavu_str_parse_by_ctok(Text("a\xE9z"), delim, &len, nullptr) + len, 1) << delim;
    }
    EXPECT_EQ(tavu_str_parse_by_stok(Text("ab:c"), ":", &len, nullptr) + len, 2);
}

TEST(Words, ReservedEntryPoint) { EXPECT_EQ(tavu_str_get_one_az09(), 0); }

}  // namespace
