#ifndef TAVU_TOOLS_INPUT_FILE_H
#define TAVU_TOOLS_INPUT_FILE_H

#include <cstdint>
#include <string>

#include "file_id.h"
#include "handles.h"

/**
 * A file opened for reading, "-" for standard input. FFmpeg can open it repeatedly, and no other
 * file.
 */
class InputFile {
  public:
    explicit InputFile(const std::string &path);
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;
    ~InputFile();

    FileId id() const { return id_; }
    int64_t size() const { return size_; }
    /** Reads `size` bytes from position `at` on; false if the file ends before. */
    bool read(int64_t at, void *bytes, size_t size) const;

    /** A name with the path's extension, by which some formats are recognised. */
    const std::string &url() const { return url_; }
    /** Makes a context read this file and open no other one. */
    void attach(AVFormatContext &context);
    /** Whether a context tried to open another file. */
    bool others_wanted() const { return others_wanted_; }

  private:
    static int open_again(AVFormatContext *context, AVIOContext **io, const char *url, int flags,
                          AVDictionary **options);

    FilePtr file_;
    FileId id_;
    int64_t size_ = 0;
    std::string url_;
    AVIOContext *io_ = nullptr;
    bool others_wanted_ = false;
};

#endif
