// The columns of a resize as vector taps.
#ifndef TAVU_IMGP_RESIZE_TAPS_H
#define TAVU_IMGP_RESIZE_TAPS_H

#include <cstring>

#include "imgp/bilinear.h"
#include "simd/resample.h"

namespace tavu {
namespace {

// Pixel and channel of 8 elements that follow each other from a channel of pixel 0 on.
struct Offsets {
    alignas(16) int32_t pixel[8];
    uint16_t channel[8];
};

template <int Bytes>
constexpr Offsets offsets_from(int c) {
    Offsets o{};
    for (int i = 0; i < 8; i++) {
        o.pixel[i] = (c + i) / Bytes;
        o.channel[i] = static_cast<uint16_t>((c + i) % Bytes);
    }
    return o;
}

template <int Bytes>
constexpr Offsets OFFSETS[] = {offsets_from<Bytes>(0), offsets_from<Bytes>(1),
                               offsets_from<Bytes>(2), offsets_from<Bytes>(3)};

template <class Vector, class Scalar>
TAVU_VEC_INLINE Vector load_lanes(const Scalar *p) {
    Vector v;
    memcpy(&v, p, sizeof v);
    return v;
}

// The columns of a row of pixels of Bytes bytes, each byte of which is an element of its own.
template <int Bytes>
struct Columns {
    Step step;
    int32_t next;   // distance to the right-hand neighbour in pixels
    int32_t width;  // of the target in pixels

    int32_t elements() const { return width * Bytes; }
    // Byte offsets of a target pixel's left sample and of what follows its right one.
    int32_t left(int32_t pixel) const { return step.sample(pixel * step.step) * Bytes; }
    int32_t end(int32_t pixel) const { return left(pixel) + (next + 1) * Bytes; }

    // How many windows span the samples of 8 elements that follow each other; 0 if the row cannot
    // be made of taps: too narrow, not from left to right, or too far apart.
    int windows() const {
        if (width < 1 || step.step < 1 || next < 0 || elements() < LANES) return 0;
        if (int64_t{step.step} * width > INT32_MAX) return 0;
        constexpr int64_t MORE_PIXELS = Bytes == 3 ? 3 : 7 / Bytes;  // than the first
        const int64_t units = ((MORE_PIXELS * step.step - 1) >> POSITION_BITS) + 1;
        const int64_t span = (units * (1 << step.shift) + next + 1) * Bytes;
        const int count = span <= WINDOW ? 1 : span <= 2 * WINDOW ? 2 : span <= 4 * WINDOW ? 4 : 0;
        return end(width - 1) < count * WINDOW ? 0 : count;
    }

    // Taps of `count` blocks of LANES elements from `element` on, of which the last is anchored at
    // the row's end. One copy serves all sinks.
    template <int Windows>
    __attribute__((noinline)) void make_taps(int32_t element, int32_t count,
                                             Taps<Windows> *taps) const {
        // Windows that would reach beyond the row's last sample start earlier.
        const int32_t last_start = end(width - 1) - Windows * WINDOW;
        const int32_t last = elements() - LANES;
        for (; count > 0; count--, element += LANES, taps += 2) {
            make_block(element < last ? element : last, last_start, taps);
        }
    }

    // Of 8 elements from a channel of a pixel on, the fractions of their pixels.
    TAVU_VEC_INLINE U16x8 eighths(int32_t pixel, int32_t channel) const {
        const Positions at = positions(pixel, channel);
        return narrow32(at.lo >> (POSITION_BITS - 3), at.hi >> (POSITION_BITS - 3)) & 7;
    }

  private:
    struct Positions {
        I32x4 lo, hi;
    };

    TAVU_VEC_INLINE Positions positions(int32_t pixel, int32_t channel) const {
        const int32_t *offsets = OFFSETS<Bytes>[channel].pixel, first = pixel * step.step;
        return {load_lanes<I32x4>(offsets) * step.step + first,
                load_lanes<I32x4>(offsets + 4) * step.step + first};
    }

    // Left samples less `start`; they are near, so that products may wrap.
    TAVU_VEC_INLINE U16x8 lefts(int32_t pixel, int32_t channel, int32_t start) const {
        const Positions at = positions(pixel, channel);
        const U16x8 units = narrow32(at.lo >> POSITION_BITS, at.hi >> POSITION_BITS);
        const auto unit_bytes = static_cast<uint16_t>(Bytes << step.shift);
        return units * unit_bytes + load_lanes<U16x8>(OFFSETS<Bytes>[channel].channel) -
               static_cast<uint16_t>(start);
    }

    template <int Windows>
    TAVU_VEC_INLINE void make_block(int32_t first, int32_t last_start, Taps<Windows> *taps) const {
        for (int i = 0; i < LANES / 8; i++) {
            const int32_t pixel = (first + 8 * i) / Bytes, channel = (first + 8 * i) % Bytes;
            const int32_t start = left(pixel) < last_start ? left(pixel) : last_start;
            const U16x8 samples = lefts(pixel, channel, start);
            Taps<Windows> &unit = taps[i % 2];
            unit.offset[i / 2] = start;
            set_taps(unit, i / 2, samples, samples + static_cast<uint16_t>(next * Bytes));
            set_weights(unit.weight + i / 2 * 16, eighths(pixel, channel));
        }
    }
};

}  // namespace
}  // namespace tavu

#endif
