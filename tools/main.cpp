extern "C" {
#include <libavutil/log.h>
}
#include <fcntl.h>
#include <unistd.h>

#include <iostream>
#include <new>

#include "arguments.h"
#include "command_line.h"
#include "names.h"
#include "report.h"

namespace {

enum { EXIT_FAILED = 1, EXIT_USAGE = 2 };

int complain(const std::string &message, int status) {
    const Colours colours(STDERR_FILENO);
    std::cerr << colours.red << "tavu:" << colours.plain << ' ' << printable(message) << '\n';
    return status;
}

int run(int argc, char **argv, Arguments &arguments) {
    CLI::App app{"Inspect media files with libtavu.", "tavu"};
    arguments.define(app);
    try {
        app.parse(normalized(app, argc, argv));
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() != 0) {
            const CLI::App *const command = argc > 1 ? find_command(app, argv[1]) : nullptr;
            const std::string name = command ? " " + command->get_name() : "";
            return complain(error.what() + (" (see tavu" + name + " --help)"), EXIT_USAGE);
        }
        app.exit(error);
    }
    if (arguments.run) arguments.run();
    if (!std::cout.flush()) throw WholeError("standard output: cannot write");
    return 0;
}

/** Keeps the descriptors of closed standard streams from being used for the next opened files. */
void occupy_closed_streams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; stream++)
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", O_PATH);
}

}  // namespace

int main(int argc, char **argv) {
    occupy_closed_streams();
    av_log_set_level(AV_LOG_QUIET);
    Arguments arguments;
    const auto about_input = [&arguments](const char *reason) {
        const std::string &input = arguments.common.input;
        const std::string head = input == "-" ? "standard input: " : input + ": ";
        return complain((input.empty() ? "" : head) + reason, EXIT_FAILED);
    };
    try {
        return run(argc, argv, arguments);
    } catch (const UsageError &error) {
        return complain(error.what(), EXIT_USAGE);
    } catch (const WholeError &error) {
        return complain(error.what(), EXIT_FAILED);
    } catch (const std::bad_alloc &) {
        return about_input("out of memory");
    } catch (const std::exception &error) {
        return about_input(error.what());
    }
}
