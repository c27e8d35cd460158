#include "report.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

std::string variable(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

/** Also escapes DEL and the C1 control characters, which JSON permits. */
std::string with_controls_escaped(const std::string &json) {
    std::string out;
    for (size_t i = 0; i < json.size(); i++) {
        const auto byte = static_cast<uint8_t>(json[i]);
        const auto next = static_cast<uint8_t>(i + 1 < json.size() ? json[i + 1] : 0);
        const bool c1 = byte == 0xC2 && next < 0xA0;
        if (!c1 && byte != 0x7F) {
            out += json[i];
            continue;
        }
        char text[7];
        std::snprintf(text, sizeof text, "\\u%04x", c1 ? next : byte);
        out += text;
        i += c1;
    }
    return out;
}

}  // namespace

void print_json(const Json &json) {
    // File names need not be UTF-8.
    const std::string text = json.dump(2, ' ', false, Json::error_handler_t::replace);
    std::cout << with_controls_escaped(text) << '\n';
}

bool takes_escapes(int descriptor) {
    const std::string terminal = variable("TERM");
    return isatty(descriptor) && !terminal.empty() && terminal != "dumb";
}

Colours::Colours(int descriptor) {
    if (!takes_escapes(descriptor) || !variable("NO_COLOR").empty()) return;
    bold = "\033[1m";
    red = "\033[1;31m";
    green = "\033[32m";
    plain = "\033[0m";
}
