// Positions advance by plain addition and wrap only where told, so the head may come to equal the
// size, and the tail to equal it or, behind a lone line feed in the last byte, to exceed it by one.
// There a length may be negative; nothing is moved then.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "simd/scan.h"
#include "tavu.h"

namespace tavu {
namespace {

bool is_empty(const tavu_rbuf_t *rbuf) { return rbuf->head == rbuf->tail; }

bool is_full(const tavu_rbuf_t *rbuf) {
    int32_t last = rbuf->tail - 1;  // what the head is when full, on the circle
    if (last < 0) last += rbuf->size;
    if (last == rbuf->size) last = 0;
    return rbuf->head == last;
}

// Whether the stored bytes go on at the start of the storage.
bool wraps(const tavu_rbuf_t *rbuf) { return rbuf->head < rbuf->tail; }

int32_t contiguous_fill(const tavu_rbuf_t *rbuf) {
    return (wraps(rbuf) ? rbuf->size : rbuf->head) - rbuf->tail;
}

int32_t contiguous_free(const tavu_rbuf_t *rbuf) {
    if (wraps(rbuf)) return rbuf->tail - 1 - rbuf->head;
    return rbuf->size - rbuf->head - (rbuf->tail == 0 ? 1 : 0);
}

int32_t stored(const tavu_rbuf_t *rbuf) {
    return contiguous_fill(rbuf) + (wraps(rbuf) ? rbuf->head : 0);
}

void copy(uint8_t *dst, const uint8_t *src, int32_t count) {
    if (count > 0) memcpy(dst, src, static_cast<size_t>(count));
}

int32_t advance_head(tavu_rbuf_t *rbuf, int32_t count) {
    rbuf->head += count;
    return count;
}

int32_t skip_head(tavu_rbuf_t *rbuf, int32_t count) {
    if (count < 0 || is_full(rbuf)) return 0;
    if (wraps(rbuf)) return advance_head(rbuf, std::min(count, contiguous_free(rbuf)));
    const int32_t room = rbuf->size - rbuf->head;
    if (count < room) return advance_head(rbuf, count);
    // Nothing is committed although a count is returned; callers rely on it.
    if (rbuf->tail == 0) return std::max(room - 1, 0);
    count = std::min(count, room + rbuf->tail - 1);
    rbuf->head = count - room;
    return count;
}

int32_t append(tavu_rbuf_t *rbuf, const uint8_t *src, int32_t count) {
    copy(rbuf->buf + rbuf->head, src, count);
    return advance_head(rbuf, count);
}

int32_t put(tavu_rbuf_t *rbuf, const uint8_t *src, int32_t count) {
    if (count < 0 || is_full(rbuf)) return 0;
    if (wraps(rbuf)) return count < rbuf->tail - rbuf->head ? append(rbuf, src, count) : 0;
    const int32_t room = rbuf->size - rbuf->head;
    if (count < room) return append(rbuf, src, count);
    // The head may come to equal the size, with no byte kept free; callers rely on it.
    if (rbuf->tail == 0) return count == room ? append(rbuf, src, count) : 0;
    copy(rbuf->buf + rbuf->head, src, room);
    if (rbuf->tail <= count - room) return 0;
    rbuf->head = count - room;
    copy(rbuf->buf, src + room, rbuf->head);
    return count;
}

int32_t skip_tail(tavu_rbuf_t *rbuf, int32_t count) {
    count = std::min(count, stored(rbuf));
    if (count < 0) return 0;
    const int32_t room = rbuf->size - rbuf->tail;
    if (wraps(rbuf) && count >= room) {
        rbuf->tail = count - room;
    } else {
        rbuf->tail += count;
    }
    return count;
}

int32_t get(tavu_rbuf_t *rbuf, uint8_t *dst, int32_t count) {
    const int32_t piece = contiguous_fill(rbuf);
    if (piece < 0 || count < 0) return 0;
    count = std::min(count, stored(rbuf));
    const int32_t head_piece = std::min(count, piece);
    copy(dst, rbuf->buf + rbuf->tail, head_piece);
    copy(dst + head_piece, rbuf->buf, count - head_piece);
    return skip_tail(rbuf, count);
}

// Stores a position and its length, null and 0 for a negative one.
int32_t hand_out(const tavu_rbuf_t *rbuf, int32_t at, int32_t count, uint8_t **pos, int32_t *len) {
    *pos = count < 0 ? nullptr : rbuf->buf + at;
    *len = std::max(count, 0);
    return 0;
}

// Bytes up to the first line feed or zero, itself included; all `count` if there is none.
int32_t length_of_line(const uint8_t *src, int32_t count) {
    const uint8_t *p = src, *const end = src + count;
#if TAVU_VEC
    if (count >= LANES) {
        while (p < end) {
            // The last register begins before what is left and finds nothing there again.
            if (end - p < LANES) p = end - LANES;
            const U8 v = load(p);
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

// Copies up to a line feed, which is given the carriage return that it may lack: the length of the
// result. 0 when a zero byte or the limit comes first.
int32_t copy_line(uint8_t *dst, const uint8_t *src, int32_t limit) {
    if (limit < 1) return 0;
    const int32_t len = length_of_line(src, limit);
    copy(dst, src, len);
    if (src[len - 1] != '\n') return 0;
    if (len > 1 && src[len - 2] == '\r') return len;
    dst[len - 1] = '\r';
    dst[len] = '\n';
    return len + 1;
}

// The tail moves by the length delivered, so for a lone line feed one byte too far; callers rely on
// it.
int32_t take_line(tavu_rbuf_t *rbuf, uint8_t *dst, int32_t limit) {
    const int32_t len = copy_line(dst, rbuf->buf + rbuf->tail, limit);
    if (len < 1) return 0;
    dst[len] = 0;
    rbuf->tail += len;
    return len;
}

// The rest of a line whose first `piece` bytes, up to the end of the storage, are in `dst` already.
int32_t take_line_rest(tavu_rbuf_t *rbuf, uint8_t *dst, int32_t size, int32_t piece) {
    if (rbuf->buf[rbuf->size - 1] == '\r' && rbuf->buf[0] == '\n') {
        // One byte between the line feed and the zero is not written; callers rely on the length.
        dst[piece] = '\n';
        dst[piece + 2] = 0;
        rbuf->tail = 1;
        return piece + 2;
    }
    const int32_t rest = copy_line(dst + piece, rbuf->buf, std::min(size - piece, rbuf->head));
    if (rest < 1) return 0;
    dst[piece + rest] = 0;
    rbuf->tail = rest;
    return piece + rest;
}

int32_t get_one_line(tavu_rbuf_t *rbuf, uint8_t *dst, int32_t size) {
    const int32_t piece = contiguous_fill(rbuf);
    if (piece < 0 || size < 0) return 0;
    if (!wraps(rbuf)) return take_line(rbuf, dst, std::min(size - 1, piece));
    // All bytes up to the end of the storage, whatever the size; callers rely on it.
    const int32_t len = take_line(rbuf, dst, piece);
    return len > 0 || size <= piece ? len : take_line_rest(rbuf, dst, size, piece);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_rbuf_t *tavu_rbuf_create(int32_t size) {
    if (size < 1) return nullptr;
    auto *rbuf = static_cast<tavu_rbuf_t *>(malloc(sizeof(tavu_rbuf_t)));
    if (rbuf == nullptr) return nullptr;
    // Cleared, for a tail that has passed the head delivers bytes that were never written.
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
    // One less than stored while it wraps; callers rely on it.
    return stored(rbuf) - (wraps(rbuf) ? 1 : 0);
}

int32_t tavu_rbuf_get_fillc_len(tavu_rbuf_t *rbuf) { return contiguous_fill(rbuf); }

int32_t tavu_rbuf_get_free_len(tavu_rbuf_t *rbuf) {
    if (wraps(rbuf)) return contiguous_free(rbuf);
    // Two more than can be put; callers rely on it.
    return rbuf->size + 1 - stored(rbuf);
}

int32_t tavu_rbuf_get_freec_len(tavu_rbuf_t *rbuf) { return contiguous_free(rbuf); }

int32_t tavu_rbuf_get_head(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len) {
    return hand_out(rbuf, rbuf->head, is_full(rbuf) ? -1 : contiguous_free(rbuf), pos, len);
}

int32_t tavu_rbuf_get_tail(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len) {
    return hand_out(rbuf, rbuf->tail, is_empty(rbuf) ? -1 : contiguous_fill(rbuf), pos, len);
}

int32_t tavu_rbuf_skip_head(tavu_rbuf_t *rbuf, int32_t count) { return skip_head(rbuf, count); }

int32_t tavu_rbuf_skip_tail(tavu_rbuf_t *rbuf, int32_t count) { return skip_tail(rbuf, count); }

int32_t tavu_rbuf_put(tavu_rbuf_t *rbuf, const void *src, int32_t count) {
    return put(rbuf, static_cast<const uint8_t *>(src), count);
}

int32_t tavu_rbuf_get(tavu_rbuf_t *rbuf, void *dst, int32_t count) {
    return get(rbuf, static_cast<uint8_t *>(dst), count);
}

int32_t tavu_rbuf_get_one_line(tavu_rbuf_t *rbuf, void *dst, int32_t size) {
    return get_one_line(rbuf, static_cast<uint8_t *>(dst), size);
}
