#include "str/words.h"

namespace tavu {
namespace {

// White space in the last byte of the string does not end a word; callers rely on it.
const char *end_of_word(const char *str) {
    if (length(str) == 1) return str;
    const char *word = first_word(str);
    const int32_t n = length(word);
    if (n == 1) return word;
    for (int32_t i = 1; i < n - 1; i++) {
        if (is_white(word[i])) return word + i - 1;
    }
    return nullptr;
}

// A line end that includes the last byte of the string is not found; callers rely on it.
const char *end_of_line(const char *str) {
    const int32_t last = length(str) - 1;
    for (int32_t i = 0; i < last; i++) {
        if (str[i] == '\n') return str + i;
        if (str[i] == '\r') return text_at(str, str[i + 1] == '\n' ? i + 1 : i, last);
    }
    return nullptr;
}

int32_t report(const Token &token, int32_t *len, const char **next) {
    *len = token.len;
    if (next != nullptr) *next = token.next;
    return token.status;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

const char *tavu_str_move_to_validw(const char *str) { return first_word(str); }

const char *tavu_str_move_to_eow(const char *str) { return end_of_word(str); }

const char *tavu_str_move_to_nextw(const char *str) {
    // A word that starts in the last byte is not found; callers rely on it.
    return find_word(str, length(str) - 1);
}

const char *tavu_str_move_to_nextl(const char *str) { return end_of_line(str); }

int32_t tavu_str_parse_by_ctok(const char *str, int32_t delim, int32_t *len, const char **next) {
    return report(token_before(str, static_cast<char>(delim)), len, next);
}

int32_t tavu_str_parse_by_stok(const char *str, const char *delim, int32_t *len,
                               const char **next) {
    return report(token_before(str, delim), len, next);
}

int32_t tavu_str_parse_one_line(const char *str, int32_t *len, const char **next) {
    return report(first_line(str), len, next);
}

int32_t tavu_str_get_one_az09() { return 0; }
