// Picture geometry, options, borders and rebirth at sizes up to the largest, with an allocator that
// records requests and refuses large ones.
#include "buf/geometry_model.h"
#include "input.h"

namespace {

constexpr int32_t MOST = 1 << 16;
int64_t requested;

void *allocate(int32_t size, uint32_t *second) {
    requested = size;
    *second = 0;
    return size > MOST ? nullptr : new uint8_t[static_cast<size_t>(size)];
}

void release(void *payload, uint32_t) { delete[] static_cast<uint8_t *>(payload); }

// Mostly small sizes, sometimes near a limit or random.
int32_t pick_size(Input *in) {
    constexpr uint32_t LIMITS[] = {0,          0x100,      0x8000,     0x10000,   0x20000000,
                                   0x2AAAAAAA, 0x40000000, 0x7FFFFFFF, 0x80000000};
    const uint8_t kind = in->byte();
    if (kind < 192) return kind % 64;
    if (kind < 248) return static_cast<int32_t>(in->pick(LIMITS) + in->word() % 9 - 4);
    return static_cast<int32_t>(in->word());
}

struct Request : PictureRequest {
    uint32_t aligns[4], pads[4];
    int32_t options;

    explicit Request(Input *in) : PictureRequest{} {
        constexpr int32_t CODES[] = {10, 11, 12, 13, 18, 43, 43, 200, 300, 400, 500, 600, 0};
        constexpr uint32_t PADS[] = {0, 0, 0x10001, 0x40004, 0x30002, 0x20005, 0xFFFF0000, 0xFFFF};
        w = pick_size(in);
        h = pick_size(in);
        cs = in->pick(CODES);
        options = in->byte();
        for (int p = 0; p < 4; p++) {
            const uint8_t a = in->byte();
            aligns[p] = 1U << (16 + a % 16) | 1U << a / 16;
            pads[p] = in->pick(PADS);
        }
        if (options & 4) aligns[options % 3] = in->word();
        if (options & 8) align = aligns;
        if (options & 16) pad = pads;
    }
};

// All planes must be in the payload, one after the other.
void check_layout(const tavu_imgb_t *image, const Request &r) {
    const uint8_t *at = image->base[0];
    for (int p = 0; p < layout_model(r.cs).planes; p++) {
        require(image->base[p] == at);
        at += static_cast<ptrdiff_t>(image->stride[p]) * image->rows[p];
        if (image->rows[p] > 0) require(image->addr[p] >= image->base[p] && image->addr[p] <= at);
    }
    require(at - image->base[0] == picture_size(r).bytes);
}

// Expands the border, if the default alignment keeps it in the payload; digests the visible
// picture.
void use(tavu_imgb_t *image, const Request &r) {
    if (r.pad != nullptr && r.align == nullptr) tavu_imgb_expand(image, r.pad);
    uint8_t digest[16];
    image->x = (r.options & 32) != 0 ? r.w / 2 : 0;
    image->y = r.h / 2;
    tavu_md5_imgb(image, digest);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const Request first(&in);
    const PictureSize wanted = picture_size(first);
    int32_t status = 1;
    requested = -1;
    tavu_imgb_t *image = tavu_imgb_create(first.w, first.h, first.cs, first.options & 3,
                                          first.align, first.pad, allocate, release, &status);
    require(requested == (wanted.status == TAVU_OK ? wanted.bytes : -1));
    require((image != nullptr) == (status == TAVU_OK));
    require(status == (wanted.bytes > MOST ? TAVU_ERR_BUFFER_ALLOC : wanted.status));
    if (image == nullptr) return 0;
    memset(image->base[0], 1, static_cast<size_t>(image->size));
    check_layout(image, first);
    use(image, first);
    for (int i = 0; i < 3 && !in.empty(); i++) {
        const Request next(&in);
        const PictureSize size_of = picture_size(next);
        const tavu_imgb_t before = *image;
        status = tavu_imgb_rebirth(image, next.w, next.h, next.cs, next.options & 3, next.align,
                                   next.pad);
        const bool fits = size_of.bytes <= image->size;
        require(status == (fits ? size_of.status : TAVU_ERR_OUT_OF_MEMORY));
        if (status == TAVU_OK) {
            check_layout(image, next);
            use(image, next);
        } else {
            require(memcmp(&before, image, sizeof before) == 0);
        }
    }
    image->release(image);
    return 0;
}
