#include "input_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace {

[[noreturn]] void fail(const std::string &doing) {
    throw std::runtime_error(doing + std::strerror(errno));
}

FilePtr open(const std::string &path) {
    const int descriptor =
        path == "-" ? dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) fail("");
    FilePtr file(fdopen(descriptor, "rb"));
    if (!file) fail("");
    return file;
}

/** Copies a pipe to a temporary file, because many formats need seeking. */
FilePtr copy_of(std::FILE *pipe) {
    FilePtr copy(std::tmpfile());
    char bytes[1 << 16];
    size_t size = 0;
    while (copy && (size = std::fread(bytes, 1, sizeof bytes, pipe)) > 0)
        if (std::fwrite(bytes, 1, size, copy.get()) != size) copy.reset();
    if (std::ferror(pipe) || !copy || std::fflush(copy.get()) != 0) fail("cannot copy it: ");
    return copy;
}

FilePtr seekable(FilePtr file) {
    struct stat status{};
    if (fstat(fileno(file.get()), &status) != 0) fail("");
    if (S_ISDIR(status.st_mode)) throw std::runtime_error(std::strerror(EISDIR));
    if (S_ISREG(status.st_mode)) return file;
    if (isatty(fileno(file.get())))
        throw std::runtime_error("it is a terminal; expected a media file");
    if (S_ISCHR(status.st_mode)) throw std::runtime_error("not a media file but a device");
    return copy_of(file.get());
}

/** A reader's position in a file. */
struct Cursor {
    int descriptor;
    int64_t at, end;
};

int read_on(void *opaque, uint8_t *bytes, int size) {
    auto &cursor = *static_cast<Cursor *>(opaque);
    const ssize_t count = pread(cursor.descriptor, bytes, static_cast<size_t>(size), cursor.at);
    if (count < 0) return AVERROR(errno);
    cursor.at += count;
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

int64_t seek(void *opaque, int64_t offset, int whence) {
    auto &cursor = *static_cast<Cursor *>(opaque);
    if (whence & AVSEEK_SIZE) return cursor.end;
    const int from = whence & ~AVSEEK_FORCE;
    if (from != SEEK_SET && from != SEEK_CUR && from != SEEK_END) return AVERROR(EINVAL);
    const int64_t start = from == SEEK_CUR ? cursor.at : from == SEEK_END ? cursor.end : 0;
    if (offset < -start || offset > INT64_MAX - start) return AVERROR(EINVAL);
    return cursor.at = start + offset;
}

AVIOContext *make_io(int descriptor, int64_t end) {
    constexpr int SIZE = 1 << 15;
    auto *buffer = static_cast<uint8_t *>(av_malloc(SIZE));
    if (!buffer) throw std::bad_alloc();
    auto *cursor = new Cursor{descriptor, 0, end};
    AVIOContext *io = avio_alloc_context(buffer, SIZE, 0, cursor, read_on, nullptr, seek);
    if (!io) {
        delete cursor;
        av_free(buffer);
        throw std::bad_alloc();
    }
    return io;
}

int close_io(AVFormatContext *, AVIOContext *io) {
    if (!io) return 0;
    delete static_cast<Cursor *>(io->opaque);
    av_freep(&io->buffer);
    avio_context_free(&io);
    return 0;
}

/** Replaces the path, which could contain a pattern or a protocol. */
std::string url_of(const std::string &path) {
    constexpr size_t LONGEST = 16;
    const std::string extension = std::filesystem::path(path).extension();
    const auto plain = [](unsigned char c) { return c == '.' || std::isalnum(c); };
    const bool usable =
        extension.size() <= LONGEST && std::all_of(extension.begin(), extension.end(), plain);
    return "input" + (usable ? extension : "");
}

}  // namespace

InputFile::InputFile(const std::string &path) : file_(seekable(open(path))), url_(url_of(path)) {
    struct stat status{};
    if (fstat(fileno(file_.get()), &status) != 0) fail("");
    id_ = FileId(status);
    size_ = status.st_size;
    io_ = make_io(fileno(file_.get()), size_);
}

InputFile::~InputFile() { close_io(nullptr, io_); }

bool InputFile::read(int64_t at, void *bytes, size_t size) const {
    return pread(fileno(file_.get()), bytes, size, at) == static_cast<ssize_t>(size);
}

void InputFile::attach(AVFormatContext &context) {
    context.pb = io_;
    context.flags |= AVFMT_FLAG_CUSTOM_IO;
    context.opaque = this;
    context.io_open = open_again;
    context.io_close2 = close_io;
}

int InputFile::open_again(AVFormatContext *context, AVIOContext **io, const char *url, int,
                          AVDictionary **) {
    auto &file = *static_cast<InputFile *>(context->opaque);
    if (file.url_ != url) {
        file.others_wanted_ = true;
        return AVERROR(EPERM);
    }
    *io = make_io(fileno(file.file_.get()), file.size_);
    return 0;
}
