#include "layouts.h"

namespace {

constexpr PixelLayout LAYOUTS[] = {
    {"yuv400", TAVU_CS_YUV400, nullptr, 0, "gray"},
    {"yuv420", TAVU_CS_YUV420, nullptr, 0, "yuv420p"},
    {"yuv422", TAVU_CS_YUV422, nullptr, 0, "yuv422p"},
    {"yuv440", TAVU_CS_YUV440, nullptr, 0, "yuv440p"},
    {"yuv444", TAVU_CS_YUV444, "Y | U | V", 3, "yuv444p"},
    {"yuv444a8", TAVU_CS_YUV444A8, "Y | U | V | A", 4, "yuva444p"},
    {"rgb565", TAVU_CS_RGB565, "gggbbbbb rrrrrggg", 2, nullptr},
    {"rgb888", TAVU_CS_RGB888, "R G B", 3, nullptr},
    {"bgr888", TAVU_CS_BGR888, "B G R", 3, nullptr},
    {"rgba5658", TAVU_CS_RGBA5658, "gggbbbbb rrrrrggg A", 3, nullptr},
    {"rgba8888", TAVU_CS_RGBA8888, "R G B A", 4, nullptr},
    {"bgra8888", TAVU_CS_BGRA8888, "B G R A", 4, nullptr},
    {"r8g8b8", TAVU_CS_R8G8B8, nullptr, 0, nullptr},
    {"rgb565a8", TAVU_CS_RGB565A8, "gggbbbbb rrrrrggg | A", 3, nullptr},
    {"r8g8b8a8", TAVU_CS_R8G8B8A8, nullptr, 0, nullptr},
};

}  // namespace

const PixelLayout *find_layout(const std::string &text) {
    for (const PixelLayout &layout : LAYOUTS)
        if (text == layout.name || text == std::to_string(layout.cs)) return &layout;
    return nullptr;
}

const PixelLayout *find_layout(int32_t cs) { return find_layout(std::to_string(cs)); }

std::vector<std::string> layout_names(bool (*test)(const PixelLayout &)) {
    std::vector<std::string> names;
    for (const PixelLayout &layout : LAYOUTS)
        if (test(layout)) names.emplace_back(layout.name);
    return names;
}
