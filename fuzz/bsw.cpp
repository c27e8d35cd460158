// Compares the bit writer with its model.
#include "bs/bsw_model.h"
#include "input.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    require(writer_equals_model({data, std::min<size_t>(size, 4096)}));
    return 0;
}
