/** Output of the commands: JSON and terminal colours. */
#ifndef TAVU_TOOLS_REPORT_H
#define TAVU_TOOLS_REPORT_H

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

void print_json(const Json &json);

/** True for a terminal that supports escape codes. */
bool takes_escapes(int descriptor);

/** Escape codes for a stream: empty unless it supports them and NO_COLOR is not set. */
struct Colours {
    explicit Colours(int descriptor);

    const char *bold = "", *red = "", *green = "", *plain = "";
};

#endif
