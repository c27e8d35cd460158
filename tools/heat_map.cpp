#include "heat_map.h"

#include <algorithm>
#include <cmath>

#include "label.h"
#include "limits.h"
#include "png_file.h"
#include "tavu.h"

namespace {

constexpr int BLOCK = 8, SCALE_H = 6, LABEL_H = 16, TEXT_W = 160;
constexpr uint8_t GROUND = 0x1E, INK = 0xE6;

/** Blends a colour into a pixel. */
void blend(uint8_t *pixel, const double (&colour)[3], double opacity) {
    for (int c = 0; c < 3; c++)
        pixel[c] = static_cast<uint8_t>(std::lround(pixel[c] + (colour[c] - pixel[c]) * opacity));
}

/** Tints by a value in 0..1: from violet through red to yellow, increasingly light. */
void tint(uint8_t *pixel, double value, double opacity) {
    constexpr double STOPS[][3] = {
        {40, 10, 140}, {126, 3, 168}, {204, 71, 120}, {248, 149, 64}, {240, 249, 33}};
    const double at = value * 4;
    const int stop = std::min(static_cast<int>(at), 3);
    double colour[3];
    for (int c = 0; c < 3; c++)
        colour[c] = STOPS[stop][c] + (STOPS[stop + 1][c] - STOPS[stop][c]) * (at - stop);
    blend(pixel, colour, opacity);
}

/** Makes the pixel grey first, so that its own colour is not mistaken for a value. */
void mark(uint8_t *pixel, double value) {
    const int grey = (77 * pixel[0] + 150 * pixel[1] + 29 * pixel[2] + 128) >> 8;
    std::fill_n(pixel, 3, static_cast<uint8_t>(grey));
    // The smallest values are visible, and the largest do not hide the picture.
    tint(pixel, value, 0.6 + 0.25 * value);
}

/** Draws centred text, because labels are narrower than the widest pictures. */
void draw_text(uint8_t *pixels, const std::string &text, int width) {
    constexpr double COLOUR[3] = {INK, INK, INK};
    const Label label = draw_label(text, std::min(width, 4096), LABEL_H);
    uint8_t *row = pixels + 3 * ((width - label.width) / 2);
    for (size_t i = 0; i < label.coverage.size(); i++) {
        const auto column = i % static_cast<size_t>(label.width);
        blend(row + 3 * column, COLOUR, label.coverage[i] / 255.0);
        if (column + 1 == static_cast<size_t>(label.width)) row += 3 * width;
    }
}

/** Draws the colours of all values from 0 to `top`, and a caption below, from row `pixels` on. */
void draw_scale(uint8_t *pixels, int width, int32_t top) {
    for (int i = 0; i < SCALE_H * width; i++, pixels += 3)
        tint(pixels, static_cast<double>(i % width) / (width - 1), 1);
    draw_text(pixels, "SATD 0 to " + std::to_string(top), width);
}

}  // namespace

void write_heat_map(OutputFile &file, const std::vector<uint8_t> &pixels, int width, int height,
                    const std::vector<int32_t> &blocks) {
    const int columns = (width + BLOCK - 1) / BLOCK;
    const int canvas_w = std::max(width, TEXT_W), canvas_h = height + SCALE_H + LABEL_H;
    check_pixels(canvas_w, canvas_h);
    const int32_t top = *std::max_element(blocks.begin(), blocks.end());
    const auto stride = 3 * static_cast<size_t>(canvas_w);
    std::vector<uint8_t> canvas(stride * static_cast<size_t>(canvas_h), GROUND);
    for (int y = 0; y < height; y++) {
        uint8_t *row = &canvas[stride * static_cast<size_t>(y)];
        std::copy_n(pixels.data() + ptrdiff_t{3} * y * width, 3 * width, row);
        const int32_t *values = blocks.data() + ptrdiff_t{y / BLOCK} * columns;
        for (int x = 0; x < width; x++) {
            const int32_t value = values[x / BLOCK];
            if (value > 0) mark(row + 3 * x, static_cast<double>(value) / top);
        }
    }
    draw_scale(&canvas[stride * static_cast<size_t>(height)], canvas_w, top);
    write_png(file, TAVU_CS_RGB888, canvas.data(), canvas_w, canvas_h, stride);
}
