// Start codes: two zero bytes and a third byte.
#ifndef TAVU_MEDIA_START_CODE_H
#define TAVU_MEDIA_START_CODE_H

#include <cstddef>
#include <cstdint>

#include "simd/scan.h"

namespace tavu {
namespace {

// Kinds of start code. mismatch() is 0 only for their third byte; its argument is a byte or a
// vector of bytes.

// 00 00 01
struct Prefix {
    template <class Byte>
    static Byte mismatch(Byte third) {
        return third ^ 1;
    }
};

// 00 00 and the 22-bit picture start code of H.263 (ITU-T H.263, 5.1.1).
struct H263Picture {
    template <class Byte>
    static Byte mismatch(Byte third) {
        return (third & 0xFC) ^ 0x80;
    }
};

inline uint8_t lesser(uint8_t a, uint8_t b) { return a < b ? a : b; }

template <class Kind, class OtherKind>
struct Either {
    template <class Byte>
    static Byte mismatch(Byte third) {
        return lesser(Kind::mismatch(third), OtherKind::mismatch(third));
    }
};

template <class Kind>
bool is_start(const uint8_t *p) {
    return p[0] == 0 && p[1] == 0 && Kind::mismatch(p[2]) == 0;
}

#if TAVU_VEC

// Searches the Vectors * LANES positions from `*p` on. Returns whether there is a start code, and
// moves `*p` to the first one or past all positions. The time does not depend on the bytes: only a
// start code causes a branch.
template <class Kind, int Vectors>
TAVU_VEC_INLINE bool find_in_block(const uint8_t **p) {
    const uint8_t *first = *p, *second = first + 1, *third = first + 2;
    U8 mismatches[size_t{Vectors}], least;
#pragma GCC unroll 4
    for (int i = 0; i < Vectors; i++) {
        const U8 zeros = load_next(first) | load_next(second);
        mismatches[i] = zeros | Kind::mismatch(load_next(third));
        least = i == 0 ? mismatches[0] : lesser(least, mismatches[i]);
    }
    if (!zero_lanes(least)) {
        *p = first;
        return false;
    }
#pragma GCC unroll 4
    for (const U8 &m : mismatches) {
        if (const ZeroLanes z = zero_lanes(m)) {
            *p += first_lane(z);
            break;
        }
        *p += LANES;
    }
    return true;
}

#endif

// The first position in [p, end) with a start code, or `end`. Reads up to end[1], the third byte at
// the last position.
template <class Kind>
const uint8_t *find_start(const uint8_t *p, const uint8_t *end) {
#if TAVU_VEC
    while (end - p >= 4 * LANES) {
        if (find_in_block<Kind, 4>(&p)) return p;
    }
    while (end - p >= LANES) {
        if (find_in_block<Kind, 1>(&p)) return p;
    }
#endif
    while (p < end && !is_start<Kind>(p)) p++;
    return p;
}

}  // namespace
}  // namespace tavu

#endif
