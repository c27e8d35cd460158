// URI parts and escaping, with buffers of exactly the size that the header requires.
#include <array>

#include "input.h"
#include "tavu.h"
#include "text.h"

namespace {

struct Parts {
    int32_t status = -1;
    Text part[4] = {};          // scheme, host, port, path
    bool slash_before = false;  // whether "/" precedes the path because the text has none
    size_t rest = NONE;
};

Parts split(Text text) {
    Parts parts;
    size_t at = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    Cut piece = cut_by_string(text.substr(at), "://");
    for (int i = 0; i < 3; i++) {
        if (piece.status != 0 || (i == 2 && piece.len == 0)) return parts;
        parts.part[i] = text.substr(at, piece.len);
        at = piece.next == NONE ? text.size() : at + piece.next;
        piece = cut_by_byte(text.substr(at), i == 0 ? ':' : '/');
    }
    parts.status = 0;
    const Cut line = cut_line(text.substr(at));
    if (line.next != NONE) parts.rest = at + line.next;
    if (line.len == 0) return parts;
    const size_t from = line.next != NONE ? parts.rest : at;
    parts.part[3] = text.substr(from, line.len);
    parts.slash_before = text[from] != '/';
    return parts;
}

void check_parts(Text text) {
    const Parts wanted = split(text);
    const char *const uri = text.data();
    const Bytes out(text.size() + 2, 0xA5);
    std::array<Bytes, 4> parts = {out, out, out, out};
    const char *rest = uri;
    require(tavu_str_parse_uri(uri, text_of(parts[0]), text_of(parts[1]), text_of(parts[2]),
                               text_of(parts[3]), &rest) == wanted.status);
    for (size_t i = 0; i < 4; i++) {
        const bool slash = i == 3 && wanted.slash_before;
        require(!slash || parts[i][0] == '/');
        require(Text(text_of(parts[i]) + slash) == wanted.part[i]);
    }
    require(rest == (wanted.rest == NONE ? nullptr : uri + wanted.rest));
}

void check_escaping(Text text) {
    std::vector<char> wanted;
    for (const char c : text) {
        const Text coded = c == ' ' ? Text("%20") : Text(&c, 1);
        wanted.insert(wanted.end(), coded.begin(), coded.end());
    }
    Bytes escaped(3 * text.size() + 1, 0xA5);
    const auto len = static_cast<size_t>(tavu_str_conv_a2uri(text.data(), text_of(escaped)));
    wanted.push_back(0);
    require(Text(text_of(escaped), len + 1) == Text(wanted.data(), wanted.size()));
}

// The zero is followed by a byte if the text ends in "%".
void check_unescaping(Text text) {
    const auto digit = [&](size_t i) {
        const char c = text.data()[i];
        return c >= '0' && c <= '9' ? c - '0' : 0;
    };
    std::vector<char> wanted;
    for (size_t i = 0; i < text.size(); i++) {
        const bool code = text[i] == '%';
        wanted.push_back(code ? static_cast<char>(16 * digit(i + 1) + digit(i + 2)) : text[i]);
        i += code ? 2 : 0;
    }
    wanted.push_back(0);
    Bytes plain(text.size() + 1, 0xA5);
    const auto len = static_cast<size_t>(tavu_str_conv_uri2a(text.data(), text_of(plain)));
    require(Text(text_of(plain), len + 1) == Text(wanted.data(), wanted.size()));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const auto length = static_cast<size_t>(std::find(data, data + size, 0) - data);
    const bool percent = length > 0 && data[length - 1] == '%';
    Bytes src(length + (percent ? 2 : 1), '7');
    std::copy(data, data + length, src.data());
    src[length] = 0;
    const Text text(text_of(src));
    check_parts(text);
    check_escaping(text);
    check_unescaping(text);
    return 0;
}
