/** What commands print: JSON in one form, and colours where they are wanted. */
#pragma once

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

void print_json(const Json &json);

/** Escape codes for a stream: empty unless it is a terminal and NO_COLOR is not set. */
struct Colours {
    explicit Colours(int descriptor);

    const char *bold = "", *red = "", *green = "", *plain = "";
};
