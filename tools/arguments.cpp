#include "arguments.h"

#include <charconv>
#include <limits>

namespace {

/** "key" is 0. */
int parse_every(const std::string &text) {
    int every = 0;
    if (text == "key") return 0;
    const char *const end = text.data() + text.size();
    if (std::from_chars(text.data(), end, every).ptr != end || every < 1)
        throw CLI::ValidationError("--every", "expected key or a count of frames, got " + text);
    return every;
}

Size parse_size(const std::string &option, const std::string &text) {
    uint16_t width = 0, height = 0;  // stay 0 if the number is too large
    const char *const end = text.data() + text.size();
    const char *const x = std::from_chars(text.data(), end, width).ptr;
    const bool whole = *x == 'x' && std::from_chars(x + 1, end, height).ptr == end;
    if (!whole || width < 1 || height < 1)
        throw CLI::ValidationError(option, "expected a size such as 320x180, got " + text);
    return {width, height};
}

bool is_target(const PixelLayout &layout) { return layout.drawing != nullptr; }
bool is_raw(const PixelLayout &layout) { return layout.raw_format != nullptr; }

/** An option that takes the name or number of a layout for which `test` holds. */
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

}  // namespace

void Arguments::define(CLI::App &app) {
    app.set_version_flag("--version", PROJECT_VERSION);
    app.require_subcommand(1);
    define_probe(*app.add_subcommand("probe", "List tracks and key frames of a media file"));
    define_sheet(*app.add_subcommand("sheet", "Draw a contact sheet of a video"));
    define_digest(*app.add_subcommand("digest", "Print the MD5 digest of each decoded frame"));
    define_compare(*app.add_subcommand("compare", "Measure how far two videos are apart"));
    define_convert(*app.add_subcommand("convert", "Convert a picture to another pixel layout"));
}

void Arguments::define_probe(CLI::App &command) {
    command.add_option("FILE", input, "Media file")->required();
    command.add_flag("--json", json, "Print JSON");
    command.footer("Example:\n  tavu probe samples/h264.mp4");
    command.callback([this] { probe(input, json); });
}

void Arguments::define_sheet(CLI::App &command) {
    command.add_option("FILE", input, "Media file")->required();
    command.add_option("-o,--output", sheet.output, "PNG file to write")->required();
    command.add_option("--columns", sheet.columns, "Pictures per row")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    command.add_option("--width", sheet.width, "Width of a picture in pixels")
        ->check(CLI::Range(16, 4096))
        ->capture_default_str();
    command
        .add_option_function<std::string>(
            "--every", [this](const std::string &text) { sheet.every = parse_every(text); },
            "Pick key frames, or every Nth frame")
        ->type_name("key|N")
        ->default_str("key");
    command.footer("Example:\n  tavu sheet samples/h264.mp4 -o sheet.png --columns 3");
    command.callback([this] {
        sheet.input = input;
        ::sheet(sheet);
    });
}

void Arguments::define_digest(CLI::App &command) {
    command.add_option("FILE", input, "Media file")->required();
    command.footer(
        "The digest covers luma and, as if chroma were halved both ways, both chroma planes.\n"
        "Example:\n  tavu digest samples/mpeg4.avi");
    command.callback([this] { digest(input); });
}

void Arguments::define_compare(CLI::App &command) {
    command.add_option("A", input, "Media file or picture")->required();
    command.add_option("B", compare.other, "Another one of the same size")->required();
    command.add_option("-o,--output", compare.heat_map,
                       "PNG file to write: the frame of A that differs most by its SATD, with the "
                       "SATD of each 8x8 block");
    command.add_flag("--json", json, "Print JSON; an infinite PSNR is null");
    command.footer(
        "SAD, SSD, PSNR and SATD are those of luma. 8-bit luma is taken as it is when both files\n"
        "have the same range; otherwise, and for RGB and deeper samples, both are first converted\n"
        "to 8-bit full-range BT.601. The SATD is that of 8x8 blocks; blocks that reach beyond the\n"
        "picture are filled up with equal samples. The total PSNR is that of the mean error.\n"
        "Example:\n  tavu compare samples/h264.mp4 smaller.mp4 -o heat.png");
    command.callback([this] {
        compare.input = input;
        compare.json = json;
        ::compare(compare);
    });
}

void Arguments::define_convert(CLI::App &command) {
    command.add_option("IN", input, "Media file or picture, or raw planes");
    command.add_option("OUT", convert.output, "File to write: .png, .ppm, or else raw bytes");
    convert.to = find_layout(TAVU_CS_RGB888);
    add_layout(command, "--to", convert.to, is_target, "Layout to write")->default_str("rgb888");
    CLI::Option *resize = add_size(command, "--resize", convert.resize, "Size to write");
    command
        .add_flag("--one-pass", convert.one_pass,
                  "Let the library resize and convert in one routine; --list tells what this does "
                  "to strong colours")
        ->needs(resize);
    command.add_option("--frame", convert.frame, "Number of the frame to convert")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()))
        ->type_name("N")
        ->capture_default_str();
    define_raw(command);
    CLI::Option *list = command.add_flag("--list", "List the library's conversions");
    command.footer(
        "Video is brought to full-range BT.601 first, RGB is taken as it is.\n"
        "Example:\n  tavu convert samples/h264.mp4 --frame 100 picture.png --resize 640x360");
    command.callback([this, list] {
        if (list->count() > 0) return list_conversions();
        if (convert.output.empty()) throw CLI::RequiredError(input.empty() ? "IN" : "OUT");
        if (convert.limited && convert.raw->cs == TAVU_CS_YUV400)
            throw CLI::ValidationError("--limited", "luma alone is taken as full-range");
        convert.input = input;
        ::convert(convert);
    });
}

void Arguments::define_raw(CLI::App &command) {
    CLI::Option *size =
        add_size(command, "--size", convert.raw_size, "IN is raw planes of this size");
    CLI::Option *layout = add_layout(command, "--cs", convert.raw, is_raw, "Layout of raw planes");
    CLI::Option *limited =
        command.add_flag("--limited", convert.limited, "Raw planes are of limited range");
    size->needs(layout);
    layout->needs(size);
    limited->needs(size);
}
