#ifndef TAVU_TOOLS_FILE_ID_H
#define TAVU_TOOLS_FILE_ID_H

#include <sys/stat.h>

/** Identifies a file regardless of its names. */
struct FileId {
    dev_t device = 0;
    ino_t inode = 0;

    FileId() = default;
    explicit FileId(const struct stat &status) : device(status.st_dev), inode(status.st_ino) {}
    bool operator==(const FileId &other) const {
        return device == other.device && inode == other.inode;
    }
};

#endif
