#include "output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "commands.h"

namespace fs = std::filesystem;

namespace {

/** The file that the signal handler removes, or null. */
std::atomic<const char *> unfinished{nullptr};

extern "C" void remove_unfinished(int signal) {
    if (const char *path = unfinished) unlink(path);
    raise(signal);  // SA_RESETHAND has restored the default action, which ends the program
}

/** Handles all signals that end the program by default, unless their action was changed. */
void handle_signals() {
    constexpr int HARMLESS[] = {SIGCHLD, SIGCONT, SIGSTOP,  SIGTSTP, SIGTTIN,
                                SIGTTOU, SIGURG,  SIGWINCH, SIGKILL};
    struct sigaction ours{}, before{};
    ours.sa_handler = remove_unfinished;
    ours.sa_flags = static_cast<int>(SA_RESETHAND);
    for (int signal = 1; signal <= SIGRTMAX; signal++) {
        if (std::find(std::begin(HARMLESS), std::end(HARMLESS), signal) != std::end(HARMLESS))
            continue;
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
            sigaction(signal, &ours, nullptr);
    }
}

/** Blocks signals while an object of this class exists. */
class HoldSignals {
  public:
    HoldSignals() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, &before_);
    }
    HoldSignals(const HoldSignals &) = delete;
    HoldSignals &operator=(const HoldSignals &) = delete;
    ~HoldSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_{};
};

}  // namespace

OutputFile::OutputFile(const std::string &path, std::initializer_list<FileId> inputs)
    : name_(path == "-" ? "standard output" : path) {
    struct stat old{};
    const bool exists = (path == "-" ? fstat(STDOUT_FILENO, &old) : stat(path.c_str(), &old)) == 0;
    if (exists) refuse(old, inputs);
    if (path == "-") {
        open_standard_output();
    } else {
        open(path, exists ? &old : nullptr);
    }
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
    if (temporary_.empty()) return;
    const HoldSignals hold;
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) fail(std::strerror(errno));
    unfinished = nullptr;
    temporary_.clear();
}

void OutputFile::fail(const std::string &reason) const {
    throw WholeError(name_ + ": cannot write: " + reason);
}

void OutputFile::refuse(const struct stat &target, std::initializer_list<FileId> inputs) const {
    const bool is_input = std::find(inputs.begin(), inputs.end(), FileId(target)) != inputs.end();
    if (is_input) throw UsageError(name_ + ": cannot write: it is the input file");
}

void OutputFile::open_standard_output() {
    if (isatty(STDOUT_FILENO)) fail("it is a terminal; redirect it to a file or a pipe");
    file_ = stdout;
}

void OutputFile::open(const fs::path &path, const struct stat *old) {
    // Renaming onto a device would replace it with a file.
    if (old && S_ISCHR(old->st_mode)) {
        file_ = std::fopen(path.c_str(), "wb");
        if (!file_) fail(std::strerror(errno));
        return;
    }
    if (old && S_ISDIR(old->st_mode)) fail("it is a directory");
    if (old && !S_ISREG(old->st_mode)) fail("it is not a regular file");
    if (old && access(path.c_str(), W_OK) != 0) fail(std::strerror(errno));
    std::error_code error;
    target_ = old ? fs::canonical(path, error) : path;
    if (error) fail(error.message());
    if (make_temporary() && keep_owner_and_mode(old)) return;
    const std::string reason = std::strerror(errno);
    drop_temporary();
    fail(reason);
}

bool OutputFile::make_temporary() {
    handle_signals();
    temporary_ = target_.parent_path() / ".tavu-XXXXXX";
    const HoldSignals hold;
    const int descriptor = mkostemp(temporary_.data(), O_CLOEXEC);
    if (descriptor < 0) {
        temporary_.clear();
        return false;
    }
    unfinished = temporary_.c_str();
    file_ = fdopen(descriptor, "wb");
    return file_ != nullptr;
}

/** Keeps the owner if the system allows it; a new file gets the mode that open() would set. */
bool OutputFile::keep_owner_and_mode(const struct stat *old) const {
    constexpr mode_t NEW = 0666, PERMISSIONS = 0777;
    const mode_t mask = umask(0);
    umask(mask);
    if (old && fchown(fileno(file_), old->st_uid, old->st_gid) != 0) errno = 0;
    return fchmod(fileno(file_), old ? old->st_mode & PERMISSIONS : NEW & ~mask) == 0;
}

void OutputFile::drop_temporary() {
    if (!temporary_.empty()) std::remove(temporary_.c_str());
    unfinished = nullptr;
}
