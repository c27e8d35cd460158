#ifndef TAVU_TOOLS_LABEL_H
#define TAVU_TOOLS_LABEL_H

#include <cstdint>
#include <string>
#include <vector>

/** Pixel coverage of a text, 0..255. */
struct Label {
    int width, height;
    std::vector<uint8_t> coverage;
};

/** "m:ss.mmm", or "h:mm:ss.mmm" from one hour on. */
std::string time_text(double seconds);

/** Draws a line of text centred in a box, in a smaller size if it is too wide. */
Label draw_label(const std::string &text, int width, int height);

#endif
