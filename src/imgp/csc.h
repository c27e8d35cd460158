// The arguments of a conversion routine as one record, and its export.
#ifndef TAVU_IMGP_CSC_H
#define TAVU_IMGP_CSC_H

#include <cstddef>

#include "simd/kernel.h"
#include "simd/vec.h"
#include "tavu.h"

namespace tavu {

struct Csc {
    uint8_t *const *src;
    int32_t src_w, src_h;
    const int32_t *src_stride;
    uint8_t *const *dst;
    int32_t dst_w, dst_h;
    const int32_t *dst_stride;
    int32_t dst_cs;

    TAVU_VEC_INLINE const uint8_t *src_row(int plane, int32_t row) const {
        return src[plane] + static_cast<ptrdiff_t>(row) * src_stride[plane];
    }
    TAVU_VEC_INLINE uint8_t *dst_row(int plane, int32_t row) const {
        return dst[plane] + static_cast<ptrdiff_t>(row) * dst_stride[plane];
    }
};

struct PackedTarget {
    int bytes;         // per pixel
    bool alpha_plane;  // a fourth byte is the sample of plane 3; otherwise it is 255

    TAVU_VEC_INLINE int planes() const { return 3 + static_cast<int>(alpha_plane); }
};

namespace {

// When a level falls back to the next lower one: never; for rows narrower than a register; at v4
// always too. The last is for kernels that are bound by memory: an access of 64 bytes to an unaligned
// address takes two cache lines, which makes v4 the slower level.
enum class Fallback { NEVER, NARROW, NARROW_AND_V4 };

constexpr bool may_fall_back(Fallback fallback) {
    return KERNEL_LEVEL > 2 && fallback != Fallback::NEVER;
}

#if TAVU_VEC
constexpr bool falls_back(Fallback fallback, int32_t width) {
    return (KERNEL_LEVEL == 4 && fallback == Fallback::NARROW_AND_V4) || width < LANES;
}
#else
constexpr bool falls_back(Fallback, int32_t) { return false; }
#endif

}  // namespace
}  // namespace tavu

// Exports NAME as a call of a function on the record, TAVU_CSC(tavu_csc_x, convert<Format>), with the
// names of tavu in scope.
#define TAVU_CSC(name, ...) TAVU_CSC_FALLBACK(NEVER, name, __VA_ARGS__)

#define TAVU_CSC_FALLBACK(fallback, name, ...)                                                     \
    extern "C" decltype(name) TAVU_LOWER_LEVEL(name);                                              \
    TAVU_KERNEL(void, name,                                                                        \
                (uint8_t *const src[4], int32_t src_w, int32_t src_h, const int32_t src_stride[4], \
                 int32_t src_cs, uint8_t *const dst[4], int32_t dst_w, int32_t dst_h,              \
                 const int32_t dst_stride[4], int32_t dst_cs)) {                                   \
        if constexpr (may_fall_back(Fallback::fallback)) {                                         \
            if (falls_back(Fallback::fallback, src_w)) {                                           \
                return TAVU_LOWER_LEVEL(name)(src, src_w, src_h, src_stride, src_cs, dst, dst_w,   \
                                              dst_h, dst_stride, dst_cs);                          \
            }                                                                                      \
        }                                                                                          \
        __VA_ARGS__(Csc{src, src_w, src_h, src_stride, dst, dst_w, dst_h, dst_stride, dst_cs});    \
    }

#endif
