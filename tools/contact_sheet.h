#ifndef TAVU_TOOLS_CONTACT_SHEET_H
#define TAVU_TOOLS_CONTACT_SHEET_H

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "output_file.h"
#include "tavu.h"

/** Pictures of one size in rows on a dark background, each with a caption. */
class ContactSheet {
  public:
    ContactSheet(int columns, int picture_width, int picture_height);

    int picture_width() const { return picture_w_; }
    int picture_height() const { return picture_h_; }
    /** Width of the whole sheet, which is as wide as the columns in use. */
    int width() const { return span(std::min(count_, columns_)); }
    int height() const { return static_cast<int>(pixels_.size() / stride()); }

    /** Adds a packed R, G, B picture of the sheet's picture size. */
    void add(const tavu_imgb_t &picture, const std::string &text);

    /** Writes a PNG file. */
    void save(OutputFile &file) const;

  private:
    size_t stride() const { return 3 * static_cast<size_t>(span(columns_)); }
    int span(int columns) const { return gap_ + columns * (picture_w_ + gap_); }
    void add_row();
    void draw_text(uint8_t *corner, const std::string &text) const;

    int columns_, picture_w_, picture_h_, label_h_, gap_;
    int count_ = 0;
    std::vector<uint8_t> pixels_;  ///< whole rows of pictures, R, G, B
};

#endif
