#include "metrics.h"

#include <cmath>

namespace {

constexpr int TILE = 64, BLOCK = 8;

/** Calls `use` with the addresses in both pictures of each square that covers visible pixels. */
template <class Use>
void for_each_square(const tavu_imgb_t &a, const tavu_imgb_t &b, int size, Use use) {
    for (int y = 0; y < a.h; y += size)
        for (int x = 0; x < a.w; x += size)
            use(a.addr[0] + static_cast<ptrdiff_t>(y) * a.stride[0] + x,
                b.addr[0] + static_cast<ptrdiff_t>(y) * b.stride[0] + x);
}

}  // namespace

ImagePtr make_luma(int width, int height) {
    constexpr uint32_t ALIGN[4] = {TILE << 16 | TILE};
    ImagePtr luma(tavu_imgb_create(width, height, TAVU_CS_YUV400, TAVU_IMGB_OPT_CLEAR_ALIGN, ALIGN,
                                   nullptr, nullptr, nullptr, nullptr));
    if (!luma) throw std::bad_alloc();
    return luma;
}

Difference compare_luma(const tavu_imgb_t &a, const tavu_imgb_t &b) {
    Difference sum;
    const int stride_a = a.stride[0], stride_b = b.stride[0];
    for_each_square(a, b, TILE, [&](const uint8_t *in_a, const uint8_t *in_b) {
        sum.sad += tavu_sad64x64(in_a, in_b, stride_a, stride_b);
        sum.ssd += tavu_ssd(TILE, TILE, in_a, in_b, stride_a, stride_b);
    });
    for_each_square(a, b, BLOCK, [&](const uint8_t *in_a, const uint8_t *in_b) {
        sum.blocks.push_back(tavu_satd8x8(in_a, in_b, stride_a, stride_b));
        sum.satd += sum.blocks.back();
    });
    sum.mse = static_cast<double>(sum.ssd) / (static_cast<double>(a.w) * a.h);
    return sum;
}

double psnr(double mse) { return 10 * std::log10(255.0 * 255.0 / mse); }
