#ifndef TAVU_TOOLS_LABEL_H
#define TAVU_TOOLS_LABEL_H

#include <cstdint>
#include <string>
#include <vector>

/** Coverage of the pixels of a text, 0..255. */
struct Label {
    int width, height;
    std::vector<uint8_t> coverage;
};

/** "m:ss.mmm", from an hour on "h:mm:ss.mmm". */
std::string time_text(double seconds);

/** Draws a line of text into the middle of a box, smaller than the box asks if it must be. */
Label draw_label(const std::string &text, int width, int height);

#endif
