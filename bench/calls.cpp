// One call of every kernel between two calls of mark(), for counting instructions under emulation.
// Prints the names in order.
#include <cstdint>
#include <cstdio>

#include "picture.h"

extern "C" __attribute__((noinline)) void mark() { __asm__ volatile("" ::: "memory"); }

int main() {
    constexpr int32_t W = 1920, H = 2;
    mark();
    mark();
    std::puts("nothing");
    for (const CscKernel &kernel : csc_kernels()) {
        Picture picture(kernel, W, H);
        mark();
        picture.convert(kernel.variants[0].run);
        mark();
        std::printf("csc_%s %d\n", kernel.name, W * H);
    }
    return 0;
}
