// Compares fills, copies and borders with the C library and x265 on the same bytes.
#include <cstring>
#include <cwchar>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "require.h"
#include "rows.h"
#include "tavu.h"

#if TAVU_HAVE_LIBYUV
#include <libyuv.h>
#endif
#if TAVU_HAVE_LIBX265
extern "C" {
void x265_blockcopy_pp_8x8_sse2(uint8_t *, intptr_t, const uint8_t *, intptr_t);
void x265_blockcopy_pp_16x16_sse2(uint8_t *, intptr_t, const uint8_t *, intptr_t);
}
#endif

namespace {

using Bytes = std::vector<uint8_t>;

Bytes noise(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; i++) bytes[i] = static_cast<uint8_t>(i * 2654435761U >> 13);
    return bytes;
}

using SharedBytes = std::shared_ptr<Bytes>;

// Times peer(target), which must give the same bytes as ours from the same noise.
template <class Peer>
void add_peer(const std::string &row, const std::string &who, const SharedBytes &target,
              Peer peer) {
    Bytes found = noise(target->size());
    peer(found.data());
    require(found == *target, row);
    add_side(row, who, [target, peer] { peer(target->data()); });
}

// Times both sides on the same target, and returns it.
template <class Ours, class Peer>
SharedBytes add_pair(const std::string &row, const std::string &who, size_t bytes, Ours ours,
                     Peer peer) {
    const auto target = std::make_shared<Bytes>(noise(bytes));
    ours(target->data());
    add_side(row, "tavu", [target, ours] { ours(target->data()); });
    add_peer(row, who, target, peer);
    return target;
}

using Fill = void(uint8_t *dst, int32_t value, int32_t size);

void fill_bytes(uint8_t *dst, int32_t value, int32_t size) {
    memset(dst, value, static_cast<size_t>(size));
}

void fill_words(uint8_t *dst, int32_t value, int32_t size) {
    wmemset(static_cast<wchar_t *>(static_cast<void *>(dst)), value,
            static_cast<size_t>(size) / sizeof(wchar_t));
}

void clear(uint8_t *dst, int32_t, int32_t size) { memset(dst, 0, static_cast<size_t>(size)); }

void add_fills() {
    struct {
        const char *name, *who;
        Fill *ours, *peer;
    } const fills[] = {
        {"mset_x128", "wmemset",
         [](uint8_t *d, int32_t v, int32_t n) { tavu_mset_x128(d, static_cast<uint32_t>(v), n); },
         fill_words},
        {"mset_x64", "memset",
         [](uint8_t *d, int32_t v, int32_t n) { tavu_mset_x64(d, static_cast<uint8_t>(v), n); },
         fill_bytes},
        {"mset_x64a", "memset", [](uint8_t *d, int32_t v, int32_t n) { tavu_mset_x64a(d, v, n); },
         fill_bytes},
        {"mset_x32", "wmemset",
         [](uint8_t *d, int32_t v, int32_t n) { tavu_mset_x32(d, static_cast<uint32_t>(v), n); },
         fill_words},
        {"mset_x32ax4", "wmemset",
         [](uint8_t *d, int32_t v, int32_t n) { tavu_mset_x32ax4(d, static_cast<uint32_t>(v), n); },
         fill_words},
        {"mclr_x64", "memset", [](uint8_t *d, int32_t, int32_t n) { tavu_mclr_x64(d, n / 4); },
         clear},
    };
    for (const auto &fill : fills) {
        for (const int32_t size : {1 << 14, 1 << 21}) {
            const auto with = [size](Fill *run) {
                return [run, size](uint8_t *dst) { run(dst, 0x11223344, size); };
            };
            add_pair(std::string(fill.name) + '/' + std::to_string(size), fill.who,
                     static_cast<size_t>(size), with(fill.ours), with(fill.peer));
        }
    }
}

void copy_rows(uint8_t *dst, const uint8_t *src, int32_t stride, int32_t w, int32_t h) {
    if (w == stride) {
        memcpy(dst, src, static_cast<size_t>(w) * static_cast<size_t>(h));
        return;
    }
    for (; h > 0; h--, dst += stride, src += stride) memcpy(dst, src, static_cast<size_t>(w));
}

void add_picture_copies() {
    struct {
        const char *row;
        int32_t stride, w, h;
    } const sizes[] = {{"mcpy_pic/128x64", 128, 128, 64},
                       {"mcpy_pic/1920x1080", 1920, 1920, 1080},
                       {"mcpy_pic/1280x720 in 1920", 1920, 1280, 720}};
    for (const auto &[row, stride, w, h] : sizes) {
        const size_t bytes = static_cast<size_t>(stride) * static_cast<size_t>(h);
        const auto src = std::make_shared<Bytes>(bytes, uint8_t{7});
        const SharedBytes target = add_pair(
            row, "memcpy", bytes,
            [=, w = w, h = h, s = stride](uint8_t *dst) {
                tavu_mcpy_pic(dst, src->data(), s, s, w, h);
            },
            [=, w = w, h = h, s = stride](uint8_t *dst) { copy_rows(dst, src->data(), s, w, h); });
#if TAVU_HAVE_LIBYUV
        const auto libyuv_copy = [=, w = w, h = h, s = stride](uint8_t *dst) {
            libyuv::CopyPlane(src->data(), s, dst, s, w, h);
        };
        add_peer(row, "libyuv", target, libyuv_copy);
#endif
    }
}

#if TAVU_HAVE_LIBX265
template <int Size, auto *Peer>
void add_block_copy(const std::string &row) {
    constexpr int32_t STRIDE = 64;
    const auto src = std::make_shared<Bytes>(STRIDE * Size, uint8_t{7});
    add_pair(
        row, "x265", STRIDE * Size,
        [src](uint8_t *dst) { tavu_mcpy_blk(dst, src->data(), STRIDE, STRIDE, Size, Size); },
        [src](uint8_t *dst) { Peer(dst, STRIDE, src->data(), STRIDE); });
}
#endif

template <int Width>
void repeat_samples(uint8_t *dst, const uint8_t *src, int32_t rows, int32_t stride) {
    for (; rows > 0; rows--, dst += stride, src += stride) memset(dst, *src, Width);
}

// Expands a plane that starts at `plane` with its padding, with calls of constant width.
template <int Pad>
void expand_plane(uint8_t *plane, int32_t w, int32_t h) {
    const int32_t stride = w + 2 * Pad;
    uint8_t *first = plane + Pad * stride;
    repeat_samples<Pad>(first, first + Pad, h, stride);
    repeat_samples<Pad>(first + Pad + w, first + Pad + w - 1, h, stride);
    uint8_t *last = first + (h - 1) * stride;
    for (int i = 1; i <= Pad; i++) {
        memcpy(first - i * stride, first, static_cast<size_t>(stride));
        memcpy(last + i * stride, last, static_cast<size_t>(stride));
    }
}

template <int Pad>
int32_t plane_bytes(int32_t w, int32_t h) {
    return (w + 2 * Pad) * (h + 2 * Pad);
}

template <int Pad>
void add_border(int32_t w, int32_t h) {
    constexpr int CHROMA_PAD = Pad / 2;
    constexpr uint32_t LUMA = Pad << 16 | Pad, CHROMA = CHROMA_PAD << 16 | CHROMA_PAD;
    const int32_t luma = plane_bytes<Pad>(w, h), chroma = plane_bytes<CHROMA_PAD>(w / 2, h / 2);
    const auto ours = [=](uint8_t *at) {
        tavu_imgb_t image = {};
        image.cs = TAVU_CS_YUV420;
        image.aw = w;
        image.ah = h;
        for (int p = 0; p < 3; p++) {
            const int pad = p == 0 ? Pad : CHROMA_PAD;
            image.stride[p] = (p == 0 ? w : w / 2) + 2 * pad;
            image.addr[p] = at + pad * image.stride[p] + pad;
            at += p == 0 ? luma : chroma;
        }
        constexpr uint32_t PADS[] = {LUMA, CHROMA, CHROMA};
        tavu_imgb_expand(&image, PADS);
    };
    const auto peer = [=](uint8_t *at) {
        expand_plane<Pad>(at, w, h);
        expand_plane<CHROMA_PAD>(at + luma, w / 2, h / 2);
        expand_plane<CHROMA_PAD>(at + luma + chroma, w / 2, h / 2);
    };
    add_pair(
        "imgb_expand/" + std::to_string(w) + 'x' + std::to_string(h) + " by " + std::to_string(Pad),
        "memset and memcpy", static_cast<size_t>(luma + 2 * chroma), ours, peer);
}

}  // namespace

void add_memory_rows() {
    add_fills();
    add_picture_copies();
#if TAVU_HAVE_LIBX265
    add_block_copy<8, x265_blockcopy_pp_8x8_sse2>("mcpy_blk/8x8");
    add_block_copy<16, x265_blockcopy_pp_16x16_sse2>("mcpy_blk/16x16");
#endif
    add_border<16>(1920, 1080);
    add_border<16>(352, 288);
    add_border<32>(1920, 1080);
    add_border<32>(352, 288);
}
