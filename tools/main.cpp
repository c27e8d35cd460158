extern "C" {
#include <libavutil/log.h>
}

#include <algorithm>
#include <iostream>
#include <new>

#include "arguments.h"

namespace {

enum { EXIT_FAILED = 1, EXIT_USAGE = 2 };

int complain(std::string message, int status) {
    std::replace(message.begin(), message.end(), '\n', ' ');
    std::cerr << "tavu: " << message << '\n';
    return status;
}

int run(int argc, char **argv, Arguments &arguments) {
    CLI::App app{"Look into media files with libtavu.", "tavu"};
    arguments.define(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() != 0)
            return complain(std::string(error.what()) + " (see tavu --help)", EXIT_USAGE);
        app.exit(error);
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
    } catch (const UsageError &error) {
        return complain(error.what(), EXIT_USAGE);
    } catch (const WholeError &error) {
        return complain(error.what(), EXIT_FAILED);
    } catch (const std::bad_alloc &) {
        return complain(arguments.input + ": out of memory", EXIT_FAILED);
    } catch (const std::exception &error) {
        return complain(arguments.input + ": " + error.what(), EXIT_FAILED);
    }
}
