#include "thumbnail.h"

#include <stdexcept>

#include "picture.h"
#include "plane.h"

ImagePtr make_thumbnail(const tavu_imgb_t &picture, int width, int height) {
    const ImagePtr scaled = make_image(width, height, TAVU_CS_YUV444);
    for (int index = 0; index < 3; index++)
        scale_plane(plane_of(picture, index), plane_of(*scaled, index));
    ImagePtr rgb = make_image(width, height, TAVU_CS_RGB888);
    const tavu_fn_csc_t convert =
        tavu_imgp_get_fn_csc(width, height, scaled->cs, width, height, rgb->cs, nullptr);
    if (!convert) throw std::runtime_error("no conversion to RGB");
    convert(scaled->addr, width, height, scaled->stride, scaled->cs, rgb->addr, width, height,
            rgb->stride, rgb->cs);
    return rgb;
}
