#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"
#include "layouts.h"
#include "report.h"
#include "routines.h"

namespace {

constexpr const char *EQUATIONS = R"(
A is alpha, 255 if the source has none. | separates planes; rows and planes have no gaps.
A 5-6-5 pixel has 16 bits, low byte first; each byte is shown from its highest bit.

Matrix and range: ITU-R BT.601, full range as in JPEG; u = U - 128, v = V - 128.
  R = Y + ((359 v + 128) >> 8)
  G = Y - ((183 v + 88 u + 128) >> 8)
  B = Y + ((454 u + 128) >> 8)
  Y = (77 R + 150 G + 29 B + 128) >> 8
  U = 128 + ((-43 R - 85 G + 128 B + 128) >> 8)
  V = 128 + ((128 R - 107 G - 21 B + 128) >> 8)
Rounding: shifts round down, so adding 128 rounds to nearest. Results are clamped to 0..255, except
that a U or V out of range becomes 255. 5-6-5 pixels keep the upper bits.
Resizing is bilinear. From YUV it uses 16-bit arithmetic that wraps: saturated colours come out
wrong, except in the last width % 8 pixels of each row.
The same-size routines to rgb888 and rgba8888 also write bgr888 (B G R) and bgra8888 (B G R A).
)";

std::string name_of(int32_t cs) {
    const PixelLayout *layout = find_layout(cs);
    return std::to_string(cs) + (layout ? std::string(" ") + layout->name : "");
}

std::string drawing_of(int32_t from, int32_t to) {
    const PixelLayout *layout = find_layout(written_code(from, to));
    std::string drawing = layout && layout->drawing ? layout->drawing : "?";
    const bool alpha = from == TAVU_CS_YUV444A8 || from == TAVU_CS_R8G8B8A8;
    if (const size_t at = drawing.find('A'); at != std::string::npos && !alpha)
        drawing.replace(at, 1, "255");
    return drawing;
}

struct Pair {
    int32_t from, to;
    bool same, resizing;  ///< whether there is a routine for equal sizes, for different sizes
};

std::vector<Pair> offered_pairs() {
    constexpr int32_t END = 1000;  // all codes are smaller
    std::vector<Pair> pairs;
    for (int32_t from = 0; from < END; from++)
        for (int32_t to = 0; to < END; to++) {
            const Pair pair{from, to, offered_routine(from, to, false) != nullptr,
                            offered_routine(from, to, true) != nullptr};
            if (pair.same || pair.resizing) pairs.push_back(pair);
        }
    return pairs;
}

void print_text(const std::vector<Pair> &pairs) {
    const char *const row = "%-13s  %-12s  %-9s  %-8s  %s\n";
    const auto print = [row](auto... texts) {
        char line[128];
        std::snprintf(line, sizeof line, row, texts...);
        std::cout << line;
    };
    print("source", "target", "same size", "resizing", "one pixel in memory");
    for (const Pair &pair : pairs)
        print(name_of(pair.from).c_str(), name_of(pair.to).c_str(), pair.same ? "yes" : "-",
              pair.resizing ? "yes" : "-", drawing_of(pair.from, pair.to).c_str());
    std::cout << EQUATIONS;
}

Json pairs_json(const std::vector<Pair> &pairs) {
    Json list = Json::array();
    for (const Pair &pair : pairs)
        list.push_back({{"source", pair.from},
                        {"target", pair.to},
                        {"same_size", pair.same},
                        {"resizing", pair.resizing},
                        {"pixel", drawing_of(pair.from, pair.to)}});
    return {{"conversions", list}};
}

}  // namespace

void list_conversions(const CommonOptions &common) {
    if (common.json) print_json(pairs_json(offered_pairs()));
    if (common.has_text()) print_text(offered_pairs());
}
