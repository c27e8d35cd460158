// Compares the bit reader with its model, with the default refill and with one that loads less.
#include "bs/bsr_model.h"
#include "input.h"
#include "tavu.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const uint8_t start = in.byte();
    const auto [content, length] = in.bytes(start % size_t{40});
    Loads loads{4, 4, 4, 4};
    const bool own = start >= 120;
    const auto load = [&in] { return static_cast<uint8_t>(in.byte() % 5); };
    if (start >= 160) loads = {load(), load(), load(), load()};
    const Block copy(content, length);
    const auto bytes = static_cast<int32_t>(length);
    ShortReader r(copy.data(), bytes, loads);
    if (!own) tavu_bsr_init(&r, copy.data(), bytes, nullptr);
    ReaderModel m{copy.data(), bytes, own ? &loads : nullptr};
    while (!in.empty()) {
        const int op = in.byte() % READER_OPERATIONS, n = in.range(0, 32), most = in.range(0, 32);
        require(step(&r, &m, op, n, most));
        require(!own || (r.asked == m.asked && r.refills == m.refills));
    }
    return 0;
}
