// What every conversion routine shares: its arguments in one record, and its export.
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

// Bytes of a packed target pixel, and whether the fourth is plane 3; else it is 255.
struct PackedTarget {
    int bytes;
    bool alpha_plane;

    TAVU_VEC_INLINE int planes() const { return 3 + static_cast<int>(alpha_plane); }
};

}  // namespace tavu

namespace tavu {
namespace {

// What a level leaves to the next lower one: rows too narrow for a register; at v4 all of those that
// are slower there, for memory bounds them, and each access of 64 bytes to an address that is not
// aligned takes two lines of the cache.
enum class Leave { NOTHING, NARROW, NARROW_AND_V4 };

#if TAVU_VEC && TAVU_LEVEL > 2
constexpr bool may_leave(Leave what) { return what != Leave::NOTHING; }
inline bool is_left(Leave what, int32_t width) {
    return (what == Leave::NARROW_AND_V4 && TAVU_LEVEL == 4) || width < LANES;
}
#else
constexpr bool may_leave(Leave) { return false; }
inline bool is_left(Leave, int32_t) { return false; }
#endif

}  // namespace
}  // namespace tavu

// Exports NAME as a call of a function on the record: TAVU_CSC(tavu_csc_x, convert<Format>).
#define TAVU_CSC(name, ...) TAVU_CSC_LEAVE(NOTHING, name, __VA_ARGS__)

#define TAVU_CSC_LEAVE(what, name, ...)                                                            \
    extern "C" decltype(name) TAVU_LOWER_LEVEL(name);                                              \
    TAVU_KERNEL(void, name,                                                                        \
                (uint8_t *const src[4], int32_t src_w, int32_t src_h, const int32_t src_stride[4], \
                 int32_t src_cs, uint8_t *const dst[4], int32_t dst_w, int32_t dst_h,              \
                 const int32_t dst_stride[4], int32_t dst_cs)) {                                   \
        if constexpr (may_leave(Leave::what)) {                                                    \
            if (is_left(Leave::what, src_w)) {                                                     \
                return TAVU_LOWER_LEVEL(name)(src, src_w, src_h, src_stride, src_cs, dst, dst_w,   \
                                              dst_h, dst_stride, dst_cs);                          \
            }                                                                                      \
        }                                                                                          \
        __VA_ARGS__(Csc{src, src_w, src_h, src_stride, dst, dst_w, dst_h, dst_stride, dst_cs});    \
    }

#endif
