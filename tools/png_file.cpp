#include "png_file.h"

#include <png.h>

#include "tavu.h"

namespace {

constexpr png_uint_32 NONE = 0xFFFFFFFF;

png_uint_32 png_format(int32_t cs) {
    switch (cs) {
        case TAVU_CS_RGB888: return PNG_FORMAT_RGB;
        case TAVU_CS_BGR888: return PNG_FORMAT_BGR;
        case TAVU_CS_RGBA8888: return PNG_FORMAT_RGBA;
        case TAVU_CS_BGRA8888: return PNG_FORMAT_BGRA;
        default: return NONE;
    }
}

}  // namespace

bool png_takes(int32_t cs) { return png_format(cs) != NONE; }

void write_png(OutputFile &file, int32_t cs, const uint8_t *pixels, int width, int height,
               size_t stride) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = png_format(cs);
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    if (!png_image_write_to_stdio(&image, file.get(), 0, pixels, static_cast<png_int_32>(stride),
                                  nullptr))
        file.fail(image.message);
    file.commit();
}
