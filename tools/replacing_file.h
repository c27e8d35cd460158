#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

/** A file beside the target that takes its place when it is complete. Throws WholeError. */
class ReplacingFile {
  public:
    explicit ReplacingFile(const std::string &path);
    ReplacingFile(const ReplacingFile &) = delete;
    ReplacingFile &operator=(const ReplacingFile &) = delete;
    ~ReplacingFile();

    std::FILE *get() const { return file_; }
    void write(const void *data, size_t size);
    void commit();
    [[noreturn]] void fail(const std::string &reason) const;

  private:
    std::filesystem::path resolve(const std::string &path) const;

    std::string shown_;
    std::filesystem::path target_;
    std::string temporary_;
    std::FILE *file_ = nullptr;
    bool done_ = false;
};
