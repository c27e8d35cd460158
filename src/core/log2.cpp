#include "simd/cpu.h"
#include "tavu.h"

using namespace tavu;

int32_t tavu_floor_log2(uint32_t value) { return floor_log2(value); }

int32_t tavu_ceil_log2(uint32_t value) {
    const int32_t floor = floor_log2(value);
    return floor + (value != shift_left(1, floor));
}
