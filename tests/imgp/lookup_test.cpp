#include <gtest/gtest.h>

#include <algorithm>

#include "tavu.h"

TEST(Lookup, FindsExactlyTheSupportedPairs) {
    struct {
        int32_t src, dst;
        tavu_fn_csc_t same, resize;
    } const pairs[] = {
        {600, 400, tavu_csc_r8g8b8_to_rgb888, tavu_csc_rsz_r8g8b8_to_rgb888},
        {600, 500, tavu_csc_r8g8b8_to_rgba8888, tavu_csc_rsz_r8g8b8_to_rgba8888},
        {600, 200, tavu_csc_r8g8b8_to_rgb565, nullptr},
        {600, 650, tavu_csc_x8y8z8_to_xyz565a8, nullptr},
        {700, 500, tavu_csc_r8g8b8a8_to_rgba8888, tavu_csc_rsz_r8g8b8a8_to_rgba8888},
        {700, 430, tavu_csc_r8g8b8a8_to_rgba8888, nullptr},
        {700, 650, tavu_csc_x8y8z8a8_to_xyz565a8, nullptr},
        {13, 400, tavu_csc_yuv444_to_rgb888, tavu_csc_rsz_yuv444_to_rgb888},
        {13, 500, tavu_csc_yuv444_to_rgba8888, tavu_csc_rsz_yuv444_to_rgba8888},
        {13, 200, tavu_csc_yuv444_to_rgb565, nullptr},
        {13, 650, tavu_csc_yuv444_to_rgb565a8, nullptr},
        {43, 500, tavu_csc_yuv444a8_to_rgba8888, tavu_csc_rsz_yuv444a8_to_rgba8888},
        {43, 430, tavu_csc_yuv444a8_to_rgba5658, nullptr},
        {43, 650, tavu_csc_yuv444a8_to_rgb565a8, nullptr},
        {13, 13, tavu_csc_yuv444x_to_yuv444x, nullptr},
        {43, 13, tavu_csc_yuv444x_to_yuv444x, nullptr},
        {43, 43, tavu_csc_yuv444x_to_yuv444x, nullptr},
    };
    const int32_t codes[] = {-1,  0,   10,  11,  13,  43,  99,  100, 199, 200, 201,
                             400, 401, 430, 500, 501, 600, 650, 700, 799, 800, INT32_MAX};
    for (int32_t src : codes) {
        for (int32_t dst : codes) {
            tavu_fn_csc_t same = nullptr, resize = nullptr;
            for (const auto &p : pairs) {
                if (p.src == src && p.dst == dst) same = p.same, resize = p.resize;
            }
            int32_t err = 1;
            EXPECT_EQ(tavu_imgp_get_fn_csc(8, 8, src, 8, 8, dst, &err), same) << src << ' ' << dst;
            EXPECT_EQ(err, same != nullptr ? 1 : TAVU_ERR_UNSUPPORTED_CS);
            EXPECT_EQ(tavu_imgp_get_fn_csc(8, 8, src, 8, 4, dst, &err), resize);
            EXPECT_EQ(tavu_imgp_get_fn_csc(8, 8, src, 4, 8, dst, nullptr), resize);
            EXPECT_EQ(err, resize != nullptr ? 1 : TAVU_ERR_UNSUPPORTED_CS);
        }
    }
}

TEST(Lookup, TablesHaveTheRoutinesThatTheLookupDoesNotReturn) {
    EXPECT_EQ(tavu_tbl_fn_csc_to_yuvplanar[0], &tavu_csc_r8g8b8_to_yuv444);
    EXPECT_EQ(tavu_tbl_fn_csc_to_yuvplanar[3], &tavu_csc_r8g8b8a8_to_yuv444a8);
    EXPECT_EQ(std::count(tavu_tbl_fn_csc_to_yuvplanar, tavu_tbl_fn_csc_to_yuvplanar + 16, nullptr),
              11);
    EXPECT_EQ(std::count(tavu_tbl_fn_csc_to_rgb, tavu_tbl_fn_csc_to_rgb + 40, nullptr), 20);
}
