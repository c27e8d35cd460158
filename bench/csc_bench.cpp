// Conversions: the model, every variant of the processor, and the best peer, on the same planes.
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "kernels.h"
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

// "exported" is what a user gets; the others are its variants.
std::string side_name(const char *level) {
    return level == std::string("exported") ? "tavu" : std::string("tavu-") + level;
}

void add(const CscKernel &kernel, const std::string &who, tavu_fn_csc_t routine) {
    for (const auto &[w, h] : {std::pair(320, 180), std::pair(1920, 1080)}) {
        Picture picture(kernel, w, h);
        const double differs = difference(picture, kernel.model, routine);
        std::string side = who;
        if (differs > 0) side += " (mean difference " + std::to_string(differs).substr(0, 4) + ")";
        add_side(
            "csc_" + std::string(kernel.name) + '/' + std::to_string(w) + 'x' + std::to_string(h),
            side, [kernel, w = w, h = h, routine, made = std::shared_ptr<Picture>()]() mutable {
                if (!made) made = std::make_shared<Picture>(kernel, w, h);
                made->convert(routine);
            });
    }
}

}  // namespace

void add_csc_rows() {
    for (const CscKernel &kernel : csc_kernels()) {
        add(kernel, "tavu-model", kernel.model);
        for (const CscVariant &variant : kernel.variants) {
            add(kernel, side_name(variant.level), variant.run);
        }
        if (const tavu_fn_csc_t peer = csc_peer(kernel.name)) add(kernel, "libyuv", peer);
    }
}
