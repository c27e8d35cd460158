// A model of picture sizes for the tests and the fuzz target. Its arithmetic cannot wrap and is
// exact below 2^53.
#ifndef TAVU_TESTS_BUF_GEOMETRY_MODEL_H
#define TAVU_TESTS_BUF_GEOMETRY_MODEL_H

#include <algorithm>
#include <cstdint>

#include "tavu.h"

struct PictureRequest {
    int32_t w, h, cs;
    const uint32_t *align, *pad;  // null or four entries
};

struct PictureSize {
    int32_t status;
    int64_t bytes;
};

struct LayoutModel {
    int planes, bytes, divide_w, divide_h;
};

inline LayoutModel layout_model(int32_t cs) {
    switch (cs) {
        case 10: return {1, 1, 1, 1};
        case 11: return {3, 1, 2, 2};
        case 12: return {3, 1, 2, 1};
        case 13: return {3, 1, 1, 1};
        case 18: return {3, 1, 1, 2};
        case 43: return {4, 1, 1, 1};
        default: break;
    }
    if (cs < 100 || cs > 599) return {};
    return {1, cs < 300 ? 2 : cs / 100 == 4 ? 3 : 4, 1, 1};
}

inline bool is_power(uint32_t n) { return __builtin_popcount(n) == 1; }

inline int64_t divide_up(int64_t n, int64_t by) { return (n + by - 1) / by; }

// The status of creation before it allocates, and the number of bytes that it requests.
inline PictureSize picture_size(const PictureRequest &r) {
    const LayoutModel layout = layout_model(r.cs);
    if (layout.planes == 0) return {TAVU_ERR_UNSUPPORTED_CS, 0};
    if (r.w < 0 || r.h < 0) return {TAVU_ERR_INVALID_ARGUMENT, 0};
    double total = 0;
    for (int p = 0; p < layout.planes; p++) {
        const uint32_t align = r.align != nullptr ? r.align[p] : 0x10001;
        const uint32_t pad = r.pad != nullptr ? r.pad[p] : 0;
        if (!is_power(align >> 16) || !is_power(align & 0xFFFF)) {
            return {TAVU_ERR_INVALID_ARGUMENT, 0};
        }
        const int64_t w = divide_up(r.w, p > 0 ? layout.divide_w : 1), unit_w = align >> 16;
        const int64_t h = divide_up(r.h, p > 0 ? layout.divide_h : 1), unit_h = align & 0xFFFF;
        const auto columns = static_cast<double>(divide_up(w, unit_w) * unit_w);
        const auto lines = static_cast<double>(divide_up(h, unit_h) * unit_h);
        const double stride = (columns + 2.0 * (pad >> 16)) * layout.bytes;
        const double rows = lines + 2.0 * (pad & 0xFFFF);
        total += stride * rows;
        if (std::max({stride, rows, total}) > INT32_MAX) return {TAVU_ERR_INVALID_ARGUMENT, 0};
    }
    return {TAVU_OK, static_cast<int64_t>(total)};
}

#endif
