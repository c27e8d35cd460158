// Scanners over zero-terminated strings. A null string counts as empty.
#ifndef TAVU_STR_WORDS_H
#define TAVU_STR_WORDS_H

#include <cstring>

#include "tavu.h"

namespace tavu {

// A token of `len` bytes; `next` is the text after its delimiter, null if there is none.
struct Token {
    int32_t status;
    int32_t len;
    const char *next;
};

inline int32_t length(const char *str) {
    return str == nullptr ? 0 : static_cast<int32_t>(strlen(str));
}

inline bool is_line_end(char c) { return c == '\n' || c == '\r'; }

inline bool is_white(char c) { return c == ' ' || c == '\t' || is_line_end(c); }

// The first byte among the first `n` that is not white space, or null.
inline const char *find_word(const char *str, int32_t n) {
    for (int32_t i = 0; i < n; i++) {
        if (!is_white(str[i])) return str + i;
    }
    return nullptr;
}

inline const char *first_word(const char *str) { return find_word(str, length(str)); }

// The text at offset `at` of a string of `n` bytes; null if none is left there.
inline const char *text_at(const char *str, int32_t at, int32_t n) {
    return at < n ? str + at : nullptr;
}

// Never reads past the terminating zero of `str`, because the prefix contains none.
inline bool starts_with(const char *str, const char *prefix, int32_t prefix_len) {
    int32_t i = 0;
    while (i < prefix_len && str[i] == prefix[i]) i++;
    return i == prefix_len;
}

inline Token token_before(const char *str, char delim) {
    const int32_t n = length(str);
    if (n == 0) return {TAVU_ERR, 0, nullptr};
    for (int32_t i = 0; i < n; i++) {
        if (str[i] == delim || is_line_end(str[i])) return {TAVU_OK, i, text_at(str, i + 1, n)};
    }
    return {TAVU_OK, n, nullptr};
}

// Fails if there is no delimiter, unlike the single-byte overload; callers rely on it.
inline Token token_before(const char *str, const char *delim) {
    const int32_t n = length(str);
    const int32_t delim_len = length(delim);
    for (int32_t i = 0; i < n; i++) {
        if (starts_with(str + i, delim, delim_len)) {
            return {TAVU_OK, i, text_at(str, i + delim_len, n)};
        }
        if (is_line_end(str[i])) return {TAVU_OK, i, text_at(str, i + 1, n)};
    }
    return {TAVU_ERR, 0, nullptr};
}

inline Token first_line(const char *str) {
    const int32_t n = length(str);
    for (int32_t i = 0; i < n; i++) {
        if (str[i] == '\n') return {TAVU_OK, i, text_at(str, i + 1, n)};
        if (str[i] != '\r') continue;
        if (str[i + 1] != '\n') return {TAVU_ERR, 0, nullptr};
        return {TAVU_OK, i, text_at(str, i + 2, n)};
    }
    return {TAVU_ERR, n, nullptr};
}

}  // namespace tavu

#endif
