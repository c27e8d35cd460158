#include <gtest/gtest.h>

#include "str/text.h"
#include "tavu.h"

namespace {

// Status, then scheme, host, port, path and the offset of the rest.
void expect_parts(const Cases &cases) {
    for (const Case &c : cases) {
        const Text uri(c.text);
        const size_t size = (c.text != nullptr ? strlen(c.text) : 0) + 2;
        Output scheme(size), host(size), port(size), path(size);
        const char *rest = "untouched";
        std::string found = std::to_string(
            tavu_str_parse_uri(uri, scheme.get(), host.get(), port.get(), path.get(), &rest));
        for (Output *part : {&scheme, &host, &port, &path}) found += std::string("|") + part->get();
        EXPECT_EQ(found + "|" + uri.at(rest), c.expected) << c.text;
    }
}

void expect_conversion(const Cases &cases, int32_t (*convert)(const char *, char *)) {
    for (const Case &c : cases) {
        Output dst(c.expected.size() + 1);
        const auto len = static_cast<size_t>(convert(Text(c.text), dst.get()));
        EXPECT_EQ(std::string(dst.get(), len + 1), c.expected + '\0');
    }
}

// Line ends count as delimiters; a path is copied from the next line, with its own length.
TEST(Uri, SplitsIntoComponents) {
    const Cases cases = {{nullptr, "-1|||||-"},
                         {" \t\r\n ", "-1|||||-"},
                         {"cam:554", "-1|||||-"},
                         {"rtsp://", "-1|rtsp||||-"},
                         {"a://b:/x", "-1|a|b|||-"},
                         {"  rtsp://cam:554/", "0|rtsp|cam|554||-"},
                         {"a://:x\r", "0|a||x||-"},
                         {"a://b:1/a%20b/c", "0|a|b|1|/a%20b/c|-"},
                         {"a://b:1//live\r\n", "0|a|b|1|/live|-"},
                         {"a://b:1\nc\nde", "0|a|b|1|/d|10"},
                         {"a://b:1\r\nc", "0|a|b|1||9"},
                         {"a\nb\r1/c", "0|a|b|1|/c|-"},
                         {"a://b:1/c\rd", "0|a|b|1||-"},
                         {"a://b:1/cde\r\nHost: x", "0|a|b|1|/Hos|13"},
                         {"a://b:1/cdefgh\n/xy", "0|a|b|1|/xy|15"}};
    expect_parts(cases);
}

TEST(Uri, EscapesSpacesOnly) {
    expect_conversion({{nullptr, ""}, {"a b ", "a%20b%20"}, {"%+\t\r\n\xE9", "%+\t\r\n\xE9"}},
                      tavu_str_conv_a2uri);
}

TEST(Uri, UnescapesDecimalDigitsOnly) {
    const Cases cases = {{nullptr, ""},
                         {"%41%09%90%2F", "A\t\x90 "},
                         {"%/9%:1%f2%-5", "\t\x01\x02\x05"},
                         {"%%201", "\00201"},
                         {"x%4", "x@"},
                         {"%001", std::string("\0001", 2)}};
    expect_conversion(cases, tavu_str_conv_uri2a);
}

TEST(Uri, PercentSignAsLastByteReadsOneByteAfterTheZero) {
    Output src(Bytes{'a', '%', '\0', '7'}), dst(3);
    EXPECT_EQ(tavu_str_conv_uri2a(src.get(), dst.get()), 2);
    EXPECT_STREQ(dst.get(), "a\x07");
}

}  // namespace
