#include "contact_sheet.h"

#include <algorithm>
#include <stdexcept>

#include "label.h"
#include "png_file.h"

namespace {

constexpr uint8_t GROUND = 0x1E;
constexpr uint8_t INK = 0xE6;

}  // namespace

ContactSheet::ContactSheet(int columns, int picture_width, int picture_height)
    : columns_(columns),
      picture_w_(picture_width),
      picture_h_(picture_height),
      label_h_(std::clamp(picture_width / 14, 15, 40)),
      gap_(std::clamp(picture_width / 24, 4, 32)),
      pixels_(stride() * static_cast<size_t>(gap_), GROUND) {}

void ContactSheet::add_row() {
    constexpr size_t MOST = 1 << 30;
    const auto rows = static_cast<size_t>(picture_h_ + label_h_ + gap_);
    const size_t size = pixels_.size() + rows * stride();
    if (size > MOST)
        throw std::runtime_error("a sheet of " + std::to_string(columns_) + " columns of " +
                                 std::to_string(picture_w_) + "x" + std::to_string(picture_h_) +
                                 " pictures takes more than a gigabyte");
    pixels_.resize(size, GROUND);
}

void ContactSheet::add(const tavu_imgb_t &picture, const std::string &text) {
    const int column = count_++ % columns_;
    if (column == 0) add_row();
    const auto below = static_cast<size_t>(picture_h_ + label_h_ + gap_);
    uint8_t *out = pixels_.data() + pixels_.size() - below * stride() + 3 * span(column);
    const uint8_t *row = picture.addr[0];
    for (int y = 0; y < picture_h_; y++, row += picture.stride[0], out += stride())
        std::copy_n(row, 3 * picture_w_, out);
    draw_text(out, text);
}

void ContactSheet::draw_text(uint8_t *corner, const std::string &text) const {
    const Label label = draw_label(text, picture_w_, label_h_);
    for (int y = 0; y < label.height; y++, corner += stride()) {
        for (int x = 0; x < label.width; x++) {
            const int alpha = label.coverage[static_cast<size_t>(y * label.width + x)];
            std::fill_n(corner + 3 * x, 3, GROUND + (INK - GROUND) * alpha / 255);
        }
    }
}

void ContactSheet::save(OutputFile &file) const {
    write_png(file, TAVU_CS_RGB888, pixels_.data(), width(), height(), stride());
}
