#include "replacing_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "commands.h"

namespace fs = std::filesystem;

ReplacingFile::ReplacingFile(const std::string &path) : shown_(path), target_(resolve(path)) {
    temporary_ = target_.string() + "." + std::to_string(getpid()) + ".tmp";
    file_ = std::fopen(temporary_.c_str(), "wbx");
    if (!file_) fail(std::strerror(errno));
}

ReplacingFile::~ReplacingFile() {
    if (file_) std::fclose(file_);
    if (!done_) std::remove(temporary_.c_str());
}

void ReplacingFile::write(const void *data, size_t size) {
    if (std::fwrite(data, 1, size, file_) != size) fail(std::strerror(errno));
}

void ReplacingFile::commit() {
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    if (!closed || std::rename(temporary_.c_str(), target_.c_str()) != 0)
        fail(std::strerror(errno));
    done_ = true;
}

void ReplacingFile::fail(const std::string &reason) const {
    throw WholeError(shown_ + ": cannot write: " + reason);
}

fs::path ReplacingFile::resolve(const std::string &path) const {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) return path;
    // Renaming onto a device would put a file in its place.
    if (!fs::is_regular_file(status)) fail("not a regular file");
    return fs::canonical(path, error);
}
