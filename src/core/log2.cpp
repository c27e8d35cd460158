#include "simd/cpu.h"
#include "tavu.h"

int32_t tavu_floor_log2(uint32_t value) { return tavu::floor_log2(value); }

int32_t tavu_ceil_log2(uint32_t value) {
    const int32_t floor = tavu::floor_log2(value);
    return floor + (value != tavu::shift_left(1, floor));
}
