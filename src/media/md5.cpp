// MD5 (RFC 1321).
#include <cstddef>
#include <cstring>

#include "tavu.h"

namespace tavu {
namespace {

constexpr uint32_t BLOCK = 64;

uint32_t load_le32(const uint8_t *p) {
    uint32_t v;
    memcpy(&v, p, sizeof v);
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    v = __builtin_bswap32(v);
#endif
    return v;
}

void store_le32(uint8_t *p, uint32_t v) {
    for (int i = 0; i < 4; i++) p[i] = static_cast<uint8_t>(v >> 8 * i);
}

struct F {
    static uint32_t add(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        return a + (d ^ (b & (c ^ d)));
    }
};
struct G {
    // The two terms share no bit, so they can be added separately: only `b & d` waits for b.
    static uint32_t add(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        return a + (c & ~d) + (b & d);
    }
};
struct H {
    static uint32_t add(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        return a + (b ^ (c ^ d));
    }
};
struct I {
    static uint32_t add(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        return a + (c ^ (b | ~d));
    }
};

// floor(2^32 * abs(sin(i + 1)))
constexpr uint32_t SINE[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

// 16 steps; step i uses message word (i * Stride + First) % 16.
template <class Function, int Round, int Stride, int First, int R0, int R1, int R2, int R3>
inline void round16(uint32_t (&s)[4], const uint8_t *block) {
    constexpr int ROTATE[4] = {R0, R1, R2, R3};
#pragma GCC unroll 16
    for (int i = 0; i < 16; i++) {
        uint32_t &a = s[(0 - i) & 3];
        const uint32_t b = s[(1 - i) & 3], c = s[(2 - i) & 3], d = s[(3 - i) & 3];
        const uint32_t word = load_le32(block + 4 * ((i * Stride + First) & 15));
        const uint32_t sum = Function::add(a + word + SINE[16 * Round + i], b, c, d);
        a = b + (sum << ROTATE[i & 3] | sum >> (32 - ROTATE[i & 3]));
    }
}

const uint8_t *transform(uint32_t *state, const uint8_t *block, uint32_t blocks) {
    uint32_t s[4];
    memcpy(s, state, sizeof s);
    for (; blocks > 0; blocks--, block += BLOCK) {
        const uint32_t old[4] = {s[0], s[1], s[2], s[3]};
        round16<F, 0, 1, 0, 7, 12, 17, 22>(s, block);
        round16<G, 1, 5, 1, 5, 9, 14, 20>(s, block);
        round16<H, 2, 3, 5, 4, 11, 16, 23>(s, block);
        round16<I, 3, 7, 0, 6, 10, 15, 21>(s, block);
        for (int i = 0; i < 4; i++) s[i] += old[i];
    }
    memcpy(state, s, sizeof s);
    return block;
}

void init(tavu_md5_t *md5) {
    *md5 = {};
    md5->state[0] = 0x67452301;
    md5->state[1] = 0xefcdab89;
    md5->state[2] = 0x98badcfe;
    md5->state[3] = 0x10325476;
}

void update(tavu_md5_t *md5, const uint8_t *data, uint32_t size) {
    if (size == 0) return;
    const uint32_t used = md5->bits[0] / 8 % BLOCK;
    const uint32_t low = md5->bits[0] + (size << 3);
    md5->bits[1] += (size >> 29) + (low < md5->bits[0]);
    md5->bits[0] = low;

    if (used != 0) {
        const uint32_t space = BLOCK - used;
        if (size < space) {
            memcpy(md5->msg + used, data, size);
            return;
        }
        memcpy(md5->msg + used, data, space);
        transform(md5->state, md5->msg, 1);
        data += space;
        size -= space;
    }
    data = transform(md5->state, data, size / BLOCK);
    memcpy(md5->msg, data, size % BLOCK);
}

void finish(tavu_md5_t *md5, uint8_t *digest) {
    constexpr uint32_t LENGTH_AT = BLOCK - 8;
    uint32_t used = md5->bits[0] / 8 % BLOCK;
    md5->msg[used++] = 0x80;
    if (used > LENGTH_AT) {
        memset(md5->msg + used, 0, BLOCK - used);
        transform(md5->state, md5->msg, 1);
        used = 0;
    }
    memset(md5->msg + used, 0, LENGTH_AT - used);
    store_le32(md5->msg + LENGTH_AT, md5->bits[0]);
    store_le32(md5->msg + LENGTH_AT + 4, md5->bits[1]);
    transform(md5->state, md5->msg, 1);
    for (int i = 0; i < 4; i++) store_le32(digest + 4 * i, md5->state[i]);
    *md5 = {};
}

void update_rows(tavu_md5_t *md5, const tavu_imgb_t *imgb, int plane, int32_t first, int32_t end,
                 int64_t bytes) {
    if (bytes <= 0) return;
    const uint8_t *row = imgb->addr[plane] + static_cast<ptrdiff_t>(first) * imgb->stride[plane];
    for (int32_t r = first; r < end; r++, row += imgb->stride[plane]) {
        update(md5, row, static_cast<uint32_t>(bytes));
    }
}

}  // namespace
}  // namespace tavu

using namespace tavu;

void tavu_md5_init(tavu_md5_t *md5) { init(md5); }

void tavu_md5_update(tavu_md5_t *md5, const void *data, uint32_t size) {
    update(md5, static_cast<const uint8_t *>(data), size);
}

void tavu_md5_finish(tavu_md5_t *md5, uint8_t digest[16]) { finish(md5, digest); }

int32_t tavu_md5_imgb(const tavu_imgb_t *imgb, uint8_t digest[16]) {
    if (imgb == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    if (imgb->cs < 0 || imgb->cs > 99) return TAVU_ERR_UNSUPPORTED_CS;
    tavu_md5_t md5;
    init(&md5);
    // `x` shortens rows without moving their start; chroma is treated as 4:2:0 in every layout.
    // Callers rely on both. 64-bit arithmetic, because rounding up the largest sizes overflows 32.
    const int64_t width = int64_t{imgb->w} - imgb->x;
    update_rows(&md5, imgb, 0, imgb->y, imgb->h, width);
    if (imgb->cs != TAVU_CS_YUV400) {
        for (int plane = 1; plane <= 2; plane++) {
            const auto end = static_cast<int32_t>((int64_t{imgb->h} + 1) / 2);
            update_rows(&md5, imgb, plane, imgb->y >> 1, end, (width + 1) / 2);
        }
    }
    finish(&md5, digest);
    return TAVU_OK;
}
