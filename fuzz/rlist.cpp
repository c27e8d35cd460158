// Compares sequences of operations on a recycling list with the model of the tests.
#include "container/rlist_model.h"
#include "input.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    require(rlist_equals_model({data, size}));
    return 0;
}
