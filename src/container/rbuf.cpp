// Positions advance by plain addition. The head can reach the size, the tail can exceed it by one after
// a line feed without carriage return, and negative counts of the skip functions move both back, even
// below 0. All formulas hold in these states too, so lengths can be negative; callers rely on it. A
// position outside the storage holds no byte: copies leave it out.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "simd/scan.h"
#include "tavu.h"

namespace tavu {
namespace {

using Int = int64_t;  // holds every sum of positions, lengths and counts

bool is_empty(const tavu_rbuf_t *rbuf) { return rbuf->head == rbuf->tail; }

// Unsigned remainder, without a division below twice the size.
int32_t remainder(uint32_t x, int32_t size) {
    const auto n = static_cast<uint32_t>(size);
    return static_cast<int32_t>(x < n ? x : x - n < n ? x - n : x % n);
}

bool is_full(const tavu_rbuf_t *rbuf) {
    const uint32_t end = static_cast<uint32_t>(rbuf->tail) + static_cast<uint32_t>(rbuf->size);
    return rbuf->head == remainder(end - 1, rbuf->size);
}

// Whether the stored bytes continue at the start of the storage.
bool wraps(const tavu_rbuf_t *rbuf) { return rbuf->head < rbuf->tail; }

Int contiguous_fill(const tavu_rbuf_t *rbuf) {
    return Int{wraps(rbuf) ? rbuf->size : rbuf->head} - rbuf->tail;
}

Int contiguous_free(const tavu_rbuf_t *rbuf) {
    if (wraps(rbuf)) return Int{rbuf->tail} - 1 - rbuf->head;
    return Int{rbuf->size} - rbuf->head - (rbuf->tail == 0 ? 1 : 0);
}

int32_t narrow(Int value) { return static_cast<int32_t>(value); }

int32_t advance(int32_t *position, Int count) {
    *position = narrow(*position + count);
    return narrow(count);
}

// A piece of `count` bytes at storage position `at` and at `offset` of a caller's buffer, less the
// bytes outside the storage and those before the buffer.
struct Piece {
    Piece(const tavu_rbuf_t *rbuf, Int at, Int offset, Int wanted)
        : skip(std::max(Int{0}, std::max(-at, -offset))),
          count(std::min(wanted, rbuf->size - at) - skip) {}
    Int skip, count;
};

void copy_in(tavu_rbuf_t *rbuf, Int at, const void *src, Int offset, Int count) {
    const Piece piece(rbuf, at, offset, count);
    if (piece.count < 1) return;
    memcpy(rbuf->buf + at + piece.skip, static_cast<const uint8_t *>(src) + offset + piece.skip,
           static_cast<size_t>(piece.count));
}

void copy_out(const tavu_rbuf_t *rbuf, Int at, void *dst, Int offset, Int count) {
    const Piece piece(rbuf, at, offset, count);
    if (piece.count < 1) return;
    memcpy(static_cast<uint8_t *>(dst) + offset + piece.skip, rbuf->buf + at + piece.skip,
           static_cast<size_t>(piece.count));
}

int32_t append(tavu_rbuf_t *rbuf, const void *src, Int count) {
    copy_in(rbuf, rbuf->head, src, 0, count);
    return advance(&rbuf->head, count);
}

// Stores `piece` bytes up to the end of the storage and `rest` at its start.
__attribute__((noinline)) int32_t put_across(tavu_rbuf_t *rbuf, const void *src, Int piece,
                                             Int rest) {
    copy_in(rbuf, rbuf->head, src, 0, piece);
    if (rbuf->tail <= rest) return 0;
    copy_in(rbuf, 0, src, piece, rest);
    rbuf->head = narrow(rest);
    return narrow(piece + rest);
}

// Consumes `piece` bytes up to the end of the storage and up to `rest` from its start.
int32_t skip_across(tavu_rbuf_t *rbuf, Int piece, Int rest) {
    rbuf->tail = narrow(std::min<Int>(rest, rbuf->head));
    return narrow(piece + rbuf->tail);
}

__attribute__((noinline)) int32_t get_across(tavu_rbuf_t *rbuf, void *dst, Int piece, Int rest) {
    copy_out(rbuf, rbuf->tail, dst, 0, piece);
    copy_out(rbuf, 0, dst, piece, std::min<Int>(rest, rbuf->head));
    return skip_across(rbuf, piece, rest);
}

// Stores a position and the bytes from there on; null and 0 if there are `none`.
int32_t hand_out(const tavu_rbuf_t *rbuf, bool none, int32_t at, Int count, uint8_t **pos,
                 int32_t *len) {
    *pos = none ? nullptr : rbuf->buf + at;
    *len = none ? 0 : narrow(count);
    return 0;
}

// Bytes up to and including the first line feed or zero; all `count` if there is none.
Int length_of_line(const uint8_t *src, Int count) {
    const uint8_t *p = src, *const end = src + count;
#if TAVU_VEC
    if (count >= LANES) {
        while (p < end) {
            // The last register overlaps the one before, which held neither.
            if (end - p < LANES) p = end - LANES;
            const U8 v = load(p);
            const ZeroLanes z = zero_lanes(lesser(v, v ^ '\n'));
            if (z) return p - src - LANES + first_lane(z) + 1;
        }
        return count;
    }
#endif
    while (p < end) {
        const uint8_t c = *p++;
        if (c == 0 || c == '\n') break;
    }
    return p - src;
}

// Sets a byte of a caller's buffer, unless it is before the buffer.
void set(uint8_t *dst, Int at, uint8_t value) {
    if (at >= 0) dst[at] = value;
}

// Copies a line, adding the carriage return that its line feed may lack. Returns the length of the
// result; 0 if a zero byte, the limit or the end of the storage comes first.
Int copy_line(const tavu_rbuf_t *rbuf, Int at, uint8_t *dst, Int offset, Int limit) {
    limit = std::min(limit, rbuf->size - at);
    if (at < 0 || limit < 1) return 0;
    const uint8_t *src = rbuf->buf + at;
    const Int len = length_of_line(src, limit);
    copy_out(rbuf, at, dst, offset, len);
    if (src[len - 1] != '\n') return 0;
    if (len > 1 && src[len - 2] == '\r') return len;
    set(dst, offset + len - 1, '\r');
    set(dst, offset + len, '\n');
    return len + 1;
}

// The tail moves by the length delivered, one byte too far if a carriage return was added; callers
// rely on it.
int32_t take_line(tavu_rbuf_t *rbuf, uint8_t *dst, Int limit) {
    const Int len = copy_line(rbuf, rbuf->tail, dst, 0, limit);
    if (len < 1) return 0;
    dst[len] = 0;
    return advance(&rbuf->tail, len);
}

// Delivers the rest of a line whose first `piece` bytes, up to the end of the storage, are in `dst`.
int32_t take_line_rest(tavu_rbuf_t *rbuf, uint8_t *dst, Int size, Int piece) {
    if (rbuf->buf[rbuf->size - 1] == '\r' && rbuf->buf[0] == '\n') {
        // The byte between the line feed and the zero is not written; callers rely on the length.
        set(dst, piece, '\n');
        set(dst, piece + 2, 0);
        rbuf->tail = 1;
        return narrow(piece + 2);
    }
    const Int rest = copy_line(rbuf, 0, dst, piece, std::min<Int>(size - piece, rbuf->head));
    if (rest < 1) return 0;
    set(dst, piece + rest, 0);
    rbuf->tail = narrow(rest);
    return narrow(piece + rest);
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
    const Int wrapped = wraps(rbuf) ? Int{rbuf->size} - 1 : 0;
    return narrow(wrapped + rbuf->head - rbuf->tail);
}

int32_t tavu_rbuf_get_fillc_len(tavu_rbuf_t *rbuf) { return narrow(contiguous_fill(rbuf)); }

int32_t tavu_rbuf_get_free_len(tavu_rbuf_t *rbuf) {
    if (wraps(rbuf)) return narrow(contiguous_free(rbuf));
    // Two more than can be put; callers rely on it.
    return narrow(Int{rbuf->tail} + rbuf->size + 1 - rbuf->head);
}

int32_t tavu_rbuf_get_freec_len(tavu_rbuf_t *rbuf) { return narrow(contiguous_free(rbuf)); }

int32_t tavu_rbuf_get_head(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len) {
    return hand_out(rbuf, is_full(rbuf), rbuf->head, contiguous_free(rbuf), pos, len);
}

int32_t tavu_rbuf_get_tail(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len) {
    return hand_out(rbuf, is_empty(rbuf), rbuf->tail, contiguous_fill(rbuf), pos, len);
}

int32_t tavu_rbuf_skip_head(tavu_rbuf_t *rbuf, int32_t count) {
    if (is_full(rbuf)) return 0;
    if (wraps(rbuf)) return advance(&rbuf->head, std::min<Int>(count, contiguous_free(rbuf)));
    const Int space = Int{rbuf->size} - rbuf->head;
    if (count < space) return advance(&rbuf->head, count);
    // Nothing is committed although a count is returned; callers rely on it.
    if (rbuf->tail == 0) return narrow(std::min<Int>(count, space - 1));
    const Int rest = std::min(count - space, Int{rbuf->tail} - 1);
    rbuf->head = narrow(rest);
    return narrow(space + rest);
}

int32_t tavu_rbuf_skip_tail(tavu_rbuf_t *rbuf, int32_t count) {
    if (is_empty(rbuf)) return 0;
    const Int piece = contiguous_fill(rbuf);
    if (!wraps(rbuf)) return advance(&rbuf->tail, std::min<Int>(count, piece));
    return count < piece ? advance(&rbuf->tail, count) : skip_across(rbuf, piece, count - piece);
}

int32_t tavu_rbuf_put(tavu_rbuf_t *rbuf, const void *src, int32_t count) {
    if (count < 0 || is_full(rbuf)) return 0;
    if (wraps(rbuf)) return count < Int{rbuf->tail} - rbuf->head ? append(rbuf, src, count) : 0;
    const Int space = Int{rbuf->size} - rbuf->head, rest = count - space;
    if (rest < 0) return append(rbuf, src, count);
    // The head reaches the size, and no byte stays free; callers rely on it.
    if (rbuf->tail == 0) return rest == 0 ? append(rbuf, src, count) : 0;
    return put_across(rbuf, src, space, rest);
}

int32_t tavu_rbuf_get(tavu_rbuf_t *rbuf, void *dst, int32_t count) {
    if (count < 0 || is_empty(rbuf)) return 0;
    const Int piece = contiguous_fill(rbuf);
    if (wraps(rbuf) && count > piece) return get_across(rbuf, dst, piece, count - piece);
    const Int taken = std::min<Int>(count, piece);
    copy_out(rbuf, rbuf->tail, dst, 0, taken);
    if (!wraps(rbuf)) return advance(&rbuf->tail, taken);
    rbuf->tail = remainder(static_cast<uint32_t>(rbuf->tail + taken), rbuf->size);
    return count;
}

int32_t tavu_rbuf_get_one_line(tavu_rbuf_t *rbuf, void *dst, int32_t size) {
    if (is_empty(rbuf)) return 0;
    auto *line = static_cast<uint8_t *>(dst);
    const Int piece = contiguous_fill(rbuf);
    if (!wraps(rbuf)) return take_line(rbuf, line, std::min(Int{size} - 1, piece));
    // A line may end before the end of the storage whatever the size; callers rely on it.
    const int32_t len = take_line(rbuf, line, piece);
    return len > 0 || size <= piece ? len : take_line_rest(rbuf, line, size, piece);
}
