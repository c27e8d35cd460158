// Conversions without a vector form, and the scalar fallback of the others.
#include "imgp/csc_fallback.h"

#include <cstring>

#include "imgp/csc_resize_model.h"
#include "imgp/csc_to_packed_model.h"

namespace tavu {

void convert_resize_scalar(const Csc &c, bool yuv, const PackedTarget &target, int32_t first) {
    (yuv ? convert_resize_from<FromYuv> : convert_resize_from<FromRgb>)(c, target, first);
}

void to_packed_scalar(const Csc &c, bool yuv, const PackedTarget &target, bool bgr) {
    (yuv ? to_packed_as<FromYuv> : to_packed_as<FromRgb>)(c, target, bgr);
}

template <class Space>
static void to_565_as(const Csc &c, Alpha alpha) {
    switch (alpha) {
        case Alpha::NONE: return to_565<To565<Space>>(c);
        case Alpha::OPAQUE: return to_565<To565<Space, Alpha::OPAQUE>>(c);
        case Alpha::PLANE: return to_565<To565<Space, Alpha::PLANE>>(c);
    }
}

void to_565_scalar(const Csc &c, bool yuv, Alpha alpha) {
    (yuv ? to_565_as<FromYuv> : to_565_as<FromRgb>)(c, alpha);
}

void yuv_row_scalar(int step, const YuvLine &at, int32_t width) {
    (step == 3 ? ModelYuvRow<3>::convert : ModelYuvRow<4>::convert)(at, width);
}

namespace {

void copy_plane(const Csc &c, int plane) {
    if (c.src_w < 1) return;
    for (int32_t row = 0; row < c.src_h; row++) {
        memcpy(c.dst_row(plane, row), c.src_row(plane, row), static_cast<size_t>(c.src_w));
    }
}

void copy_planes(const Csc &c) {
    for (int plane = 0; plane < 3; plane++) copy_plane(c, plane);
    if (c.dst_cs == TAVU_CS_YUV444A8 && c.src[3] != nullptr) copy_plane(c, 3);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

TAVU_CSC(tavu_csc_yuv444x_to_yuv444x, copy_planes)
// Two streams, units 2 bytes apart and alpha 3; callers rely on it.
TAVU_CSC(tavu_csc_yuv444a8_to_rgba5658, to_565<To565<FromYuv, Alpha::PLANE, 3>>)
TAVU_CSC(tavu_csc_r8g8b8a8_to_rgba5658, to_565<To565<GreyFromFirst, Alpha::PLANE, 3>>)
