#include <cstring>

#include "str/words.h"

namespace tavu {
namespace {

// Copies `len` bytes, fewer if the string ends first, and appends a zero byte.
void copy_text(char *dst, const char *src, int32_t len) {
    for (; len > 0 && *src != '\0'; len--) *dst++ = *src++;
    *dst = '\0';
}

// Returns the text after the path's line; null if there is none.
const char *copy_path(char *path, const char *str) {
    const Token line = first_line(str);
    if (line.len <= 0) return line.next;
    // The path comes from the line that follows the URI's, with the length of the URI's own path;
    // callers rely on it. Without such a line, the URI's own path is copied.
    const char *from = line.next != nullptr ? line.next : str;
    if (*from != '/') *path++ = '/';
    copy_text(path, from, line.len);
    return line.next;
}

// A missing component is a null string, which is scanned as an empty one.
int32_t parse_uri(const char *uri, char *scheme, char *host, char *port, char *path,
                  const char **rest) {
    const char *start = first_word(uri);
    const Token scheme_token = token_before(start, "://");
    if (scheme_token.status != TAVU_OK) return TAVU_ERR;
    copy_text(scheme, start, scheme_token.len);
    const Token host_token = token_before(scheme_token.next, ':');
    copy_text(host, scheme_token.next, host_token.len);
    const Token port_token = token_before(host_token.next, '/');
    if (port_token.len <= 0) return TAVU_ERR;
    copy_text(port, host_token.next, port_token.len);
    *rest = copy_path(path, port_token.next);
    return TAVU_OK;
}

// Only decimal digits have a value, not A to F; callers rely on it.
int32_t digit_value(char c) { return c >= '0' && c <= '9' ? c - '0' : 0; }

int32_t escape(const char *src, char *dst) {
    const char *const begin = dst;
    for (int32_t left = length(src); left > 0; left--, src++) {
        if (*src == ' ') {
            memcpy(dst, "%20", 3);
            dst += 3;
        } else {
            *dst++ = *src;
        }
    }
    *dst = '\0';
    return static_cast<int32_t>(dst - begin);
}

int32_t unescape(const char *src, char *dst) {
    const char *const begin = dst;
    const int32_t n = length(src);
    for (int32_t i = 0; i < n; i++) {
        char c = src[i];
        if (c == '%') {
            // Reads both bytes even at the end: the caller provides a byte after the zero.
            c = static_cast<char>(digit_value(src[i + 1]) * 16 + digit_value(src[i + 2]));
            i += 2;
        }
        *dst++ = c;
    }
    *dst = '\0';
    return static_cast<int32_t>(dst - begin);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

int32_t tavu_str_parse_uri(const char *uri, char *scheme, char *host, char *port, char *path,
                           const char **rest) {
    *scheme = *host = *port = *path = '\0';
    *rest = nullptr;
    return parse_uri(uri, scheme, host, port, path, rest);
}

int32_t tavu_str_conv_a2uri(const char *src, char *dst) { return escape(src, dst); }

int32_t tavu_str_conv_uri2a(const char *src, char *dst) { return unescape(src, dst); }
