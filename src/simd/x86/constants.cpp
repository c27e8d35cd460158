#include "simd/level.h"

#if TAVU_LEVEL >= 2

#include "simd/x86/block.h"

namespace tavu {

static constexpr BlockConstants make_constants() {
    BlockConstants c{};
    for (int i = 0; i < 64; i++) {
        c.sums[i] = 1;
        c.differences[i] = i % 2 == 0 ? 1 : -1;
        c.both[i] = i / 16 % 2 == 0 ? c.sums[i] : c.differences[i];
    }
    for (int i = 0; i < 16; i++) c.both_of_four[i] = i / 4 % 2 == 0 ? c.sums[i] : c.differences[i];
    for (int16_t &one : c.ones) one = 1;
    for (int i = 0; i < 16; i++) {
        c.even_ones[i] = 1;
        c.twos[i] = 2;
    }
    return c;
}

const BlockConstants BLOCK_CONSTANTS = make_constants();

}  // namespace tavu

#endif
