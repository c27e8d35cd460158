// Compares sequences of list operations with the model of the tests.
#include "container/list_model.h"
#include "input.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    require(list_equals_model({data, size}));
    return 0;
}
