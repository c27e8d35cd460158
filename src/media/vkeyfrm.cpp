// Key-frame detection: one forward pass that stops at the first deciding start code.
#include <cstddef>
#include <cstdint>

#include "simd/kernel.h"
#include "simd/scan.h"
#include "tavu.h"

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

// One past the last position with at least `needed` bytes left in the unit.
const uint8_t *positions_end(const uint8_t *unit, int32_t size, int32_t needed) {
    return size >= needed ? unit + (size - needed + 1) : unit;
}

// The PTYPE fields of a picture header that decide.
bool h263_marker_ok(const uint8_t *p) { return (p[3] & 3) == 2; }
int h263_source_format(const uint8_t *p) { return p[4] >> 2 & 7; }
bool h263_is_intra(const uint8_t *p) { return (p[4] & 2) == 0; }

constexpr int EXTENDED_PTYPE = 7;

bool mpeg4(const uint8_t *p, int32_t size) {
    constexpr uint8_t VOP_START = 0xB6;
    const uint8_t *const end = positions_end(p, size, 5);
    for (; (p = find_start<Either<Prefix, H263Picture>>(p, end)) < end; p++) {
        if (is_start<H263Picture>(p)) {  // short header
            if (!h263_marker_ok(p)) return false;
            // Unlike in an H.263 stream, an extended type is not a picture: the scan continues.
            if (h263_source_format(p) != EXTENDED_PTYPE) return h263_is_intra(p);
        } else if (p[3] == VOP_START) {
            return p[4] >> 6 == 0;
        }
    }
    return false;
}

bool h263(const uint8_t *p, int32_t size) {
    const uint8_t *const end = positions_end(p, size, 7);
    p = find_start<H263Picture>(p, end);
    if (p == end || !h263_marker_ok(p)) return false;
    if (h263_source_format(p) != EXTENDED_PTYPE) return h263_is_intra(p);
    const int update_indicator = (p[4] & 3) << 1 | p[5] >> 7;
    // With the optional part present the picture type is 18 bits later, at worst one byte past the
    // end of the unit.
    return update_indicator == 1 ? (p[7] & 0x1C) == 0 : (p[5] & 0x70) == 0;
}

bool h264(const uint8_t *p, int32_t size) {
    constexpr int NON_IDR_SLICE = 1, IDR_SLICE = 5;
    const uint8_t *const end = positions_end(p, size, 4);
    for (; (p = find_start<Prefix>(p, end)) < end; p++) {
        const int nal_type = p[3] & 0x1F;
        if (nal_type == IDR_SLICE) return true;
        if (nal_type == NON_IDR_SLICE) return false;
    }
    return false;
}

// The first NAL unit decides, even if it is a parameter set; callers rely on it.
bool hevc(const uint8_t *p, int32_t size) {
    constexpr int IDR_W_RADL = 19, IDR_N_LP = 20;
    const uint8_t *const end = positions_end(p, size, 4);
    p = find_start<Prefix>(p, end);
    if (p == end) return false;
    const int nal_type = p[3] >> 1 & 0x3F;
    return nal_type == IDR_W_RADL || nal_type == IDR_N_LP;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_KERNEL(int32_t, tavu_is_vkeyfrm, (int32_t codec, const void *data, int32_t size)) {
    const auto *p = static_cast<const uint8_t *>(data);
    switch (codec) {
        case TAVU_MT_VID_MPEG4: return mpeg4(p, size);
        case TAVU_MT_VID_H263:
        case TAVU_MT_VID_H263X: return h263(p, size);
        case TAVU_MT_VID_H264: return h264(p, size);
        case TAVU_MT_VID_HEVC: return hevc(p, size);
        case TAVU_MT_VID_WMV1:
        case TAVU_MT_VID_DIV3: return p[0] < 64;
        case TAVU_MT_VID_WMV2: return p[0] < 128;
        case TAVU_MT_VID_HFYU: return 1;
        default: return 0;
    }
}
