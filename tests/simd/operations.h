// The operations of the vector layer, each with a check of its result by scalar code.
#ifndef TAVU_TESTS_SIMD_OPERATIONS_H
#define TAVU_TESTS_SIMD_OPERATIONS_H

#include <cstdint>

struct Operation {
    const char *name;
    bool (*is_right)(const uint8_t *bytes);  // for OPERATION_BYTES bytes of any content
};

constexpr int OPERATION_BYTES = 2048;

// The list of a level ends with a null name.
const Operation *operations_level1();
const Operation *operations_level2();
const Operation *operations_level3();
const Operation *operations_level4();

#endif
