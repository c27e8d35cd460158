// Whether the time per pixel or element is constant as pictures and containers grow. Rows are named
// "case/size"; the other side of a picture does the same memory accesses with the C library.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "picture.h"
#include "rows.h"
#include "tavu.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Size {
    int32_t w, h;
    std::string name() const { return '/' + std::to_string(w) + 'x' + std::to_string(h); }
    int32_t pixels() const { return w * h; }
};
constexpr Size SIZES[] = {{320, 180}, {1280, 720}, {1920, 1080}, {3840, 2160}};

// All rows of a size use the same memory.
struct Memory {
    explicit Memory(Size size)
        : from(static_cast<size_t>(size.pixels()) * 4, 100),
          to(static_cast<size_t>(size.pixels()) * 4, 99) {}
    Bytes from, to;
};
using SharedMemory = std::shared_ptr<Memory>;

// `call` reads and writes `moved` bytes per pixel.
template <class Call>
void add_picture_row(const std::string &name, Size size, const SharedMemory &memory, double moved,
                     Call call) {
    const auto copied = static_cast<size_t>(size.pixels() * moved / 2);
    add_side(name + size.name(), "tavu", call, size.pixels());
    add_side(
        name + size.name(), "memcpy",
        [=] { memcpy(memory->to.data(), memory->from.data(), copied); }, size.pixels());
}

void add_conversions(Size size, const SharedMemory &) {
    const auto add = [size](size_t kernel, double moved, tavu_fn_csc_t routine) {
        const CscKernel k = csc_kernels()[kernel];
        const auto picture = std::make_shared<Picture>(k, size.w, size.h);
        const auto copied = static_cast<size_t>(size.pixels() * moved / 2);
        const std::string row = "csc_" + std::string(k.name) + size.name();
        add_side(row, "tavu", [=] { picture->convert(routine); }, size.pixels());
        add_side(
            row, "memcpy", [=] { memcpy(picture->out.data(), picture->in.data(), copied); },
            size.pixels());
    };
    add(0, 6, tavu_csc_yuv444_to_rgb888);
    add(1, 7, tavu_csc_yuv444_to_rgba8888);
    add(6, 5, tavu_csc_yuv444_to_rgb565);
    add(12, 6, tavu_csc_r8g8b8_to_yuv444);
}

// Times per source pixel.
void add_resizes(Size size, const SharedMemory &memory) {
    const auto add = [&](const char *name, tavu_irsz_full_t *resize, int32_t bytes, int32_t num,
                         int32_t den) {
        const int32_t w = size.w * num / den, h = size.h * num / den;
        const double moved = bytes * (1 + static_cast<double>(num * num) / (den * den));
        add_picture_row(name, size, memory, moved, [=] {
            int32_t x, y;
            bilinear_rsz_step_size(size.w, size.h, w, h, &x, &y);
            resize(memory->from.data(), size.w * bytes, w, h, w * bytes, memory->to.data(), x, y);
        });
    };
    add("irsz8b_full to half", tavu_irsz8b_full, 1, 1, 2);
    add("irsz8b_full to 1.5x", tavu_irsz8b_full, 1, 3, 2);
    add("irsz8b8b8b8b_full to 2/3", tavu_irsz8b8b8b8b_full, 4, 2, 3);
}

void add_fills(Size size, const SharedMemory &memory) {
    // The other side of a fill is a fill.
    add_side(
        "mset_x32" + size.name(), "tavu",
        [=] { tavu_mset_x32(memory->to.data(), 0x11223344, size.pixels()); }, size.pixels());
    add_side(
        "mset_x32" + size.name(), "memset",
        [=] { memset(memory->to.data(), 0x44, static_cast<size_t>(size.pixels())); },
        size.pixels());
    add_picture_row("mcpy_pic", size, memory, 2, [=] {
        tavu_mcpy_pic(memory->to.data(), memory->from.data(), size.w, size.w, size.w, size.h);
    });
}

void add_md5(Size size, const SharedMemory &memory) {
    add_picture_row("md5", size, memory, 1, [=] {
        tavu_md5_t md5;
        uint8_t digest[16];
        tavu_md5_init(&md5);
        tavu_md5_update(&md5, memory->from.data(), static_cast<uint32_t>(size.pixels()));
        tavu_md5_finish(&md5, digest);
        benchmark::DoNotOptimize(digest);
    });
}

// A picture processed block by block as in an encoder; the other side copies the same blocks.
template <class Metric>
void add_blocks(const char *name, Size size, const SharedMemory &memory, Metric metric) {
    constexpr int32_t BLOCK = 64;
    const auto over_blocks = [=](auto visit) {
        for (int32_t y = 0; y + BLOCK <= size.h; y += BLOCK) {
            for (int32_t x = 0; x + BLOCK <= size.w; x += BLOCK) {
                const auto at = static_cast<size_t>(y * size.w + x);
                visit(&memory->from[at], &memory->to[at]);
            }
        }
    };
    const auto ours = [=] {
        int64_t sum = 0;
        over_blocks([&](const uint8_t *a, const uint8_t *b) { sum += metric(a, b, size.w); });
        return sum;
    };
    const auto copy = [=] {
        over_blocks([&](const uint8_t *from, uint8_t *to) {
            for (int32_t y = 0; y < BLOCK; y++, from += size.w, to += size.w) {
                memcpy(to, from, BLOCK);
            }
        });
    };
    const std::string row = std::string(name) + size.name();
    const double pixels = (size.w / BLOCK) * (size.h / BLOCK) * BLOCK * BLOCK;
    add_side(row, "tavu", ours, pixels);
    add_side(row, "memcpy of blocks", copy, pixels);
}

void add_metrics(Size size, const SharedMemory &memory) {
    add_picture_row("satd, whole", size, memory, 2, [=] {
        return tavu_satd(size.w, size.h, memory->from.data(), memory->to.data(), size.w, size.w);
    });
    add_blocks("sad64x64", size, memory, [](const uint8_t *a, const uint8_t *b, int32_t stride) {
        return tavu_sad64x64(a, b, stride, stride);
    });
    add_blocks("ssd 64x64", size, memory, [](const uint8_t *a, const uint8_t *b, int32_t stride) {
        return tavu_ssd(64, 64, a, b, stride, stride);
    });
    add_blocks("satd 64x64", size, memory, [](const uint8_t *a, const uint8_t *b, int32_t stride) {
        return tavu_satd(64, 64, a, b, stride, stride);
    });
}

// Times per pixel of the border; the other side fills the same strips with the C library.
void add_border(Size size, const SharedMemory &) {
    constexpr int32_t PAD = 32;
    constexpr uint32_t PADS[] = {PAD << 16 | PAD};
    const int32_t stride = size.w + 2 * PAD;
    const auto plane = std::make_shared<Bytes>(static_cast<size_t>(stride * (size.h + 2 * PAD)));
    uint8_t *const first = plane->data() + PAD * stride + PAD;
    const double pixels = static_cast<double>(plane->size()) - size.pixels();
    const auto ours = [=] {
        tavu_imgb_t image = {};
        image.cs = TAVU_CS_YUV400;
        image.aw = size.w;
        image.ah = size.h;
        image.stride[0] = stride;
        image.addr[0] = plane->data() + PAD * stride + PAD;
        tavu_imgb_expand(&image, PADS);
    };
    const auto theirs = [=] {
        uint8_t *row = first;
        for (int32_t y = 0; y < size.h; y++, row += stride) memset(row - PAD, *row, PAD);
        row = first + size.w;
        for (int32_t y = 0; y < size.h; y++, row += stride) memset(row, row[-1], PAD);
        row = first - PAD;
        uint8_t *const last = row + (size.h - 1) * stride;
        for (int32_t y = 1; y <= PAD; y++) {
            memcpy(row - y * stride, row, static_cast<size_t>(stride));
            memcpy(last + y * stride, last, static_cast<size_t>(stride));
        }
    };
    add_side("imgb_expand" + size.name(), "tavu", [ours, plane] { ours(); }, pixels);
    add_side("imgb_expand" + size.name(), "memset and memcpy", theirs, pixels);
}

using List = std::unique_ptr<tavu_list_t, void (*)(tavu_list_t *)>;

void add_list(int32_t count) {
    const std::string of = '/' + std::to_string(count);
    const auto list =
        std::make_shared<List>(tavu_list_create(sizeof count, nullptr), tavu_list_delete);
    for (int32_t i = 0; i < count; i++) tavu_list_add(list->get(), &i);
    add_side("list add, remove first" + of, "tavu", [=] {
        tavu_list_add(list->get(), &count);
        tavu_list_rem_first(list->get());
    });
    const auto walk = [=] {
        int64_t sum = 0;
        for (void *e = tavu_list_move_first(list->get()); e != nullptr;
             e = tavu_list_move_next(list->get())) {
            sum += *static_cast<const int32_t *>(e);
        }
        return sum;
    };
    add_side("list walk" + of, "tavu", walk, count);
}

// Takes one slot of a queue with `used` slots and gives one back.
void add_rlist(const std::string &name, int32_t count, int32_t used) {
    using Pool = std::unique_ptr<tavu_rlist_t, void (*)(tavu_rlist_t *)>;
    const auto pool = std::make_shared<Pool>(tavu_rlist_create(64, count), tavu_rlist_delete);
    for (int32_t i = 0; i < used; i++) tavu_rlist_get_buf(pool->get());
    add_side(name + '/' + std::to_string(count), "tavu", [=] {
        benchmark::DoNotOptimize(tavu_rlist_get_buf(pool->get()));
        benchmark::DoNotOptimize(tavu_rlist_get_data(pool->get()));
        tavu_rlist_rem_data(pool->get());
    });
}

// A ring buffer half full of 8-byte elements.
void add_ring(int32_t count) {
    using Ring = std::unique_ptr<tavu_rbuf_t, void (*)(tavu_rbuf_t *)>;
    const auto ring = std::make_shared<Ring>(tavu_rbuf_create(8 * count + 1), tavu_rbuf_delete);
    uint64_t element = 0;
    for (int32_t i = 0; i < count / 2; i++) tavu_rbuf_put(ring->get(), &element, 8);
    add_side("rbuf put and get/" + std::to_string(count), "tavu", [=]() mutable {
        tavu_rbuf_put(ring->get(), &element, 8);
        return tavu_rbuf_get(ring->get(), &element, 8);
    });
}

}  // namespace

void add_growth_rows() {
    for (const Size &size : SIZES) {
        const auto memory = std::make_shared<Memory>(size);
        add_conversions(size, memory);
        add_resizes(size, memory);
        add_fills(size, memory);
        add_md5(size, memory);
        add_metrics(size, memory);
        add_border(size, memory);
    }
    for (const int32_t count : {10, 1000, 100000}) {
        add_list(count);
        add_rlist("rlist, one slot used", count, 1);
        add_rlist("rlist, half used", count, count / 2);
        add_rlist("rlist, all but one used", count, count - 1);
        add_ring(count);
    }
}
