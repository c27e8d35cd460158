#ifndef TAVU_TOOLS_COMMANDS_H
#define TAVU_TOOLS_COMMANDS_H

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

/** What every command takes. */
struct CommonOptions {
    std::string input;  ///< the file that the command is about
    bool json = false;
    bool quiet = false;

    /** Whether to print text for people; `output` is a file that the command writes, if any. */
    bool talks(const std::string &output = "") const { return !json && !quiet && output != "-"; }
};

struct SheetOptions {
    std::string output;
    int columns = 4;
    int width = 320;
    int every = 0;  ///< 0: key frames
};

struct CompareOptions {
    std::string other;
    std::string heat_map;  ///< empty: none
};

struct Size {
    int width, height;
};

struct ConvertOptions {
    std::string output;
    const PixelLayout *to = nullptr;
    const PixelLayout *raw = nullptr;  ///< null: not a raw file
    std::optional<Size> raw_size;
    bool limited = false;
    std::optional<Size> resize;
    bool one_pass = false;
    int frame = 0;
};

struct BenchOptions {
    std::string pattern;  ///< a part of the names of the kernels to time
    bool csv = false;
};

/** `plot` is a file to draw into, or empty. */
void probe(const CommonOptions &common, const std::string &plot);
void sheet(const CommonOptions &common, const SheetOptions &options);
void digest(const CommonOptions &common);
void compare(const CommonOptions &common, const CompareOptions &options);
void convert(const CommonOptions &common, const ConvertOptions &options);
void list_conversions(const CommonOptions &common);
void list_kernels();
void bench(const CommonOptions &common, const BenchOptions &options);

#endif
