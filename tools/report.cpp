#include "report.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

void print_json(const Json &json) {
    // File names need not be UTF-8.
    std::cout << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

Colours::Colours(int descriptor) {
    const auto variable = [](const char *name) {
        const char *value = std::getenv(name);
        return std::string(value ? value : "");
    };
    if (!isatty(descriptor) || !variable("NO_COLOR").empty() || variable("TERM") == "dumb") return;
    bold = "\033[1m";
    red = "\033[1;31m";
    green = "\033[32m";
    plain = "\033[0m";
}
