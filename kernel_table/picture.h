// Source and target planes of one call of a conversion.
#ifndef TAVU_BENCH_PICTURE_H
#define TAVU_BENCH_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernels.h"

struct Picture {
    Picture(const CscKernel &kernel, int32_t width, int32_t height)
        : w(width), h(height), code(kernel.codes[0]) {
        const auto pixels = static_cast<size_t>(w) * static_cast<size_t>(h);
        in.resize(4 * pixels);
        out.resize(4 * pixels);
        for (size_t i = 0; i < in.size(); i++) in[i] = static_cast<uint8_t>(i * 2654435761U >> 13);
        for (size_t p = 0; p < 4; p++) {
            src[p] = in.data() + (kernel.src_step == 1 ? p * pixels : p);
            src_stride[p] = w * kernel.src_step;
        }
        uint8_t *at = out.data();
        for (size_t p = 0; p < kernel.dst_bytes.size(); p++) {
            dst[p] = at;
            dst_stride[p] = w * kernel.dst_bytes[p];
            at += pixels * static_cast<size_t>(kernel.dst_bytes[p]);
        }
    }

    void convert(tavu_fn_csc_t routine) {
        routine(src, w, h, src_stride, 13, dst, w, h, dst_stride, code);
    }

    int32_t w, h, code;
    std::vector<uint8_t> in, out;
    uint8_t *src[4], *dst[4] = {};
    int32_t src_stride[4], dst_stride[4] = {};
};

#endif
