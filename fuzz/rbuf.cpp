// Sequences of ring buffer operations against the rules over head, tail and size.
#include "container/rbuf_model.h"
#include "input.h"
#include "tavu.h"

namespace {

// Text with line ends; zeros too.
void fill(uint8_t *text, size_t size, uint8_t kind) {
    for (size_t i = 0; i < size; i++) {
        text[i] = static_cast<uint8_t>("ab\r\n\0cd\r\nef\ng"[(i * (kind % 8 + 1) + kind / 8) % 13]);
    }
}

// One operation on both; false if the results or what they wrote to the caller differ.
bool step(tavu_rbuf_t *ring, RbufModel *m, Input *in) {
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

void check(tavu_rbuf_t *ring, const RbufModel &m) {
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
    RbufModel model{storage};
    while (!in.empty()) {
        require(step(ring, &model, &in));
        check(ring, model);
        memcpy(model.storage.data(), ring->buf, model.storage.size());
    }
    tavu_rbuf_delete(ring);
    return 0;
}
