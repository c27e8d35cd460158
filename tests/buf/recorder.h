// Payload callbacks that record their arguments.
#ifndef TAVU_TESTS_RECORDER_H
#define TAVU_TESTS_RECORDER_H

#include <cstdlib>
#include <cstring>
#include <map>

#include "memory.h"
#include "tavu.h"

struct Recorder {
    int allocated, freed;
    int32_t size;
    uint32_t second, step;               // `step` from one second address to the next
    std::map<void *, uint32_t> seconds;  // the second address of each payload
    int mismatched;                      // frees with a wrong second address
};
inline Recorder memory;

// The payload is filled with 0xFF.
inline void *allocate(int32_t size, uint32_t *second) {
    memory.allocated++;
    memory.size = size;
    *second = memory.second;
    memory.second += memory.step;
    void *payload = malloc(static_cast<size_t>(size) + 1);
    memory.seconds[payload] = *second;
    if (payload != nullptr) memset(payload, 0xFF, static_cast<size_t>(size));
    return payload;
}

inline void release(void *payload, uint32_t second) {
    memory.freed++;
    memory.mismatched += second != memory.seconds[payload] ? 1 : 0;
    free(payload);
}

#endif
