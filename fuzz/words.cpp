// Compares words, tokens and lines with the standard library's searches.
#include "input.h"
#include "tavu.h"
#include "text.h"

namespace {

constexpr Text WHITE = " \t\r\n";

size_t end_of_word(Text text) {
    const size_t word = text.find_first_not_of(WHITE);
    if (text.size() == 1) return 0;
    if (word == NONE || word + 1 == text.size()) return word;
    const size_t end = text.substr(0, text.size() - 1).find_first_of(WHITE, word + 1);
    return end == NONE ? NONE : end - 1;
}

size_t end_of_line(Text text) {
    const Text seen = text.substr(0, text.empty() ? 0 : text.size() - 1);
    const size_t end = seen.find_first_of("\r\n");
    if (end == NONE || text.substr(end, 2) != "\r\n") return end;
    return end + 1 < seen.size() ? end + 1 : NONE;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const auto delim = static_cast<char>(in.byte());
    const auto [head, head_size] = in.bytes(in.byte() % 4);
    const auto [body, body_size] = in.bytes(1000);
    Bytes delims(head_size + 1), copy(body_size + 1);
    std::copy_n(head, head_size, delims.data());
    std::copy_n(body, body_size, copy.data());
    const char *const str = text_of(copy);
    const Text text(str), word_delim(text_of(delims));
    const auto at = [str](const char *p) {
        return p == nullptr ? NONE : static_cast<size_t>(p - str);
    };

    require(at(tavu_str_move_to_validw(str)) == text.find_first_not_of(WHITE));
    require(at(tavu_str_move_to_nextw(str)) ==
            text.substr(0, text.empty() ? 0 : text.size() - 1).find_first_not_of(WHITE));
    require(at(tavu_str_move_to_eow(str)) == end_of_word(text));
    require(at(tavu_str_move_to_nextl(str)) == end_of_line(text));
    int32_t len = 0;
    const char *next = nullptr;
    const auto piece = [&](int32_t status) {
        return Cut{status, static_cast<size_t>(len), at(next)};
    };
    require(piece(tavu_str_parse_by_ctok(str, delim, &len, &next)) == cut_by_byte(text, delim));
    require(piece(tavu_str_parse_by_stok(str, text_of(delims), &len, &next)) ==
            cut_by_string(text, word_delim));
    require(piece(tavu_str_parse_one_line(str, &len, &next)) == cut_line(text));
    return 0;
}
