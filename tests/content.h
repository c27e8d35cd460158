// What to fill kernel inputs with.
#ifndef TAVU_TESTS_CONTENT_H
#define TAVU_TESTS_CONTENT_H

#include "memory.h"

enum Content { RANDOM, EXTREME, RAMP, SINGLE_HOT, CONTENTS };

inline Bytes make_content(int content, size_t size, unsigned seed) {
    Bytes bytes = random_bytes(size, seed);
    for (size_t i = 0; i < size; i++) {
        if (content == EXTREME) bytes[i] = bytes[i] & 1 ? 255 : 0;
        if (content == RAMP) bytes[i] = static_cast<uint8_t>(i * (seed % 5 + 1));
        if (content == SINGLE_HOT) bytes[i] = i == seed % size ? 255 : 0;
    }
    return bytes;
}

#endif
