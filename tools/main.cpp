extern "C" {
#include <libavutil/log.h>
}

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <iostream>
#include <new>

#include "commands.h"

namespace {

enum { EXIT_FAILED = 1, EXIT_USAGE = 2 };

int complain(std::string message, int status) {
    std::replace(message.begin(), message.end(), '\n', ' ');
    std::cerr << "tavu: " << message << '\n';
    return status;
}

/** "key" is 0. */
int parse_every(const std::string &text) {
    int every = 0;
    if (text == "key") return 0;
    const char *const end = text.data() + text.size();
    if (std::from_chars(text.data(), end, every).ptr != end || every < 1)
        throw CLI::ValidationError("--every", "expected key or a count of frames, got " + text);
    return every;
}

struct Arguments {
    std::string input;
    bool json = false;
    SheetOptions sheet;

    void define(CLI::App &app) {
        app.set_version_flag("--version", PROJECT_VERSION);
        app.require_subcommand(1);
        define_probe(*app.add_subcommand("probe", "List tracks and key frames of a media file"));
        define_sheet(*app.add_subcommand("sheet", "Draw a contact sheet of a video"));
        define_digest(*app.add_subcommand("digest", "Print the MD5 digest of each decoded frame"));
    }

    void define_probe(CLI::App &command) {
        command.add_option("FILE", input, "Media file")->required();
        command.add_flag("--json", json, "Print JSON");
        command.footer("Example:\n  tavu probe samples/h264.mp4");
        command.callback([this] { probe(input, json); });
    }

    void define_sheet(CLI::App &command) {
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

    void define_digest(CLI::App &command) {
        command.add_option("FILE", input, "Media file")->required();
        command.footer(
            "The digest covers luma and, as if chroma were halved both ways, both chroma planes.\n"
            "Example:\n  tavu digest samples/mpeg4.avi");
        command.callback([this] { digest(input); });
    }
};

int run(int argc, char **argv, Arguments &arguments) {
    CLI::App app{"Look into media files with libtavu.", "tavu"};
    arguments.define(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        return complain(std::string(error.what()) + " (see tavu --help)", EXIT_USAGE);
    }
    if (!std::cout.flush()) throw WholeError("standard output: cannot write");
    return 0;
}

}  // namespace

int main(int argc, char **argv) {
    av_log_set_level(AV_LOG_QUIET);
    Arguments arguments;
    try {
        return run(argc, argv, arguments);
    } catch (const WholeError &error) {
        return complain(error.what(), EXIT_FAILED);
    } catch (const std::bad_alloc &) {
        return complain(arguments.input + ": out of memory", EXIT_FAILED);
    } catch (const std::exception &error) {
        return complain(arguments.input + ": " + error.what(), EXIT_FAILED);
    }
}
