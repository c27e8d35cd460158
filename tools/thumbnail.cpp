#include "thumbnail.h"

#include <algorithm>
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

ImagePtr turn(const tavu_imgb_t &picture, int quarters) {
    const int right = picture.w - 1, bottom = picture.h - 1;
    const bool aside = quarters % 2 != 0;
    ImagePtr turned =
        make_image(aside ? picture.h : picture.w, aside ? picture.w : picture.h, picture.cs);
    const auto source = [&](int x, int y) -> const uint8_t * {
        const int from_x[] = {x, y, right - x, right - y};
        const int from_y[] = {y, bottom - x, bottom - y, x};
        return picture.addr[0] + static_cast<ptrdiff_t>(from_y[quarters]) * picture.stride[0] +
               3 * from_x[quarters];
    };
    for (int y = 0; y < turned->h; y++) {
        uint8_t *out = turned->addr[0] + static_cast<ptrdiff_t>(y) * turned->stride[0];
        for (int x = 0; x < turned->w; x++, out += 3) std::copy_n(source(x, y), 3, out);
    }
    return turned;
}
