#include "png_file.h"

#include <png.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "commands.h"

namespace {

namespace fs = std::filesystem;

/** A file beside the target that takes its place when it is complete. */
class ReplacingFile {
  public:
    explicit ReplacingFile(const std::string &path) : shown_(path), target_(resolve(path)) {
        temporary_ = target_.string() + "." + std::to_string(getpid()) + ".tmp";
        file_ = std::fopen(temporary_.c_str(), "wbx");
        if (!file_) fail(std::strerror(errno));
    }
    ReplacingFile(const ReplacingFile &) = delete;
    ReplacingFile &operator=(const ReplacingFile &) = delete;
    ~ReplacingFile() {
        if (file_) std::fclose(file_);
        if (!done_) std::remove(temporary_.c_str());
    }

    std::FILE *get() const { return file_; }

    void commit() {
        const bool closed = std::fclose(file_) == 0;
        file_ = nullptr;
        if (!closed || std::rename(temporary_.c_str(), target_.c_str()) != 0)
            fail(std::strerror(errno));
        done_ = true;
    }

    [[noreturn]] void fail(const std::string &reason) const {
        throw WholeError(shown_ + ": cannot write: " + reason);
    }

  private:
    fs::path resolve(const std::string &path) const {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::exists(status)) return path;
        // Renaming onto a device would put a file in its place.
        if (!fs::is_regular_file(status)) fail("not a regular file");
        return fs::canonical(path, error);
    }

    std::string shown_;
    fs::path target_;
    std::string temporary_;
    std::FILE *file_ = nullptr;
    bool done_ = false;
};

}  // namespace

void write_png(const std::string &path, const uint8_t *rgb, int width, int height, size_t stride) {
    ReplacingFile file(path);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_RGB;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    if (!png_image_write_to_stdio(&image, file.get(), 0, rgb, static_cast<png_int_32>(stride),
                                  nullptr))
        file.fail(image.message);
    file.commit();
}
