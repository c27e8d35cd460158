// Compares sequences of ring buffer operations with the model of the tests.
#include "container/ring_model.h"
#include "input.h"

namespace {

// Text with line ends and zeros.
std::vector<uint8_t> text(int32_t size, uint8_t kind) {
    std::vector<uint8_t> bytes(static_cast<size_t>(std::max(size, 0)));
    for (size_t i = 0; i < bytes.size(); i++) {
        bytes[i] =
            static_cast<uint8_t>("ab\r\n\0cd\r\nef\ng"[(i * (kind % 8 + 1) + kind / 8) % 13]);
    }
    return bytes;
}

bool step(RingPair *pair, Input *in) {
    const int op = in->byte() % 8;
    const int32_t n = in->range(-3, static_cast<int32_t>(pair->model.s) + 3);
    if (op < 5) return pair->step(static_cast<RingOp>(op), n);
    return pair->step(RingOp::PUT, n, text(n, in->byte()));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const int small = in.range(1, 60);
    RingPair pair(small < 50 ? small % 12 + 1 : (small - 49) * 20);
    while (!in.empty()) {
        require(step(&pair, &in));
        pair.write_in_place();
    }
    return 0;
}
