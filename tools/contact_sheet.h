#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavu.h"

/** Pictures of one size in rows, each with a text under it, on a dark ground. */
class ContactSheet {
  public:
    ContactSheet(int columns, int picture_width, int picture_height);

    int picture_width() const { return picture_w_; }
    int picture_height() const { return picture_h_; }
    int count() const { return count_; }

    /** Adds a packed R, G, B picture of the sheet's picture size. */
    void add(const tavu_imgb_t &picture, const std::string &text);

    /** Writes a PNG file as wide as the columns in use. */
    void save(const std::string &path) const;

  private:
    size_t stride() const { return 3 * static_cast<size_t>(width(columns_)); }
    int width(int columns) const { return gap_ + columns * (picture_w_ + gap_); }
    void add_row();
    void draw_text(uint8_t *corner, const std::string &text) const;

    int columns_, picture_w_, picture_h_, label_h_, gap_;
    int count_ = 0;
    std::vector<uint8_t> pixels_;  ///< whole rows of pictures, R, G, B
};
