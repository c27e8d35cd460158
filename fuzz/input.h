// Shared by the fuzz targets: contents of blocks, and a check.
#ifndef TAVU_FUZZ_INPUT_H
#define TAVU_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "content.h"
#include "values.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// A failed check aborts the process, which the fuzzer reports.
inline void require(bool ok) {
    if (!ok) abort();
}

// Content that the input chooses. A vector of this size is a heap block of exact size, so that
// sanitizers detect accesses past its end.
inline Bytes pick_content(size_t size, Input *in) {
    const int kind = in->byte() % CONTENTS;
    return make_content(kind, size, in->byte());
}

inline char *text_of(Bytes &bytes) { return reinterpret_cast<char *>(bytes.data()); }

#endif
