// Bits as strings of 0 and 1, the plain form that the reader and the writer are compared with.
#ifndef TAVU_TESTS_BITS_H
#define TAVU_TESTS_BITS_H

#include <string>

#include "memory.h"

inline Bytes pack(std::string bits) {
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    Bytes bytes;
    for (size_t i = 0; i < bits.size(); i += 8) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(bits.substr(i, 8), nullptr, 2)));
    }
    return bytes;
}

inline std::string unpack(const Bytes &bytes) {
    std::string bits;
    for (uint8_t b : bytes) {
        for (int i = 7; i >= 0; i--) bits += static_cast<char>('0' + (b >> i & 1));
    }
    return bits;
}

inline uint32_t value_of(const std::string &bits, size_t at, size_t n) {
    return n == 0 ? 0 : static_cast<uint32_t>(std::stoul(bits.substr(at, n), nullptr, 2));
}

inline std::string exp_golomb(uint32_t v) {
    std::string info;
    for (uint32_t x = v + 1; x > 0; x >>= 1)
        info.insert(info.begin(), static_cast<char>('0' + (x & 1)));
    return std::string(info.size() - 1, '0') + info;
}

#endif
