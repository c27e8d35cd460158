// Bit writer. The cache fills from bit 31 downward, with zeros below; the writers rely on shifts by
// 32 and by negative counts yielding 0.
#include "bs/buffer.h"
#include "simd/cpu.h"
#include "tavu.h"

namespace tavu {
namespace {

// Bytes of the cache that hold bits; more than 4 after refused single bits. Callers rely on it.
int32_t pending_bytes(const tavu_bsw_t *bs) { return (39 - bs->leftbits) >> 3; }

int32_t spill(tavu_bsw_t *bs) {
    if (pending_bytes(bs) == CACHE_BYTES) {
        store_word(bs->cur, bs->code);
        bs->cur += CACHE_BYTES;
        bs->code = 0;
        return 0;
    }
    for (int32_t n = pending_bytes(bs); n > 0; n--) {
        *bs->cur++ = static_cast<uint8_t>(bs->code >> 24);
        bs->code <<= 8;
    }
    return 0;
}

void spill_all(tavu_bsw_t *bs) {
    bs->flush(bs);
    bs->code = 0;
    bs->leftbits = 32;
}

// Spills the cache, which already holds as many of the left-justified `bits` as fit, and caches the
// rest.
TAVU_RARE int32_t spill_and_keep(tavu_bsw_t *bs, uint32_t bits, int32_t len) {
    if (remaining(bs) < 5) return -1;  // one byte more than is written; callers rely on it
    const int32_t free_bits = bs->leftbits;
    bs->leftbits = 0;
    bs->flush(bs);
    bs->code = shift_left(bits, free_bits);
    bs->leftbits = free_bits + 32 - len;
    return 0;
}

int32_t write(tavu_bsw_t *bs, uint32_t value, int32_t len) {
    const uint32_t bits = shift_left(value, 32 - len);
    const int32_t free_bits = bs->leftbits;
    bs->code |= shift_right(bits, 32 - free_bits);
    if (free_bits <= len) return spill_and_keep(bs, bits, len);
    bs->leftbits = free_bits - len;
    return 0;
}

int32_t write1(tavu_bsw_t *bs, int32_t bit) {
    bs->leftbits--;
    bs->code |= shift_left(bit & 1, bs->leftbits);
    if (bs->leftbits != 0) return 0;
    if (remaining(bs) < 1) return -1;  // may write 3 bytes past the end; callers rely on it
    spill_all(bs);
    return 0;
}

int32_t write_ue(tavu_bsw_t *bs, uint32_t value) {
    const uint32_t x = value == UINT32_MAX ? 1 : value + 1;
    return write(bs, x, 2 * floor_log2(x) + 1);
}

// Maps 0, 1, -1, 2, -2 to 0, 1, 2, 3, 4.
uint32_t unsigned_of(int32_t value) {
    const auto twice = 2 * static_cast<uint32_t>(value);
    return value > 0 ? twice - 1 : 0 - twice;
}

int32_t size_ue(uint32_t value) { return 2 * floor_log2(value + 1) + 1; }

}  // namespace
}  // namespace tavu

using namespace tavu;

void tavu_bsw_init(tavu_bsw_t *bs, void *buf, int32_t size, tavu_bsw_flush_fn flush) {
    set_buffer(bs, static_cast<uint8_t *>(buf), size);
    bs->code = 0;
    bs->leftbits = 32;
    bs->flush = flush != nullptr ? flush : spill;
}

int32_t tavu_bsw_write1(tavu_bsw_t *bs, int32_t bit) { return write1(bs, bit); }

int32_t tavu_bsw_write(tavu_bsw_t *bs, uint32_t value, int32_t len) {
    return write(bs, value, len);
}

int32_t tavu_bsw_write_ue(tavu_bsw_t *bs, uint32_t value) { return write_ue(bs, value); }

int32_t tavu_bsw_write_se(tavu_bsw_t *bs, int32_t value) {
    return write_ue(bs, unsigned_of(value));
}

int32_t tavu_bsw_write_te(tavu_bsw_t *bs, int32_t value, int32_t range) {
    if (range < 1) return 0;
    return range == 1 ? write1(bs, 1 - value) : write_ue(bs, static_cast<uint32_t>(value));
}

int32_t tavu_bsw_sink(tavu_bsw_t *bs) {
    if (remaining(bs) <= pending_bytes(bs)) return -1;
    spill_all(bs);
    return 0;
}

int32_t tavu_bsw_deinit(tavu_bsw_t *bs) { return bs->flush(bs); }

int32_t tavu_bsw_size_ue(uint32_t value) { return size_ue(value); }

int32_t tavu_bsw_size_se(int32_t value) { return size_ue(unsigned_of(value)); }
