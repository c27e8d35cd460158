// Compares the bit reader with its model.
#include "bs/bsr_model.h"
#include "input.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    require(reader_equals_model({data, size}));
    return 0;
}
