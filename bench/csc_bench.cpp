// Conversions: the model, every variant of the processor, and the best peer, on the same planes.
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "peers.h"
#include "picture.h"
#include "rows.h"

namespace {

// Mean difference of the bytes that two routines write.
double difference(Picture &picture, tavu_fn_csc_t a, tavu_fn_csc_t b) {
    picture.convert(a);
    const std::vector<uint8_t> expected = picture.out;
    picture.convert(b);
    double sum = 0;
    for (size_t i = 0; i < expected.size(); i++) sum += std::abs(expected[i] - picture.out[i]);
    return sum / static_cast<double>(expected.size());
}

// "exported" is the routine that programs call; the others are its variants.
std::string side_name(const char *level) {
    return level == std::string("exported") ? "tavu" : std::string("tavu-") + level;
}

// All sides of a row use one picture, because its place in memory alone may double the time.
class Row {
  public:
    Row(const CscKernel &kernel, int32_t width, int32_t height)
        : name_("csc_" + std::string(kernel.name) + '/' + std::to_string(width) + 'x' +
                std::to_string(height)),
          model_(kernel.model),
          picture_(std::make_shared<Picture>(kernel, width, height)) {}

    void add(std::string who, tavu_fn_csc_t routine) const {
        const double differs = difference(*picture_, model_, routine);
        if (differs > 0) who += " (mean difference " + std::to_string(differs).substr(0, 4) + ")";
        add_side(name_, who, [picture = picture_, routine] { picture->convert(routine); });
    }

  private:
    std::string name_;
    tavu_fn_csc_t model_;
    std::shared_ptr<Picture> picture_;
};

}  // namespace

void add_csc_rows() {
    for (const CscKernel &kernel : csc_kernels()) {
        for (const auto &[width, height] : {std::pair(320, 180), std::pair(1920, 1080)}) {
            const Row row(kernel, width, height);
            row.add("tavu-model", kernel.model);
            for (const CscVariant &variant : kernel.variants) {
                row.add(side_name(variant.level), variant.run);
            }
            if (const tavu_fn_csc_t peer = csc_peer(kernel.name)) row.add("libyuv", peer);
        }
    }
}
