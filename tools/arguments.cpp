#include "arguments.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "command_line.h"
#include "limits.h"

namespace {

constexpr const char *MEDIA = "Media file, - for standard input";

[[noreturn]] void refuse(const std::string &option, const std::string &expected,
                         const std::string &text) {
    throw CLI::ValidationError(option, "expected " + expected + ", got " + text);
}

/** Parses a whole number of at most 18 digits; -1 for any other text. */
int64_t parse_digits(const std::string &text) {
    constexpr size_t MOST = 18;
    const bool digits = text.find_first_not_of("0123456789") == std::string::npos;
    return digits && !text.empty() && text.size() <= MOST ? std::stoll(text) : -1;
}

/** Returns 0 for "key". */
int parse_every(const std::string &text) {
    const int64_t every = parse_digits(text);
    if (text == "key") return 0;
    if (every < 1 || every > std::numeric_limits<int>::max())
        refuse("--every", "key or a number of frames", text);
    return static_cast<int>(every);
}

Size parse_size(const std::string &option, const std::string &text) {
    constexpr int64_t MOST = 65535;
    const size_t x = std::min(text.find('x'), text.size());
    const int64_t width = parse_digits(text.substr(0, x));
    const int64_t height = x < text.size() ? parse_digits(text.substr(x + 1)) : -1;
    if (width < 0 || height < 0) refuse(option, "a size such as 320x180", text);
    if (std::min(width, height) < 1 || std::max(width, height) > MOST)
        refuse(option, "a width and a height from 1 to 65535", text);
    const std::string reason = too_large(width, height);
    if (!reason.empty()) throw CLI::ValidationError(option, reason);
    return {static_cast<int>(width), static_cast<int>(height)};
}

bool is_target(const PixelLayout &layout) { return layout.drawing != nullptr; }
bool is_raw(const PixelLayout &layout) { return layout.raw_format != nullptr; }

/** Adds an option that takes the name or number of a layout for which `test` holds. */
CLI::Option *add_layout(CLI::App &command, const std::string &name, const PixelLayout *&layout,
                        bool (*test)(const PixelLayout &), const std::string &help) {
    const std::string names = CLI::detail::join(layout_names(test), "|");
    const auto take = [&layout, test, name, names](const std::string &text) {
        layout = find_layout(text);
        if (!layout || !test(*layout))
            throw CLI::ValidationError(name, "expected one of " + names + ", got " + text);
    };
    return command.add_option_function<std::string>(name, take, help)->type_name(names);
}

CLI::Option *add_size(CLI::App &command, const std::string &name, std::optional<Size> &size,
                      const std::string &help) {
    const auto take = [&size, name](const std::string &text) { size = parse_size(name, text); };
    return command.add_option_function<std::string>(name, take, help)->type_name("WxH");
}

/** Adds an option that takes a whole number. */
CLI::Option *add_number(CLI::App &command, const std::string &name, int &number, int low, int high,
                        const std::string &help) {
    const auto take = [&number, name, low, high](const std::string &text) {
        const int64_t value = parse_digits(text);
        if (value < low || value > high)
            refuse(name, "a number from " + std::to_string(low) + " to " + std::to_string(high),
                   text);
        number = static_cast<int>(value);
    };
    return command.add_option_function<std::string>(name, take, help)
        ->type_name("N")
        ->default_str(std::to_string(number));
}

}  // namespace

void Arguments::define(CLI::App &app) {
    std::string library = tavu_version();
    library.resize(library.find_last_not_of('\n') + 1);
    app.set_version_flag("--version", "tavu " PROJECT_VERSION " (library dated " + library + ")");
    define_probe(*app.add_subcommand("probe", "List tracks and key frames of a media file"));
    define_sheet(*app.add_subcommand("sheet", "Draw a contact sheet of a video"));
    define_digest(*app.add_subcommand("digest", "Print the MD5 digest of each decoded frame"));
    define_compare(*app.add_subcommand("compare", "Measure the difference between two videos"));
    define_convert(*app.add_subcommand("convert", "Convert a picture to another pixel layout"));
    define_bench(*app.add_subcommand("bench", "Time the library's kernels on this processor"));
}

void Arguments::add_common(CLI::App &command) {
    command.add_flag("--json", common.json, "Print JSON, described in the manual page");
    command.add_flag("-q,--quiet", common.quiet,
                     "Print only errors and output that other options request");
}

/** Standard output takes a picture or JSON, not both. */
void Arguments::forbid_two_outputs(const std::string &output) const {
    if (common.json && output == "-")
        throw CLI::ValidationError("--json",
                                   "standard output is already used for the file to write");
}

void Arguments::define_probe(CLI::App &command) {
    command.add_option("FILE", common.input, MEDIA)->required();
    command
        .add_option("--plot", plot,
                    "PNG file to write: bytes per access unit over time, key frames marked")
        ->type_name("PNG");
    add_common(command);
    command.footer("Example:\n  tavu probe clip.mp4");
    command.callback([this] {
        forbid_two_outputs(plot);
        run = [this] { probe(common, plot); };
    });
}

void Arguments::define_sheet(CLI::App &command) {
    command.add_option("FILE", common.input, MEDIA)->required();
    command.add_option("-o,--output", sheet.output, "PNG file to write, - for standard output")
        ->required()
        ->type_name("PNG");
    add_number(command, "--columns", sheet.columns, 1, 100, "Pictures per row, 1 to 100");
    add_number(command, "--width", sheet.width, 16, 4096,
               "Width of a picture in pixels, 16 to 4096");
    command
        .add_option_function<std::string>(
            "--every", [this](const std::string &text) { sheet.every = parse_every(text); },
            "Pick key frames, or every Nth frame")
        ->type_name("key|N")
        ->default_str("key");
    add_common(command);
    command.footer("Example:\n  tavu sheet clip.mp4 -o sheet.png --columns 3");
    command.callback([this] {
        forbid_two_outputs(sheet.output);
        run = [this] { ::sheet(common, sheet); };
    });
}

void Arguments::define_digest(CLI::App &command) {
    command.add_option("FILE", common.input, MEDIA)->required();
    add_common(command);
    command.footer(
        "The digest covers luma and both chroma planes, with chroma treated as 4:2:0.\n"
        "Example:\n  tavu digest clip.mp4");
    command.callback([this] { run = [this] { digest(common); }; });
}

void Arguments::define_compare(CLI::App &command) {
    command.add_option("A", common.input, "Media file or picture, - for standard input")
        ->required();
    command.add_option("B", compare.other, "Media file or picture of the same size")->required();
    command
        .add_option("-o,--output", compare.heat_map,
                    "PNG file to write, - for standard output: the frame of A with the highest "
                    "SATD, overlaid with the SATD of each 8x8 block")
        ->type_name("PNG");
    add_common(command);
    command.footer(
        "SAD, SSD, PSNR and SATD are computed on luma. 8-bit luma is used unchanged if both files\n"
        "have the same range; otherwise, and for RGB and deeper samples, both are first converted\n"
        "to 8-bit full-range BT.601. SATD uses 8x8 blocks; blocks that extend past the picture "
        "are\n"
        "padded with equal samples. The total PSNR is computed from the mean error.\n"
        "Example:\n  tavu compare clip.mp4 smaller.mp4 -o heat.png");
    command.callback([this] {
        forbid_two_outputs(compare.heat_map);
        if (common.input == "-" && compare.other == "-")
            throw CLI::ValidationError("B", "standard input is already used for A");
        run = [this] { ::compare(common, compare); };
    });
}

void Arguments::define_convert(CLI::App &command) {
    command.add_option("IN", common.input,
                       "Media file or picture, or raw planes; - for standard input");
    command.add_option("OUT", convert.output,
                       "File to write: .png, .ppm, otherwise raw bytes; - for standard output");
    convert.to = find_layout(TAVU_CS_RGB888);
    add_layout(command, "--to", convert.to, is_target, "Layout to write")->default_str("rgb888");
    CLI::Option *resize = add_size(command, "--resize", convert.resize, "Size to write");
    command
        .add_flag("--one-pass", convert.one_pass,
                  "Resize and convert in one library routine; --list shows how this affects "
                  "saturated colours")
        ->needs(resize);
    add_number(command, "--frame", convert.frame, 0, std::numeric_limits<int>::max(),
               "Number of the frame to convert, counted from 0");
    define_raw(command);
    CLI::Option *list = command.add_flag("--list", "List the library's conversions");
    add_common(command);
    command.footer(
        "Video is first converted to full-range BT.601; RGB is used unchanged.\n"
        "Example:\n  tavu convert clip.mp4 --frame 100 picture.png --resize 640x360");
    command.callback([this, &command, list] {
        if (list->count() > 0) {
            require_alone(command, *list, {"--json"});
            run = [this] { list_conversions(common); };
            return;
        }
        if (convert.output.empty()) throw CLI::RequiredError(common.input.empty() ? "IN" : "OUT");
        if (convert.limited && convert.raw->cs == TAVU_CS_YUV400)
            throw CLI::ValidationError("--limited", "luma alone is always full-range");
        forbid_two_outputs(convert.output);
        run = [this] { ::convert(common, convert); };
    });
}

void Arguments::define_raw(CLI::App &command) {
    CLI::Option *size =
        add_size(command, "--size", convert.raw_size, "IN contains raw planes of this size");
    CLI::Option *layout = add_layout(command, "--cs", convert.raw, is_raw, "Layout of raw planes");
    CLI::Option *limited =
        command.add_flag("--limited", convert.limited, "Raw planes have limited range");
    size->needs(layout);
    layout->needs(size);
    limited->needs(size);
}

void Arguments::define_bench(CLI::App &command) {
    command.add_option("PATTERN", bench.pattern, "Time only kernels whose names contain this");
    CLI::Option *csv = command.add_flag("--csv", bench.csv, "Print comma-separated values");
    CLI::Option *list = command.add_flag("--list", "List the kernels");
    add_common(command);
    command.get_option("--json")->excludes(csv);
    command.footer(
        "Results are first compared with those of the kernel's scalar model. ns is the shortest\n"
        "time of one call, GB/s counts the bytes read and written, and speed is relative to the\n"
        "model.\n"
        "Example:\n  tavu bench yuv444_to_rgb");
    command.callback([this, &command, list] {
        if (list->count() > 0) {
            require_alone(command, *list);
            run = list_kernels;
        } else {
            run = [this] { ::bench(common, bench); };
        }
    });
}
