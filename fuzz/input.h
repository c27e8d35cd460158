// Shared by the fuzz targets: heap blocks of exact size, and a check.
#ifndef TAVU_FUZZ_INPUT_H
#define TAVU_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "content.h"
#include "values.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// A failed check aborts the process, which the fuzzer reports.
inline void require(bool ok) {
    if (!ok) abort();
}

// A heap block of exact size, so that sanitizers detect accesses past its end.
class Block {
  public:
    explicit Block(size_t size, uint8_t value = 0xA5) : size_(size), data_(new uint8_t[size]) {
        if (size > 0) memset(data(), value, size);
    }
    Block(const uint8_t *from, size_t size) : size_(size), data_(new uint8_t[size]) {
        if (size > 0) memcpy(data(), from, size);
    }
    uint8_t *data() const { return data_.get(); }
    char *text() const { return reinterpret_cast<char *>(data()); }
    size_t size() const { return size_; }
    bool operator==(const Block &other) const {
        return size_ == other.size_ && (size_ == 0 || memcmp(data(), other.data(), size_) == 0);
    }
    void fill(Input *in) {
        const int kind = in->byte() % CONTENTS;
        const Bytes content = make_content(kind, size_, in->byte());
        std::copy(content.begin(), content.end(), data());
    }

  private:
    size_t size_;
    std::unique_ptr<uint8_t[]> data_;
};

#endif
