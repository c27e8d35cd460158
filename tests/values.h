// Values read from bytes that a fuzzer or a random generator chooses.
#ifndef TAVU_TESTS_VALUES_H
#define TAVU_TESTS_VALUES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

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

// Returns whether check(input) holds for many inputs. Half of their bytes are 0, 1 or 255.
template <class Check>
bool on_random_inputs(Check check) {
    std::mt19937 random(1);
    for (int round = 0; round < 3000; round++) {
        std::vector<uint8_t> bytes(random() % 1000);
        for (uint8_t &byte : bytes) {
            const auto value = static_cast<uint32_t>(random());
            byte = static_cast<uint8_t>(value % 2 != 0 ? value >> 8 : value / 2 % 3 - 1);
        }
        if (!check(Input(bytes.data(), bytes.size()))) return false;
    }
    return true;
}

#endif
