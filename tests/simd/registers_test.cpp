// Routines preserve the callee-saved registers: r4 to r11 and d8 to d15. Compilers guarantee that
// for their own code; inline assembly must list the registers that it changes.
#include <gtest/gtest.h>

#include <array>
#include <type_traits>

#include "memory.h"
#include "picture.h"

namespace {

constexpr int WORDS = 12;  // as many arguments as any routine takes
using Arguments = std::array<uint32_t, WORDS>;

// r4 to r11, then d8 to d15.
using Marks = std::array<uint32_t, 8 + 16>;

#define NAKED extern "C" __attribute__((naked, no_profile_instrument_function))

// Calls the routine with four words in registers and the rest on the stack. The registers are set
// to the marks before the call, and their values after it replace the marks.
NAKED void call_with_marks(const void * /*routine*/, const uint32_t * /*arguments*/,
                           uint32_t * /*marks*/) {
    __asm__(
        ".syntax unified\n"
        "push {r4-r11, lr}\n"
        "vpush {d8-d15}\n"
        "sub sp, sp, #36\n"
        "str r2, [sp, #32]\n"
        "mov r12, r0\n"
        "mov lr, r1\n"
        "add r1, r1, #16\n"
        "ldm r1, {r4-r11}\n"
        "stm sp, {r4-r11}\n"
        "ldm r2!, {r4-r11}\n"
        "vldm r2, {d8-d15}\n"
        "ldm lr, {r0-r3}\n"
        "blx r12\n"
        "ldr r12, [sp, #32]\n"
        "stm r12!, {r4-r11}\n"
        "vstm r12, {d8-d15}\n"
        "add sp, sp, #36\n"
        "vpop {d8-d15}\n"
        "pop {r4-r11, pc}\n");
}

template <class Argument>
uint32_t word(Argument argument) {
    if constexpr (std::is_pointer_v<Argument>) {
        return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(argument));
    } else {
        static_assert(sizeof argument <= sizeof(uint32_t));
        return static_cast<uint32_t>(argument);
    }
}

template <class Result, class... Parameters>
bool keeps_registers(Result (*routine)(Parameters...),
                     std::common_type_t<Parameters>... arguments) {
    static_assert(sizeof...(arguments) <= WORDS);
    const Arguments words = {word(arguments)...};
    Marks marks;
    for (size_t i = 0; i < marks.size(); i++) marks[i] = 0x9E3779B9U * static_cast<uint32_t>(i + 1);
    const Marks before = marks;
    call_with_marks(reinterpret_cast<const void *>(routine), words.data(), marks.data());
    return marks == before;
}

constexpr int W = 75, H = 6;  // whole registers and every kind of remainder
constexpr int STRIDE = 512;

class Registers : public testing::Test {
  protected:
    Bytes source = random_bytes(STRIDE * 80, 1);
    Bytes target = random_bytes(STRIDE * 80, 2);
    const uint8_t *a = source.data(), *b = target.data();
};

// The exported routine of a kernel, with these arguments.
template <class Kernel, class... Arguments>
void expect_kept(const Kernel &kernel, Arguments... arguments) {
    EXPECT_TRUE(keeps_registers(kernel.variants[0].run, arguments...)) << kernel.name;
}

NAKED void spoil_r7() { __asm__("mov r7, #0\n bx lr\n"); }
NAKED void spoil_d11() { __asm__("vmov.i8 d11, #0\n bx lr\n"); }

TEST_F(Registers, ChangedOnesAreDetected) {
    EXPECT_FALSE(keeps_registers(spoil_r7));
    EXPECT_FALSE(keeps_registers(spoil_d11));
}

TEST_F(Registers, KeptByConversions) {
    for (const auto &kernels : {csc_kernels(), csc_rsz_kernels()}) {
        for (const CscKernel &kernel : kernels) {
            for (const int32_t code : kernel.codes) {
                PicturePlanes p(kernel, code, W, H, W - 4, H + 1);
                p.set_sources(0, PlaneAllocator{source.data()});
                p.set_targets(0, PlaneAllocator{target.data()});
                expect_kept(kernel, p.src, W, H, p.src_stride, 13, p.dst, p.dst_w, p.dst_h,
                            p.dst_stride, code);
            }
        }
    }
}

TEST_F(Registers, KeptByResizes) {
    for (const ResizeKernel &kernel : resize_kernels()) {
        const auto &variant = kernel.variants[0];
        const uint8_t *rows[] = {a, a + STRIDE};
        for (const int dst_w : {W, W / 2, W / 3, W + 20}) {
            int32_t x, y;
            bilinear_rsz_step_size(W, 2 * H, dst_w, H, &x, &y);
            EXPECT_TRUE(keeps_registers(variant.full, a, STRIDE / kernel.line_unit, dst_w, H,
                                        STRIDE / kernel.line_unit, target.data(), x, y))
                << kernel.name << ' ' << dst_w;
            EXPECT_TRUE(keeps_registers(variant.line, rows, tavu_irsz_tbl_rsz_weight, dst_w, x & 7,
                                        1 << (x & 7), x >> 3, target.data()))
                << kernel.name << ' ' << dst_w;
        }
    }
}

TEST_F(Registers, KeptByMetrics) {
    std::array<int16_t, STRIDE * 64> residual{};
    int16_t *const out = residual.data();
    for (const auto &k : block_kernels()) expect_kept(k, a, b, STRIDE, STRIDE);
    for (const int width : {4, 8, 16, 20, 32, 64}) {
        for (const auto &k : area_kernels()) expect_kept(k, width, 16, a, b, STRIDE, STRIDE);
        for (const auto &k : early_skip_kernels()) {
            expect_kept(k, width, 16, a, b, STRIDE, STRIDE, INT32_MAX);
        }
    }
    for (const auto &k : hadamard_kernels()) expect_kept(k, out);
    for (const auto &k : diff_block_kernels()) expect_kept(k, a, b, STRIDE, STRIDE, STRIDE, out);
    for (const auto &k : diff_area_kernels()) {
        expect_kept(k, W, H, a, b, STRIDE, STRIDE, STRIDE, out);
    }
}

TEST_F(Registers, KeptByFillsCopiesAndBorders) {
    uint8_t *dst = target.data();
    constexpr int32_t size = 1003;
#define FILL(name, pattern, ...) EXPECT_TRUE(keeps_registers(name, dst, __VA_ARGS__)) << #name;
#include "kernels.def"
    EXPECT_TRUE(keeps_registers(tavu_mcpy_pic, dst, a, STRIDE, STRIDE, W, H));
    EXPECT_TRUE(keeps_registers(tavu_mcpy_pic, dst, a, W, W, W, H));
    for (const int width : {2, 4, 6, 8, 12, 16, 24}) {
        EXPECT_TRUE(keeps_registers(tavu_mcpy_blk, dst, a, STRIDE, STRIDE, width, 8)) << width;
    }
    for (const int width : {1, 8, 16, 32, W}) {
        EXPECT_TRUE(keeps_registers(tavu_imgb_expand_ver, a, dst, 8, STRIDE, width)) << width;
        EXPECT_TRUE(keeps_registers(tavu_imgb_expand_hor, a, dst, width, 8)) << width;
    }
}

TEST_F(Registers, KeptByScansAndDigests) {
    for (const int32_t codec : {TAVU_MT_VID_H264, TAVU_MT_VID_MPEG4, TAVU_MT_VID_H263}) {
        source.assign(source.size(), 0x40);
        EXPECT_TRUE(keeps_registers(tavu_is_vkeyfrm, codec, a, STRIDE));
    }
    tavu_md5_t md5;
    uint8_t digest[16];
    EXPECT_TRUE(keeps_registers(tavu_md5_init, &md5));
    EXPECT_TRUE(keeps_registers(tavu_md5_update, &md5, a, 1000U));
    EXPECT_TRUE(keeps_registers(tavu_md5_finish, &md5, digest));
}

}  // namespace
