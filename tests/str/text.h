// Strings for the tests of scanners.
#ifndef TAVU_TESTS_STR_TEXT_H
#define TAVU_TESTS_STR_TEXT_H

#include <string>

#include "memory.h"

// A string whose terminating zero is the last readable byte; null makes the null string.
class Text {
  public:
    explicit Text(const char *text)
        : copy_(text == nullptr ? Bytes() : Bytes(text, text + strlen(text) + 1)),
          text_(text == nullptr ? nullptr : reinterpret_cast<const char *>(copy_.data())) {}
    operator const char *() const { return text_; }

    // Offset of a pointer into the string, "-" for null.
    std::string at(const char *p) const { return p == nullptr ? "-" : std::to_string(p - text_); }

  private:
    GuardedBytes copy_;
    const char *text_;
};

// A buffer for a string: it ends at an unreadable page and contains no zero.
struct Output : GuardedBytes {
    using GuardedBytes::GuardedBytes;
    char *get() { return reinterpret_cast<char *>(data()); }
};

struct Case {
    const char *text;
    std::string expected;
    const char *delim = nullptr;
};
using Cases = std::vector<Case>;

#endif
