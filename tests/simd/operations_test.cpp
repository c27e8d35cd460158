// Tests each operation of the vector layer at every level of the processor, so that a wrong port or
// compiler fails with the name of the operation.
#include "operations.h"

#include <gtest/gtest.h>

#include "memory.h"

namespace {

void expect_right(const Operation *operations, const char *level) {
    for (const Operation *op = operations; op->name != nullptr; op++) {
        for (unsigned seed = 0; seed < 300; seed++) {
            Bytes bytes = random_bytes(OPERATION_BYTES, seed);
            if (seed % 3 == 1) {
                for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(byte < 128 ? 0 : 255);
            }
            if (seed % 30 == 2) std::fill(bytes.begin(), bytes.end(), uint8_t{255});
            if (!op->is_right(bytes.data())) {
                ADD_FAILURE() << op->name << ", " << level << ", seed " << seed;
                break;
            }
        }
    }
}

TEST(VectorLayer, OperationsHaveTheirScalarMeaning) {
#if defined(__ARM_NEON)
    expect_right(operations_level1(), "NEON");
#else
    expect_right(operations_level2(), "v2");
    if (__builtin_cpu_supports("avx2")) expect_right(operations_level3(), "v3");
    if (__builtin_cpu_supports("avx512vbmi")) expect_right(operations_level4(), "v4");
#endif
}

}  // namespace
