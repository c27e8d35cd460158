// Compares sequences of ring buffer operations with the model of the tests.
#include "container/ring_model.h"
#include "input.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    require(ring_equals_model({data, size}));
    return 0;
}
