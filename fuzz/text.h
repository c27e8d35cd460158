// The results of the text scanners, computed with the standard library.
#ifndef TAVU_FUZZ_TEXT_H
#define TAVU_FUZZ_TEXT_H

#include <string_view>

using Text = std::string_view;
constexpr auto NONE = Text::npos;

// `next` is NONE if no text follows.
struct Cut {
    int32_t status;
    size_t len, next;

    bool operator==(const Cut &c) const {
        return status == c.status && len == c.len && next == c.next;
    }
};

inline Cut cut(Text text, size_t len, size_t next) {
    return {0, len, next < text.size() ? next : NONE};
}

inline Cut cut_by_byte(Text text, char delim) {
    if (text.empty()) return {-1, 0, NONE};
    const char ends[] = {delim, '\r', '\n'};
    const size_t end = std::min(text.find_first_of(Text(ends, 3)), text.size());
    return cut(text, end, end + 1);
}

inline Cut cut_by_string(Text text, Text delim) {
    const size_t at = text.find(delim), line = text.find_first_of("\r\n");
    if (text.empty() || (at == NONE && line == NONE)) return {-1, 0, NONE};
    return at <= line ? cut(text, at, at + delim.size()) : cut(text, line, line + 1);
}

inline Cut cut_line(Text text) {
    const size_t end = text.find_first_of("\r\n");
    if (end == NONE) return {-1, text.size(), NONE};
    if (text[end] == '\n') return cut(text, end, end + 1);
    return text.substr(end, 2) == "\r\n" ? cut(text, end, end + 2) : Cut{-1, 0, NONE};
}

#endif
