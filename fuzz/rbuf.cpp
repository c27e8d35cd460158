// Sequences of ring buffer operations against the rules over head, tail and size.
#include <vector>

#include "input.h"
#include "tavu.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The rules over head, tail and size. Outcomes below 0 are refused.
struct Model {
    int s;
    Bytes storage = Bytes(static_cast<size_t>(s));
    int h = 0, t = 0;

    bool full() const { return h == (t + s - 1) % s; }
    uint8_t &byte(int i) { return storage[static_cast<size_t>(i % s)]; }
    int put(const Bytes &src, int n) {
        const int room = s - h;
        const bool fits = h < t ? n < t - h : n - room < t || (t == 0 && n == room);
        if (full() || n < 0 || (!fits && (h < t || t == 0))) return 0;
        for (int i = 0; i < (fits ? n : room); i++) byte(h + i) = src[static_cast<size_t>(i)];
        if (fits) h = h < t || t == 0 || n < room ? h + n : n - room;
        return fits ? n : 0;
    }
    int skip_head(int n) {
        const int k = std::min(n, h < t ? t - 1 - h : s - h + t - 1);
        if (full() || k < 0) return 0;
        if (t != 0 || n < s - h) h = h < t || h + k < s ? h + k : h + k - s;
        return k;
    }
    int get(uint8_t *dst, int n) { return t > s ? 0 : skip_tail(n, dst); }
    int skip_tail(int n, uint8_t *dst = nullptr) {
        const int k = std::min(n, h < t ? s - t + h : h - t);
        if (k < 0) return 0;
        for (int i = 0; dst != nullptr && i < k; i++) dst[i] = byte(t + i);
        t = h >= t || t + k < s ? t + k : t + k - s;
        return k;
    }
    int line(uint8_t *dst, int from, int limit) {
        for (int i = 0; i < limit; i++) {
            dst[i] = byte(from + i);
            if (dst[i] == '\0') return 0;
            const int complete = i > 0 && dst[i - 1] == '\r';
            if (dst[i] != '\n') continue;
            memcpy(dst + i - complete, "\r\n", 2);
            return i + 2 - complete;
        }
        return 0;
    }
    int get_one_line(uint8_t *dst, int size) {
        const int piece = s - t;
        if (size < 0 || piece < 0) return 0;
        int n = line(dst, t, h < t ? piece : std::min(size - 1, h - t)), to = t + n;
        if (n == 0 && h < t && size > piece) {
            const bool split = storage.back() == '\r' && storage[0] == '\n';
            if (split) dst[piece] = '\n';
            to = split ? 1 : line(dst + piece, 0, std::min(size - piece, h));
            n = to == 0 ? 0 : piece + to + (split ? 1 : 0);
        }
        if (n == 0) return 0;
        dst[n] = 0;
        t = to;
        return n;
    }
};

// Text with line ends; zeros too.
void fill(uint8_t *text, size_t size, uint8_t kind) {
    for (size_t i = 0; i < size; i++) {
        text[i] = static_cast<uint8_t>("ab\r\n\0cd\r\nef\ng"[(i * (kind % 8 + 1) + kind / 8) % 13]);
    }
}

// One operation on both; false if the results or what they wrote to the caller differ.
bool step(tavu_rbuf_t *ring, Model *m, Input *in) {
    const int op = in->byte(), n = in->range(-1, m->s + 3);
    Bytes src(static_cast<size_t>(std::max(n, 0)));
    // Room for `n` bytes, for a line as the header states it.
    const bool wraps = m->h < m->t;
    const int line = std::max(std::max(n, 0) + 2, wraps ? m->s - m->t + 3 : 0);
    const Block dst(op % 8 == 4 ? static_cast<size_t>(line) : src.size());
    Bytes wanted(static_cast<size_t>(m->s + n + 4), dst.size() > 0 ? *dst.data() : 0);
    const auto same = [&](int got, int want) {
        return got == want && memcmp(dst.data(), wanted.data(), dst.size()) == 0;
    };
    switch (op % 8) {
        case 0: m->t = m->h; return tavu_rbuf_empty(ring), true;
        case 1: return same(tavu_rbuf_get(ring, dst.data(), n), m->get(wanted.data(), n));
        case 2: return tavu_rbuf_skip_head(ring, n) == m->skip_head(n);
        case 3: return tavu_rbuf_skip_tail(ring, n) == m->skip_tail(n);
        case 4:
            return same(tavu_rbuf_get_one_line(ring, dst.data(), n),
                        m->get_one_line(wanted.data(), n));
        default: break;
    }
    fill(src.data(), src.size(), in->byte());
    const Block exact(src.data(), src.size());
    return tavu_rbuf_put(ring, exact.data(), n) == m->put(src, n);
}

void check(tavu_rbuf_t *ring, const Model &m) {
    const bool wraps = m.h < m.t;
    const int fill = wraps ? m.s - m.t : m.h - m.t;
    const int free = wraps ? m.t - 1 - m.h : m.s - m.h - (m.t == 0 ? 1 : 0);
    require(ring->head == m.h && ring->tail == m.t);
    require(memcmp(ring->buf, m.storage.data(), m.storage.size()) == 0);
    require(tavu_rbuf_is_empty(ring) == (m.h == m.t) && tavu_rbuf_is_full(ring) == m.full());
    require(tavu_rbuf_get_fillc_len(ring) == fill && tavu_rbuf_get_freec_len(ring) == free);
    uint8_t *at;
    int32_t len;
    tavu_rbuf_get_head(ring, &at, &len);
    require(m.full() || free < 0 ? at == nullptr && len == 0
                                 : at == ring->buf + m.h && len == free);
    // Whoever writes in place writes all of it.
    if (len > 0) at[0] = at[len - 1];
    tavu_rbuf_get_tail(ring, &at, &len);
    require(m.h == m.t || fill < 0 ? at == nullptr : at == ring->buf + m.t && len == fill);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const int small = in.range(1, 60), storage = small < 50 ? small % 12 + 1 : (small - 49) * 20;
    tavu_rbuf_t *ring = tavu_rbuf_create(storage);
    Model model{storage};
    while (!in.empty()) {
        require(step(ring, &model, &in));
        check(ring, model);
        memcpy(model.storage.data(), ring->buf, model.storage.size());
    }
    tavu_rbuf_delete(ring);
    return 0;
}
