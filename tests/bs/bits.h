// Bits as strings of 0 and 1, and the cache word of the models.
#ifndef TAVU_TESTS_BITS_H
#define TAVU_TESTS_BITS_H

#include <bitset>
#include <string>

#include "memory.h"

inline Bytes pack(std::string bits) {
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    Bytes bytes;
    for (size_t i = 0; i < bits.size(); i += 8) {
        bytes.push_back(static_cast<uint8_t>(std::bitset<8>(bits, i, 8).to_ulong()));
    }
    return bytes;
}

inline std::string exp_golomb(uint32_t v) {
    const std::string bits = std::bitset<32>(v + 1).to_string();
    const size_t first = bits.find('1');
    return std::string(31 - first, '0') + bits.substr(first);
}

// A cache word, whose first bit is bit 31. Shift counts are taken modulo 256; counts of 32 or more
// give 0.
struct CacheBits {
    std::bitset<32> bits;

    bool at(int i) const { return bits[static_cast<size_t>(31 - i)]; }
    void set(int i) { bits.set(static_cast<size_t>(31 - i)); }
    // The first `n` bits: the word shifted right by 32 - n.
    uint32_t top(int n) const {
        return static_cast<uint32_t>((bits >> ((32 - n) & 0xFF)).to_ulong());
    }
    void drop(int n) { bits <<= n & 0xFF; }
    int run(bool value) const {
        int n = 0;
        while (n < 32 && at(n) == value) n++;
        return n;
    }
};

#endif
