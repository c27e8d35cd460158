// The columns of a resize as vector taps.
#ifndef TAVU_IMGP_RESIZE_TAPS_H
#define TAVU_IMGP_RESIZE_TAPS_H

#include <cstring>

#include "imgp/bilinear.h"
#include "simd/resample.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

// Pixel and channel of 8 elements that follow each other from a channel of pixel 0 on.
struct Offsets {
    alignas(16) int32_t pixel[8];
    uint16_t channel[8];
};

constexpr Offsets offsets_from(int bytes, int c) {
    Offsets o{};
    for (int i = 0; i < 8; i++) {
        o.pixel[i] = (c + i) / bytes;
        o.channel[i] = static_cast<uint16_t>((c + i) % bytes);
    }
    return o;
}

// Eight elements of pixels of 4 bytes always begin at channel 0.
constexpr Offsets OFFSETS[] = {offsets_from(1, 0), offsets_from(3, 0), offsets_from(3, 1),
                               offsets_from(3, 2), offsets_from(4, 0)};
constexpr int FIRST_OFFSETS[] = {0, 0, 0, 1, 4};  // by bytes

template <class Vector, class Scalar>
TAVU_VEC_INLINE Vector load_lanes(const Scalar *p) {
    Vector v;
    memcpy(&v, p, sizeof v);
    return v;
}

// The columns of a row of pixels of 1, 3 or 4 bytes, each byte of which is an element of its own.
struct Columns {
    int32_t bytes;
    Step step;
    int32_t next;   // distance to the right-hand neighbour in pixels
    int32_t width;  // of the target in pixels

    int32_t elements() const { return width * bytes; }
    // Byte offsets of a target pixel's left sample and of what follows its right one.
    int32_t left(int32_t pixel) const { return step.sample(pixel * step.step) * bytes; }
    int32_t end(int32_t pixel) const { return left(pixel) + (next + 1) * bytes; }

    // How many windows span the samples of 8 elements that follow each other; 0 if the row cannot
    // be made of taps: too narrow, not from left to right, or too far apart.
    int windows() const {
        if (width < 1 || step.step < 1 || next < 0) return 0;
        if (int64_t{step.step} * width > INT32_MAX || int64_t{bytes} * width > INT32_MAX) return 0;
        if (elements() < LANES) return 0;
        const int64_t more_pixels = bytes == 3 ? 3 : 7 / bytes;  // than the first
        const int64_t units = ((more_pixels * step.step - 1) >> POSITION_BITS) + 1;
        const int64_t span = (units * (1 << step.shift) + next + 1) * bytes;
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

    // The fractions of 8 elements that follow each other.
    TAVU_VEC_INLINE U16x8 eighths(int32_t pixel, const Offsets &offsets) const {
        const Positions at = positions(pixel, offsets);
        return narrow32(at.lo >> (POSITION_BITS - 3), at.hi >> (POSITION_BITS - 3)) & 7;
    }

  private:
    struct Positions {
        I32x4 lo, hi;
    };

    TAVU_VEC_INLINE Positions positions(int32_t pixel, const Offsets &offsets) const {
        const int32_t first = pixel * step.step;
        return {load_lanes<I32x4>(offsets.pixel) * step.step + first,
                load_lanes<I32x4>(offsets.pixel + 4) * step.step + first};
    }

    // Left samples less `start`; they are near, so that products may wrap.
    TAVU_VEC_INLINE U16x8 lefts(int32_t pixel, const Offsets &offsets, int32_t start) const {
        const Positions at = positions(pixel, offsets);
        const U16x8 units = narrow32(at.lo >> POSITION_BITS, at.hi >> POSITION_BITS);
        const auto unit = static_cast<uint16_t>(bytes << step.shift);
        return units * unit + load_lanes<U16x8>(offsets.channel) - static_cast<uint16_t>(start);
    }

    template <int Windows>
    TAVU_VEC_INLINE void make_block(int32_t first, int32_t last_start, Taps<Windows> *taps) const {
        const int32_t pixels = 8 / bytes, channels = 8 % bytes;
        int32_t pixel = first / bytes, channel = first % bytes;
        for (int i = 0; i < LANES / 8; i++) {
            const Offsets &offsets = OFFSETS[FIRST_OFFSETS[bytes] + channel];
            const int32_t start = left(pixel) < last_start ? left(pixel) : last_start;
            const U16x8 samples = lefts(pixel, offsets, start);
            Taps<Windows> &unit = taps[i % 2];
            unit.offset[i / 2] = start;
            set_taps(unit, i / 2, samples, samples + static_cast<uint16_t>(next * bytes));
            set_weights(unit.weight + i / 2 * 16, eighths(pixel, offsets));
            pixel += pixels;
            channel += channels;
            if (channel >= bytes) channel -= bytes, pixel++;
        }
    }
};

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif
