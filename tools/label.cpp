#include "label.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "handles.h"

namespace {

/** Sets the largest font size that fits the box; returns the extents of the text. */
cairo_text_extents_t fit_font(cairo_t *cairo, const char *text, int width, int height) {
    cairo_text_extents_t extents;
    // Glyphs may exceed their extents by a fraction of a pixel.
    const double max_width = 0.94 * width;
    double size = 0.8 * height;
    cairo_set_font_size(cairo, size);
    cairo_text_extents(cairo, text, &extents);
    if (extents.width > max_width) {
        size *= max_width / extents.width;
        cairo_set_font_size(cairo, size);
        cairo_text_extents(cairo, text, &extents);
    }
    return extents;
}

void draw_text(cairo_surface_t *surface, const char *text, int width, int height) {
    const CairoPtr cairo(cairo_create(surface));
    // Cairo's built-in font looks the same on every machine and needs no installed fonts.
    cairo_select_font_face(cairo.get(), "@cairo:sans", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_BOLD);
    const cairo_text_extents_t extents = fit_font(cairo.get(), text, width, height);
    cairo_move_to(cairo.get(), std::round((width - extents.width) / 2 - extents.x_bearing),
                  std::round((height - extents.height) / 2 - extents.y_bearing));
    cairo_show_text(cairo.get(), text);
}

}  // namespace

std::string time_text(double seconds) {
    constexpr double LONGEST = 1e12;
    const int64_t ms = std::llround(std::clamp(seconds, 0.0, LONGEST) * 1000);
    const int64_t s = ms / 1000, minutes = s / 60, hours = minutes / 60;
    char text[64];
    if (hours == 0) {
        std::snprintf(text, sizeof text, "%" PRId64 ":%02d.%03d", minutes, int(s % 60),
                      int(ms % 1000));
    } else {
        std::snprintf(text, sizeof text, "%" PRId64 ":%02d:%02d.%03d", hours, int(minutes % 60),
                      int(s % 60), int(ms % 1000));
    }
    return text;
}

Label draw_label(const std::string &text, int width, int height) {
    const SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(std::string("cannot draw a label: ") +
                                 cairo_status_to_string(cairo_surface_status(surface.get())));
    draw_text(surface.get(), text.c_str(), width, height);
    cairo_surface_flush(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    const uint8_t *row = cairo_image_surface_get_data(surface.get());
    Label label{width, height, {}};
    for (int y = 0; y < height; y++, row += stride)
        label.coverage.insert(label.coverage.end(), row, row + width);
    return label;
}
