// Contents of kernel inputs.
#ifndef TAVU_TESTS_CONTENT_H
#define TAVU_TESTS_CONTENT_H

#include "memory.h"

enum Content { RANDOM, EXTREME, RAMP, SINGLE_HOT, CONTENTS };

inline Bytes make_content(int content, size_t size, unsigned seed) {
    const bool random = content == RANDOM || content == EXTREME;
    Bytes bytes = random ? random_bytes(size, seed) : Bytes(size, 0);
    if (content == EXTREME) {
        for (uint8_t &b : bytes) b = b & 1 ? 255 : 0;
    }
    if (content == RAMP) {
        for (size_t i = 0; i < size; i++) bytes[i] = static_cast<uint8_t>(i * (seed % 5 + 1));
    }
    if (content == SINGLE_HOT && size > 0) bytes[seed % size] = 255;
    return bytes;
}

#endif
