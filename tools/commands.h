#pragma once

#include <stdexcept>
#include <string>

/**
 * A failure that is not about the input file; its text is a whole message. Every other exception
 * of a command is about the input file and carries the reason alone.
 */
struct WholeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct SheetOptions {
    std::string input, output;
    int columns = 4;
    int width = 320;
    int every = 0;  ///< 0: key frames
};

void probe(const std::string &input, bool json);
void sheet(const SheetOptions &options);
void digest(const std::string &input);
