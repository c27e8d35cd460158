// Common code of the fuzz targets: values read from an input, heap blocks of exact size, and a
// check.
#ifndef TAVU_FUZZ_INPUT_H
#define TAVU_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <utility>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// A failed check aborts the process, which the fuzzer reports.
inline void require(bool ok) {
    if (!ok) abort();
}

// Reads values from the bytes of an input; zeros after its end.
class Input {
  public:
    Input(const uint8_t *data, size_t size) : at_(data), end_(data + size) {}

    bool empty() const { return at_ == end_; }
    size_t left() const { return static_cast<size_t>(end_ - at_); }
    uint8_t byte() { return empty() ? 0 : *at_++; }
    uint32_t word() {
        uint32_t w = 0;
        for (int i = 0; i < 4; i++) w = w << 8 | byte();
        return w;
    }
    // A value in [from, to], which has at most 256 values.
    int32_t range(int32_t from, int32_t to) { return from + byte() % (to - from + 1); }
    template <class List>
    const auto &pick(const List &list) {
        return *std::next(std::begin(list), byte() % static_cast<ptrdiff_t>(std::size(list)));
    }
    // The next `count` bytes, or fewer if the input ends.
    std::pair<const uint8_t *, size_t> bytes(size_t count) {
        count = std::min(count, left());
        at_ += count;
        return {at_ - count, count};
    }

  private:
    const uint8_t *at_, *end_;
};

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
    // Fills the block with noise, black and white, or a ramp; the input chooses.
    void fill(Input *in) {
        const uint8_t kind = in->byte();
        uint32_t x = in->byte() * 0x01010101U + 1;
        for (size_t i = 0; i < size_; i++) {
            x = x * 1664525 + 1013904223;
            const auto noise = static_cast<uint8_t>(x >> 24);
            data_[i] = kind % 3 == 0   ? noise
                       : kind % 3 == 1 ? static_cast<uint8_t>(noise < 128 ? 0 : 255)
                                       : static_cast<uint8_t>(i * kind + x % 2);
        }
    }

  private:
    size_t size_;
    std::unique_ptr<uint8_t[]> data_;
};

#endif
