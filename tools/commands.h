#ifndef TAVU_TOOLS_COMMANDS_H
#define TAVU_TOOLS_COMMANDS_H

#include <optional>
#include <stdexcept>
#include <string>

#include "layouts.h"

/**
 * An error that does not concern the input file; its text is the complete message. Any other
 * exception of a command concerns the input file, and its text is only the reason.
 */
struct WholeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** Invalid arguments that are found after parsing. */
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** Options of every command. */
struct CommonOptions {
    std::string input;  ///< the file that the command reads
    bool json = false;
    bool quiet = false;

    /** Whether to print text for people; `output` is a file that the command writes, if any. */
    bool has_text(const std::string &output = "") const { return !json && !quiet && output != "-"; }
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
