// Reads and replays packs of inputs; see pack.py for the format.
#ifndef TAVU_FUZZ_PACK_H
#define TAVU_FUZZ_PACK_H

#include <cstdio>
#include <random>
#include <vector>

#include "input.h"

// Uses C files, because the memory sanitizer supports the C library but not that of C++.
inline std::vector<uint8_t> read_file(const char *name) {
    std::vector<uint8_t> bytes(1 << 20);
    FILE *file = std::fopen(name, "rb");
    require(file != nullptr);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    return bytes;
}

// Runs the target on all inputs and on variants of each with a few changed bytes; returns the
// number.
inline int replay(const std::vector<uint8_t> &pack) {
    constexpr int VARIANTS = 100;
    std::mt19937 random(1);
    int count = 0;
    for (size_t at = 0, size; at + 2 <= pack.size(); at += size, count++) {
        size = pack[at] + size_t{256} * pack[at + 1];
        at += 2;
        require(size <= pack.size() - at);
        Bytes input(pack.data() + at, pack.data() + at + size);
        LLVMFuzzerTestOneInput(input.data(), size);
        for (int i = 0; i < VARIANTS * static_cast<int>(size > 0); i++) {
            for (auto n = random() % 3 + 1; n > 0; n--) {
                input[random() % size] = static_cast<uint8_t>(random());
            }
            LLVMFuzzerTestOneInput(input.data(), size);
        }
    }
    return count;
}

#endif
