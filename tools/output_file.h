#ifndef TAVU_TOOLS_OUTPUT_FILE_H
#define TAVU_TOOLS_OUTPUT_FILE_H

#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "file_id.h"

/**
 * A temporary file in the target's directory that replaces the target when complete. It is removed
 * if the program fails or a signal ends it. "-" is standard output, which like other devices is
 * written directly. Throws WholeError, or UsageError if the target is one of the inputs. There can
 * be only one at a time.
 */
class OutputFile {
  public:
    OutputFile(const std::string &path, std::initializer_list<FileId> inputs);
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    std::FILE *get() const { return file_; }
    const std::string &name() const { return name_; }
    void write(const void *data, size_t size);
    void commit();
    [[noreturn]] void fail(const std::string &reason) const;

  private:
    void refuse(const struct stat &target, std::initializer_list<FileId> inputs) const;
    void open_standard_output();
    void open(const std::filesystem::path &path, const struct stat *old);
    bool make_temporary();
    bool keep_owner_and_mode(const struct stat *old) const;
    void drop_temporary();

    std::string name_;
    std::filesystem::path target_;
    std::string temporary_;  ///< empty: the target is written directly
    std::FILE *file_ = nullptr;
};

#endif
