// Positions advance by plain addition. The head can reach the size, the tail can exceed it by one
// after a line feed without carriage return, and negative counts of the skip functions move both
// back, even below 0. All formulas hold in these states too, so lengths can be negative; callers
// rely on it. A position outside the storage holds no byte: copies skip it.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "simd/scan.h"
#include "tavu.h"

namespace tavu {
namespace {

uint32_t bits(int32_t value) { return static_cast<uint32_t>(value); }

// Modulo 2^32, because negative counts can move positions anywhere.
int32_t plus(int32_t a, int32_t b) { return static_cast<int32_t>(bits(a) + bits(b)); }

int32_t minus(int32_t a, int32_t b) { return static_cast<int32_t>(bits(a) - bits(b)); }

// Unsigned remainder, without a division below twice the size.
int32_t remainder(uint32_t x, int32_t size) {
    const uint32_t n = bits(size);
    return static_cast<int32_t>(x < n ? x : x - n < n ? x - n : x % n);
}

bool is_empty(const tavu_rbuf_t *rbuf) { return rbuf->head == rbuf->tail; }

bool is_full(const tavu_rbuf_t *rbuf) {
    const int32_t last = minus(rbuf->tail, 1);
    if (bits(last) < bits(rbuf->size)) return rbuf->head == last;
    return rbuf->head == remainder(bits(last) + bits(rbuf->size), rbuf->size);
}

// Whether the stored bytes continue at the start of the storage.
bool wraps(const tavu_rbuf_t *rbuf) { return rbuf->head < rbuf->tail; }

int32_t contiguous_fill(const tavu_rbuf_t *rbuf) {
    return minus(wraps(rbuf) ? rbuf->size : rbuf->head, rbuf->tail);
}

int32_t contiguous_free(const tavu_rbuf_t *rbuf) {
    if (wraps(rbuf)) return minus(rbuf->tail, plus(rbuf->head, 1));
    return minus(rbuf->size, plus(rbuf->head, rbuf->tail == 0 ? 1 : 0));
}

int32_t advance(int32_t *position, int32_t count) {
    *position = plus(*position, count);
    return count;
}

uint32_t below_zero(int32_t value) { return value < 0 ? 0 - bits(value) : 0; }

// A run of `count` bytes at position `at` of the storage and at `offset` of a caller's buffer.
struct Run {
    uint32_t at, offset, count;
};

// Drops the bytes outside the storage and those before the caller's buffer.
inline Run trim(const tavu_rbuf_t *rbuf, int32_t at, int32_t offset, int32_t count) {
    if (count < 1 || at >= rbuf->size) return {0, 0, 0};
    const uint32_t skip = std::max(below_zero(at), below_zero(offset));
    const uint32_t end = std::min(bits(count), bits(rbuf->size) - bits(at));
    return {bits(at) + skip, bits(offset) + skip, end > skip ? end - skip : 0};
}

inline void copy_in(tavu_rbuf_t *rbuf, int32_t at, const void *src, int32_t offset, int32_t count) {
    const Run run = trim(rbuf, at, offset, count);
    if (run.count == 0) return;
    memcpy(rbuf->buf + run.at, static_cast<const uint8_t *>(src) + run.offset, run.count);
}

inline void copy_out(const tavu_rbuf_t *rbuf, int32_t at, void *dst, int32_t offset,
                     int32_t count) {
    const Run run = trim(rbuf, at, offset, count);
    if (run.count == 0) return;
    memcpy(static_cast<uint8_t *>(dst) + run.offset, rbuf->buf + run.at, run.count);
}

int32_t append(tavu_rbuf_t *rbuf, const void *src, int32_t count) {
    copy_in(rbuf, rbuf->head, src, 0, count);
    return advance(&rbuf->head, count);
}

// Stores the `first` bytes that fit before the end of the storage, and the rest at its start.
__attribute__((noinline)) int32_t put_across(tavu_rbuf_t *rbuf, const void *src, int32_t first,
                                             int32_t count) {
    const int32_t rest = minus(count, first);
    copy_in(rbuf, rbuf->head, src, 0, first);
    if (rbuf->tail <= rest) return 0;
    copy_in(rbuf, 0, src, first, rest);
    rbuf->head = rest;
    return count;
}

// Consumes the last `first` bytes of the storage and those at its start, at most `count`.
int32_t skip_across(tavu_rbuf_t *rbuf, int32_t first, int32_t count) {
    count = std::min(count, plus(first, rbuf->head));
    rbuf->tail = minus(count, first);
    return count;
}

__attribute__((noinline)) int32_t get_across(tavu_rbuf_t *rbuf, void *dst, int32_t first,
                                             int32_t count) {
    copy_out(rbuf, rbuf->tail, dst, 0, first);
    count = skip_across(rbuf, first, count);
    copy_out(rbuf, 0, dst, first, rbuf->tail);
    return count;
}

// Stores a position and the number of bytes from there on; null and 0 if `none`.
int32_t report_range(const tavu_rbuf_t *rbuf, bool none, int32_t at, int32_t count, uint8_t **pos,
                     int32_t *len) {
    *pos = none ? nullptr : rbuf->buf + at;
    *len = none ? 0 : count;
    return 0;
}

// Bytes up to and including the first line feed or zero; all `count` if there is none.
int32_t length_of_line(const uint8_t *src, int32_t count) {
    const uint8_t *p = src, *const end = src + count;
#if TAVU_VEC
    if (count >= LANES) {
        while (p < end) {
            // The last load overlaps the one before, which contained neither byte.
            if (end - p < LANES) p = end - LANES;
            const U8 v = load_next(p);
            const ZeroLanes z = zero_lanes(lesser(v, v ^ '\n'));
            if (z) return static_cast<int32_t>(p - src) - LANES + first_lane(z) + 1;
        }
        return count;
    }
#endif
    while (p < end) {
        const uint8_t c = *p++;
        if (c == 0 || c == '\n') break;
    }
    return static_cast<int32_t>(p - src);
}

// Sets a byte of a caller's buffer, unless it is before the buffer.
void set(uint8_t *dst, int32_t at, uint8_t value) {
    if (at >= 0) dst[at] = value;
}

// Copies a line, adding the carriage return that its line feed may lack. Returns the length of the
// result; 0 if a zero byte, the limit or the end of the storage comes first.
int32_t copy_line(const tavu_rbuf_t *rbuf, int32_t at, uint8_t *dst, int32_t offset,
                  int32_t limit) {
    if (at < 0 || at >= rbuf->size || limit < 1) return 0;
    const uint8_t *src = rbuf->buf + at;
    const int32_t len = length_of_line(src, std::min(limit, rbuf->size - at));
    const uint32_t skip = below_zero(offset);
    if (bits(len) > skip) memcpy(dst + (bits(offset) + skip), src + skip, bits(len) - skip);
    if (src[len - 1] != '\n') return 0;
    if (len > 1 && src[len - 2] == '\r') return len;
    set(dst, offset + len - 1, '\r');
    set(dst, offset + len, '\n');
    return plus(len, 1);
}

// The tail moves by the length delivered, one byte too far if a carriage return was added; callers
// rely on it.
int32_t take_line(tavu_rbuf_t *rbuf, uint8_t *dst, int32_t limit) {
    const int32_t len = copy_line(rbuf, rbuf->tail, dst, 0, limit);
    if (len < 1) return 0;
    dst[len] = 0;
    return advance(&rbuf->tail, len);
}

// Delivers the rest of a line that wraps, after the `first` bytes at the end of the storage.
int32_t take_line_rest(tavu_rbuf_t *rbuf, uint8_t *dst, int32_t size, int32_t first) {
    if (rbuf->buf[rbuf->size - 1] == '\r' && rbuf->buf[0] == '\n') {
        // The byte between the line feed and the zero is not written; callers rely on the length.
        set(dst, first, '\n');
        set(dst, plus(first, 2), 0);
        rbuf->tail = 1;
        return plus(first, 2);
    }
    const int32_t end = std::min(size, plus(first, rbuf->head));
    const int32_t rest = copy_line(rbuf, 0, dst, first, minus(end, first));
    if (rest < 1) return 0;
    set(dst, plus(first, rest), 0);
    rbuf->tail = rest;
    return plus(first, rest);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_rbuf_t *tavu_rbuf_create(int32_t size) {
    if (size < 1) return nullptr;
    auto *rbuf = static_cast<tavu_rbuf_t *>(malloc(sizeof(tavu_rbuf_t)));
    if (rbuf == nullptr) return nullptr;
    // Cleared: a tail that has passed the head delivers bytes that were never written.
    auto *buf = static_cast<uint8_t *>(calloc(1, static_cast<size_t>(size)));
    if (buf == nullptr) {
        free(rbuf);
        return nullptr;
    }
    *rbuf = {0, 0, size, buf};
    return rbuf;
}

void tavu_rbuf_delete(tavu_rbuf_t *rbuf) {
    if (rbuf == nullptr) return;
    free(rbuf->buf);
    free(rbuf);
}

void tavu_rbuf_empty(tavu_rbuf_t *rbuf) { rbuf->tail = rbuf->head; }

int32_t tavu_rbuf_is_empty(tavu_rbuf_t *rbuf) { return is_empty(rbuf); }

int32_t tavu_rbuf_is_full(tavu_rbuf_t *rbuf) { return is_full(rbuf); }

int32_t tavu_rbuf_get_tot_len(tavu_rbuf_t *rbuf) { return rbuf->size - 1; }

int32_t tavu_rbuf_get_fill_len(tavu_rbuf_t *rbuf) {
    // One less than stored while the data wraps; callers rely on it.
    return plus(minus(rbuf->head, rbuf->tail), wraps(rbuf) ? rbuf->size - 1 : 0);
}

int32_t tavu_rbuf_get_fillc_len(tavu_rbuf_t *rbuf) { return contiguous_fill(rbuf); }

int32_t tavu_rbuf_get_free_len(tavu_rbuf_t *rbuf) {
    if (wraps(rbuf)) return contiguous_free(rbuf);
    // Two more than can be put; callers rely on it.
    return plus(minus(rbuf->tail, rbuf->head), plus(rbuf->size, 1));
}

int32_t tavu_rbuf_get_freec_len(tavu_rbuf_t *rbuf) { return contiguous_free(rbuf); }

int32_t tavu_rbuf_get_head(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len) {
    return report_range(rbuf, is_full(rbuf), rbuf->head, contiguous_free(rbuf), pos, len);
}

int32_t tavu_rbuf_get_tail(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len) {
    return report_range(rbuf, is_empty(rbuf), rbuf->tail, contiguous_fill(rbuf), pos, len);
}

int32_t tavu_rbuf_skip_head(tavu_rbuf_t *rbuf, int32_t count) {
    if (is_full(rbuf)) return 0;
    if (wraps(rbuf)) return advance(&rbuf->head, std::min(count, contiguous_free(rbuf)));
    const int32_t space = minus(rbuf->size, rbuf->head);
    if (count < space) return advance(&rbuf->head, count);
    // Nothing is committed although a count is returned; callers rely on it.
    if (rbuf->tail == 0) return std::min(count, minus(space, 1));
    rbuf->head = std::min(minus(count, space), minus(rbuf->tail, 1));
    return plus(space, rbuf->head);
}

int32_t tavu_rbuf_skip_tail(tavu_rbuf_t *rbuf, int32_t count) {
    if (is_empty(rbuf)) return 0;
    const int32_t first = contiguous_fill(rbuf);
    if (!wraps(rbuf)) return advance(&rbuf->tail, std::min(count, first));
    return count < first ? advance(&rbuf->tail, count) : skip_across(rbuf, first, count);
}

int32_t tavu_rbuf_put(tavu_rbuf_t *rbuf, const void *src, int32_t count) {
    if (count < 0 || is_full(rbuf)) return 0;
    if (wraps(rbuf)) return count < minus(rbuf->tail, rbuf->head) ? append(rbuf, src, count) : 0;
    const int32_t space = minus(rbuf->size, rbuf->head);
    if (count < space) return append(rbuf, src, count);
    if (rbuf->tail != 0) return put_across(rbuf, src, space, count);
    // The head reaches the size, and no byte stays free; callers rely on it.
    return count == space ? append(rbuf, src, count) : 0;
}

int32_t tavu_rbuf_get(tavu_rbuf_t *rbuf, void *dst, int32_t count) {
    if (count < 0 || is_empty(rbuf)) return 0;
    const int32_t first = contiguous_fill(rbuf);
    if (wraps(rbuf) && count > first) return get_across(rbuf, dst, first, count);
    const int32_t taken = std::min(count, first);
    copy_out(rbuf, rbuf->tail, dst, 0, taken);
    if (!wraps(rbuf)) return advance(&rbuf->tail, taken);
    rbuf->tail = remainder(bits(rbuf->tail) + bits(taken), rbuf->size);
    return count;
}

int32_t tavu_rbuf_get_one_line(tavu_rbuf_t *rbuf, void *dst, int32_t size) {
    if (is_empty(rbuf)) return 0;
    auto *line = static_cast<uint8_t *>(dst);
    const int32_t first = contiguous_fill(rbuf);
    if (!wraps(rbuf)) return take_line(rbuf, line, std::min(std::max(size, 1) - 1, first));
    // A line may end before the end of the storage whatever the size; callers rely on it.
    const int32_t len = take_line(rbuf, line, first);
    return len > 0 || size <= first ? len : take_line_rest(rbuf, line, size, first);
}
