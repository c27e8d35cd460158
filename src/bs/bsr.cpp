// Bit reader. The cache holds its bits left-justified with zeros below; the readers rely on shifts
// by 32 and by negative counts yielding 0.
#include "bs/buffer.h"
#include "simd/cpu.h"
#include "tavu.h"

namespace tavu {
namespace {

void consume(tavu_bsr_t *bs, int32_t bits) {
    bs->code = shift_left(bs->code, bits);
    bs->leftbits -= bits;
}

int32_t refill(tavu_bsr_t *bs) { return bs->flush(bs, CACHE_BYTES); }

uint32_t top_bits(uint32_t code, int32_t n) { return shift_right(code, 32 - n); }

TAVU_RARE int32_t read_across_refill(tavu_bsr_t *bs, int32_t size) {
    const uint32_t high = top_bits(bs->code, size);
    const int32_t missing = size - bs->leftbits;
    if (refill(bs) != 0) return -1;
    const uint32_t value = high | top_bits(bs->code, missing);
    consume(bs, missing);
    return static_cast<int32_t>(value);
}

int32_t read(tavu_bsr_t *bs, int32_t size) {
    const int32_t rest = bs->leftbits - size;
    if (rest < 0) return read_across_refill(bs, size);
    bs->leftbits = rest;
    const uint32_t code = bs->code;
    bs->code = shift_left(code, size);
    return static_cast<int32_t>(top_bits(code, size));
}

int32_t read1(tavu_bsr_t *bs) {
    // Only an exactly empty cache is refilled: past the end of the data this keeps returning 0.
    if (bs->leftbits == 0 && refill(bs) != 0) return -1;
    const uint32_t bit = bs->code >> 31;
    consume(bs, 1);
    return static_cast<int32_t>(bit);
}

// Tops the cache up with whole bytes. If leftbits is negative it asks for more than 4 bytes and
// ends up with zeros; callers rely on it.
void top_up(tavu_bsr_t *bs) {
    const int32_t free_bytes = (32 - bs->leftbits) >> 3;
    if (free_bytes <= 0) return;
    const uint32_t old = bs->code;
    const int32_t valid = bs->leftbits;
    bs->flush(bs, free_bytes);
    bs->code = old | shift_right(bs->code, valid);
    bs->leftbits += valid;
}

uint32_t peek(tavu_bsr_t *bs, int32_t size) {
    if (bs->leftbits < size) top_up(bs);
    uint32_t value = top_bits(bs->code, size);
    const int32_t missing = size - bs->leftbits;
    if (missing > 0 && remaining(bs) > 0) value |= shift_right(*bs->cur, 8 - missing);
    return value;
}

TAVU_RARE int32_t read_ue_across_refill(tavu_bsr_t *bs) {
    int32_t dropped = 0;  // prefix zeros that a refill dropped
    if (bs->code == 0) {
        dropped = bs->leftbits;
        refill(bs);
    }
    const int32_t zeros = count_leading_zeros(bs->code);
    if (zeros + dropped == 0) {
        consume(bs, 1);
        return 0;
    }
    const int32_t value = read(bs, 2 * zeros + 1 + dropped);
    return static_cast<int32_t>(static_cast<uint32_t>(value) - 1);
}

// Fast path: a code with at most 15 leading zeros that is completely in the cache.
int32_t read_ue(tavu_bsr_t *bs) {
    const uint32_t code = bs->code;
    if (code >> 16 == 0) return read_ue_across_refill(bs);
    const int32_t size = 2 * __builtin_clz(code) + 1;
    const int32_t rest = bs->leftbits - size;
    if (rest < 0) return read_ue_across_refill(bs);
    bs->leftbits = rest;
    bs->code = code << size;
    return static_cast<int32_t>((code >> (32 - size)) - 1);
}

// Whether a run of ones ends within the cache. The test includes the bit after the valid ones,
// which is always 0, so it fails only for 0 or 32 valid bits and for negative leftbits; callers
// rely on the resulting counts.
bool run_ends_in_cache(const tavu_bsr_t *bs) {
    return bs->leftbits != 0 && shift_right(~bs->code, 31 - bs->leftbits) != 0;
}

int32_t read_un(tavu_bsr_t *bs) {
    int32_t dropped = 0;
    if (!run_ends_in_cache(bs)) {
        dropped = bs->leftbits;
        refill(bs);
    }
    const int32_t ones = count_leading_zeros(~bs->code);
    consume(bs, ones + 1);
    return ones + dropped;
}

int32_t read_tu(tavu_bsr_t *bs, int32_t max) {
    if (max == 0) return 0;
    int32_t dropped = 0;
    if (!run_ends_in_cache(bs)) {
        if (bs->leftbits >= max) {
            consume(bs, max);
            return max;
        }
        dropped = bs->leftbits;
        refill(bs);
    }
    const int32_t ones = count_leading_zeros(~bs->code);
    if (max < ones + dropped) {
        consume(bs, max);  // does not subtract `dropped`; callers rely on it
        return max;
    }
    consume(bs, ones + 1);
    return ones + dropped;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

void tavu_bsr_init(tavu_bsr_t *bs, const void *buf, int32_t size, tavu_bsr_flush_fn flush) {
    set_buffer(bs, static_cast<const uint8_t *>(buf), size);
    bs->code = 0;
    bs->leftbits = 0;
    bs->flush = flush != nullptr ? flush : tavu_bsr_flush;
}

int32_t tavu_bsr_flush(tavu_bsr_t *bs, int32_t bytes) {
    const intptr_t left = remaining(bs);
    if (bytes == CACHE_BYTES && left >= CACHE_BYTES) {
        bs->code = load_word(bs->cur);
        bs->leftbits = 8 * CACHE_BYTES;
        bs->cur += CACHE_BYTES;
        return 0;
    }
    const int32_t n = bytes < left ? bytes : static_cast<int32_t>(left);
    bs->code = 0;
    bs->leftbits = 0;
    if (n <= 0) return -1;
    for (int32_t i = 0; i < n; i++) bs->code |= shift_left(bs->cur[i], 24 - 8 * i);
    bs->leftbits = 8 * n;
    bs->cur += n;
    return 0;
}

int32_t tavu_bsr_read(tavu_bsr_t *bs, int32_t size) { return read(bs, size); }

int32_t tavu_bsr_read1(tavu_bsr_t *bs) { return read1(bs); }

void tavu_bsr_skip(tavu_bsr_t *bs, int32_t size) {
    if (bs->leftbits < size) {
        size -= bs->leftbits;
        if (refill(bs) != 0) return;
    }
    consume(bs, size);
}

uint32_t tavu_bsr_peek(tavu_bsr_t *bs, int32_t size) { return peek(bs, size); }

uint32_t tavu_bsr_skip_peek(tavu_bsr_t *bs, int32_t skip, int32_t size) {
    if (bs->leftbits < skip) {
        skip -= bs->leftbits;
        if (refill(bs) != 0) return 0;
    }
    consume(bs, skip);
    return peek(bs, size);
}

void tavu_bsr_skip_align8(tavu_bsr_t *bs) { consume(bs, bs->leftbits & 7); }

int32_t tavu_bsr_read_align8(tavu_bsr_t *bs, int32_t *bits) {
    const int32_t n = bs->leftbits & 7;
    const uint32_t value = top_bits(bs->code, n);
    consume(bs, n);
    if (bits != nullptr) *bits = n;
    return static_cast<int32_t>(value);
}

int32_t tavu_bsr_read_ue(tavu_bsr_t *bs) { return read_ue(bs); }

int32_t tavu_bsr_read_se(tavu_bsr_t *bs) {
    const int32_t v = read_ue(bs);
    // For odd v: (v + 1) / 2. At the end of the data v is -2 and the result is +1.
    if (v & 1) return static_cast<int32_t>(static_cast<uint32_t>(v) + 1) >> 1;
    return -(v >> 1);
}

int32_t tavu_bsr_read_te(tavu_bsr_t *bs, int32_t range) {
    if (range < 1) return 0;
    return range == 1 ? 1 - read1(bs) : read_ue(bs);
}

int32_t tavu_bsr_read_un(tavu_bsr_t *bs) { return read_un(bs); }

int32_t tavu_bsr_read_tu(tavu_bsr_t *bs, int32_t max) { return read_tu(bs, max); }

int32_t tavu_bsr_clz_in_code(uint32_t code) { return count_leading_zeros(code); }
