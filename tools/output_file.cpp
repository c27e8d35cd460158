#include "output_file.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "commands.h"

namespace fs = std::filesystem;

namespace {

/** What a signal handler removes; null: nothing. */
std::atomic<const char *> unfinished{nullptr};

extern "C" void remove_unfinished(int signal) {
    if (const char *path = unfinished) unlink(path);
    raise(signal);  // the default action, which is in force again, ends the program
}

void handle_signals() {
    struct sigaction ours {
    }, before{};
    ours.sa_handler = remove_unfinished;
    ours.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGHUP, SIGINT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ}) {
        sigaction(signal, &ours, &before);
        if (before.sa_handler == SIG_IGN) sigaction(signal, &before, nullptr);
    }
}

}  // namespace

OutputFile::OutputFile(const std::string &path) : name_(path) {
    if (path == "-") {
        open_standard_output();
    } else {
        open(path);
    }
    if (file_) return;
    unfinished = nullptr;
    fail(std::strerror(errno));
}

OutputFile::~OutputFile() {
    if (file_ && file_ != stdout) std::fclose(file_);
    drop_temporary();
}

void OutputFile::write(const void *data, size_t size) {
    if (std::fwrite(data, 1, size, file_) != size) fail(std::strerror(errno));
}

void OutputFile::commit() {
    const bool closed = file_ == stdout ? std::fflush(file_) == 0 : std::fclose(file_) == 0;
    file_ = nullptr;
    if (!closed) fail(std::strerror(errno));
    if (!temporary_.empty() && std::rename(temporary_.c_str(), target_.c_str()) != 0)
        fail(std::strerror(errno));
    unfinished = nullptr;
    temporary_.clear();
}

void OutputFile::fail(const std::string &reason) const {
    throw WholeError(name_ + ": cannot write: " + reason);
}

void OutputFile::open_standard_output() {
    name_ = "standard output";
    if (isatty(STDOUT_FILENO)) fail("it is a terminal; send it to a file or a pipe");
    file_ = stdout;
}

void OutputFile::open(const fs::path &path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    // Renaming onto a device would put a file in its place.
    if (fs::is_character_file(status)) {
        file_ = std::fopen(path.c_str(), "wb");
        return;
    }
    if (fs::is_directory(status)) fail("it is a directory");
    if (fs::exists(status) && !fs::is_regular_file(status)) fail("it is no regular file");
    target_ = fs::exists(status) ? fs::canonical(path, error) : path;
    temporary_ = target_.parent_path() / (".tavu-" + std::to_string(getpid()) + ".tmp");
    handle_signals();
    unfinished = temporary_.c_str();
    file_ = std::fopen(temporary_.c_str(), "wbx");
}

void OutputFile::drop_temporary() {
    if (!temporary_.empty()) std::remove(temporary_.c_str());
    unfinished = nullptr;
}
