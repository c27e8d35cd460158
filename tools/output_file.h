#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

/**
 * A file beside the target that takes its place when it is complete; nothing of it stays when the
 * program fails or is ended by a signal. "-" is standard output, which like other devices is written
 * directly. Throws WholeError. There is one at a time.
 */
class OutputFile {
  public:
    explicit OutputFile(const std::string &path);
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    std::FILE *get() const { return file_; }
    const std::string &name() const { return name_; }
    void write(const void *data, size_t size);
    void commit();
    [[noreturn]] void fail(const std::string &reason) const;

  private:
    void open_standard_output();
    void open(const std::filesystem::path &path);
    void drop_temporary();

    std::string name_;
    std::filesystem::path target_;
    std::string temporary_;  ///< empty: the target is written directly
    std::FILE *file_ = nullptr;
};
