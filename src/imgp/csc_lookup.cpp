// The choice of the routine that converts between two colour-space codes.
#include "tavu.h"

// Columns: targets 400, 500, 200, 430, 650.
const tavu_fn_csc_t tavu_tbl_fn_csc_to_rgb[40] = {
    // 600, 700, 13, 43 to the same size. 700 to 430 gets the routine for 500; callers rely on it.
    tavu_csc_r8g8b8_to_rgb888, tavu_csc_r8g8b8_to_rgba8888, tavu_csc_r8g8b8_to_rgb565, nullptr,
    tavu_csc_x8y8z8_to_xyz565a8,
    //
    nullptr, tavu_csc_r8g8b8a8_to_rgba8888, nullptr, tavu_csc_r8g8b8a8_to_rgba8888,
    tavu_csc_x8y8z8a8_to_xyz565a8,
    //
    tavu_csc_yuv444_to_rgb888, tavu_csc_yuv444_to_rgba8888, tavu_csc_yuv444_to_rgb565, nullptr,
    tavu_csc_yuv444_to_rgb565a8,
    //
    nullptr, tavu_csc_yuv444a8_to_rgba8888, nullptr, tavu_csc_yuv444a8_to_rgba5658,
    tavu_csc_yuv444a8_to_rgb565a8,

    // 600, 700, 13, 43 with resizing.
    tavu_csc_rsz_r8g8b8_to_rgb888, tavu_csc_rsz_r8g8b8_to_rgba8888, nullptr, nullptr, nullptr,
    //
    nullptr, tavu_csc_rsz_r8g8b8a8_to_rgba8888, nullptr, nullptr, nullptr,
    //
    tavu_csc_rsz_yuv444_to_rgb888, tavu_csc_rsz_yuv444_to_rgba8888, nullptr, nullptr, nullptr,
    //
    nullptr, tavu_csc_rsz_yuv444a8_to_rgba8888, nullptr, nullptr, nullptr};

// Columns: targets 13, 43; rows as above. No routine resizes.
const tavu_fn_csc_t tavu_tbl_fn_csc_to_yuvplanar[16] = {
    tavu_csc_r8g8b8_to_yuv444,
    nullptr,
    nullptr,
    tavu_csc_r8g8b8a8_to_yuv444a8,
    tavu_csc_yuv444x_to_yuv444x,
    nullptr,
    tavu_csc_yuv444x_to_yuv444x,
    tavu_csc_yuv444x_to_yuv444x,
};

namespace {

constexpr int NOT_FOUND = -1;

int source_row(int32_t cs) {
    switch (cs) {
        case TAVU_CS_R8G8B8: return 0;
        case TAVU_CS_R8G8B8A8: return 1;
        case TAVU_CS_YUV444: return 2;
        case TAVU_CS_YUV444A8: return 3;
        default: return NOT_FOUND;
    }
}

int rgb_column(int32_t cs) {
    switch (cs) {
        case TAVU_CS_RGB888: return 0;
        case TAVU_CS_RGBA8888: return 1;
        case TAVU_CS_RGB565: return 2;
        case TAVU_CS_RGBA5658: return 3;
        case TAVU_CS_RGB565A8: return 4;
        default: return NOT_FOUND;
    }
}

tavu_fn_csc_t find(int32_t src_cs, int32_t dst_cs, int resize) {
    const int row = source_row(src_cs);
    if (row == NOT_FOUND) return nullptr;
    if (const int column = rgb_column(dst_cs); column != NOT_FOUND) {
        return tavu_tbl_fn_csc_to_rgb[5 * row + column + 20 * resize];
    }
    // RGB sources are not looked up for YUV targets, although the table holds their routines;
    // callers rely on it.
    if (row < 2) return nullptr;
    if (dst_cs != TAVU_CS_YUV444 && dst_cs != TAVU_CS_YUV444A8) return nullptr;
    return tavu_tbl_fn_csc_to_yuvplanar[2 * (row + 4 * resize) + (dst_cs == TAVU_CS_YUV444A8)];
}

}  // namespace

tavu_fn_csc_t tavu_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs, int32_t dst_w,
                                   int32_t dst_h, int32_t dst_cs, int32_t *err) {
    const tavu_fn_csc_t routine = find(src_cs, dst_cs, src_w != dst_w || src_h != dst_h);
    if (routine == nullptr && err != nullptr) *err = TAVU_ERR_UNSUPPORTED_CS;
    return routine;
}
