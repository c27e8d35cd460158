#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "layouts.h"

/**
 * A failure that is not about the input file; its text is a whole message. Every other exception
 * of a command is about the input file and carries the reason alone.
 */
struct WholeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** Options that do not go together. */
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct SheetOptions {
    std::string input, output;
    int columns = 4;
    int width = 320;
    int every = 0;  ///< 0: key frames
};

struct CompareOptions {
    std::string input, other;
    std::string heat_map;  ///< empty: none
    bool json = false;
};

struct Size {
    int width, height;
};

struct ConvertOptions {
    std::string input, output;
    const PixelLayout *to = nullptr;
    const PixelLayout *raw = nullptr;  ///< null: not a raw file
    std::optional<Size> raw_size;
    bool limited = false;
    std::optional<Size> resize;
    bool one_pass = false;
    int frame = 0;
};

void probe(const std::string &input, bool json);
void sheet(const SheetOptions &options);
void digest(const std::string &input);
void compare(const CompareOptions &options);
void convert(const ConvertOptions &options);
void list_conversions();
