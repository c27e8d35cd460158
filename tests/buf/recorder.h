// Payload callbacks that record what they are asked for.
#ifndef TAVU_TESTS_RECORDER_H
#define TAVU_TESTS_RECORDER_H

#include <cstdlib>
#include <cstring>

#include "memory.h"
#include "tavu.h"

struct Recorder {
    int allocated, freed;
    int32_t size;
    uint32_t second, freed_second;
    bool fail;
};
inline Recorder memory;

// The payload is filled with 0xFF.
inline void *allocate(int32_t size, uint32_t *second) {
    memory.allocated++;
    memory.size = size;
    if (memory.fail) return nullptr;
    *second = memory.second;
    void *payload = malloc(static_cast<size_t>(size) + 1);
    if (payload != nullptr) memset(payload, 0xFF, static_cast<size_t>(size));
    return payload;
}

inline void release(void *payload, uint32_t second) {
    memory.freed++;
    memory.freed_second = second;
    free(payload);
}

#endif
