// One call of every kernel between two calls of mark(), for counting instructions under emulation.
// Prints the names in order.
#include <cstdint>
#include <cstdio>
#include <vector>

#include "kernels.h"

extern "C" __attribute__((noinline)) void mark() { __asm__ volatile("" ::: "memory"); }

int main() {
    constexpr int32_t W = 1920, H = 2;
    std::vector<uint8_t> in(4 * W * H, 99), out(4 * W * H);
    mark();
    mark();
    std::puts("nothing");
    for (const CscKernel &kernel : csc_kernels()) {
        uint8_t *src[4], *dst[4] = {};
        int32_t src_stride[4], dst_stride[4] = {};
        for (int p = 0; p < 4; p++) {
            src[p] = in.data() + (kernel.src_step == 1 ? p * W * H : p);
            src_stride[p] = W * kernel.src_step;
        }
        uint8_t *at = out.data();
        for (size_t p = 0; p < kernel.dst_bytes.size(); p++) {
            dst[p] = at;
            dst_stride[p] = W * kernel.dst_bytes[p];
            at += dst_stride[p] * H;
        }
        const tavu_fn_csc_t routine = kernel.variants[0].run;
        mark();
        routine(src, W, H, src_stride, 13, dst, W, H, dst_stride, kernel.codes[0]);
        mark();
        std::printf("csc_%s %d\n", kernel.name, W * H);
    }
    return 0;
}
