// A bit-by-bit model of the bit reader, and a reader with a custom refill. Also used by fuzzing.
#ifndef TAVU_TESTS_BSR_MODEL_H
#define TAVU_TESTS_BSR_MODEL_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "bits.h"
#include "tavu.h"
#include "values.h"

// The most bytes that each of four refills may load, in turn.
using Loads = std::array<uint8_t, 4>;

// A reader whose refill loads at most `loads` bytes, and fails with a positive code.
struct ShortReader : tavu_bsr_t {
    ShortReader(const uint8_t *data, int32_t bytes, const Loads &most) : loads(most) {
        tavu_bsr_init(this, data, bytes, refill);
    }
    static int32_t refill(tavu_bsr_t *bs, int32_t bytes) {
        auto *self = static_cast<ShortReader *>(bs);
        self->asked = bytes;
        const int32_t most = self->loads[self->refills++ % 4];
        const int32_t status = tavu_bsr_flush(bs, std::min(bytes, most));
        if (status != 0) self->ended = true;
        return -status;
    }
    Loads loads;
    unsigned refills = 0;
    int32_t asked = 0;  // bytes requested by the last call of refill
    bool ended = false;
};

struct ReaderModel {
    const uint8_t *data;
    int size;
    const Loads *loads;  // null for the default refill
    CacheBits cache{};
    int left = 0, loaded = 0, asked = 0;  // bits in the cache; bytes loaded, and last requested
    unsigned refills = 0;

    bool refill(int bytes) {
        asked = bytes;
        const int most = loads != nullptr ? (*loads)[refills++ % 4] : bytes;
        const int n = std::min({bytes, most, size - loaded});
        cache = {};
        for (int i = 0; i < std::min(8 * n, 32); i++) {
            if ((data[loaded + i / 8] >> (7 - i % 8) & 1) != 0) cache.set(i);
        }
        left = 8 * n;
        loaded += n;
        return n > 0;
    }
    void drop(int n) {
        cache.drop(n);
        left -= n;
    }
    uint32_t take(int n) {
        const uint32_t value = cache.top(n);
        drop(n);
        return value;
    }
    uint32_t read(int n) {
        if (left >= n) return take(n);
        const uint32_t high = cache.top(n);
        const int missing = n - left;
        return refill(4) ? high | take(missing) : UINT32_MAX;
    }
    uint32_t read1() { return left != 0 || refill(4) ? take(1) : UINT32_MAX; }
    bool skip(int n) {
        const int missing = n - left;
        if (missing > 0 && !refill(4)) return false;
        drop(missing > 0 ? missing : n);
        return true;
    }
    void top_up() {
        const CacheBits old = cache;
        const int valid = left, free_bytes = (32 - left) >> 3;
        if (free_bytes <= 0) return;
        refill(free_bytes);
        cache.bits = old.bits | cache.bits >> (valid & 0xFF);
        left += valid;
    }
    uint32_t peek(int n) {
        if (left < n) top_up();
        const int missing = n - left, unread = (8 - missing) & 0xFF;
        const bool borrows = missing > 0 && loaded < size && unread < 8;
        return cache.top(n) | (borrows ? uint32_t{data[loaded]} >> unread : 0);
    }
    uint32_t read_ue() {
        int dropped = 0;
        if (cache.top(32) == 0) {
            dropped = left;
            refill(4);
        }
        const int zeros = cache.run(false);
        if (zeros + dropped != 0) return read(2 * zeros + 1 + dropped) - 1;
        drop(1);
        return 0;
    }
    uint32_t read_se() {
        const uint32_t v = read_ue();
        const auto half = static_cast<uint32_t>(static_cast<int32_t>(v + v % 2) >> 1);
        return v % 2 != 0 ? half : 0 - half;
    }
    uint32_t read_te(int range) { return range < 1 ? 0 : range > 1 ? read_ue() : 1 - read1(); }
    // Whether any of the valid bits and the one after them is 0.
    bool run_ends() const { return left != 0 && CacheBits{~cache.bits}.top(left + 1) != 0; }
    uint32_t read_tu(int most) {
        int dropped = 0;
        if (most == 0) return 0;
        if (!run_ends()) {
            if (left >= most) return drop(most), static_cast<uint32_t>(most);
            dropped = left;
            refill(4);
        }
        const int ones = cache.run(true);
        const bool more = most < ones + dropped;
        drop(more ? most : ones + 1);
        return static_cast<uint32_t>(more ? most : ones + dropped);
    }
};

enum { READ1, PEEK, SKIP, SKIP_PEEK, UN, READ_ALIGN8, UE, SE, TU, TE, ALIGN8, READ };
constexpr int READER_OPERATIONS = READ + 1;

// The value that read_align8() returns by pointer becomes part of the result.
inline uint32_t operate(tavu_bsr_t *r, int op, int n, int most) {
    int32_t result = 0, bits = 0;
    switch (op) {
        case READ1: result = tavu_bsr_read1(r); break;
        case PEEK: return tavu_bsr_peek(r, n);
        case SKIP: tavu_bsr_skip(r, n); break;
        case SKIP_PEEK: return tavu_bsr_skip_peek(r, most, n);
        case UN: result = tavu_bsr_read_un(r); break;
        case READ_ALIGN8: result = tavu_bsr_read_align8(r, n % 2 != 0 ? nullptr : &bits); break;
        case UE: result = tavu_bsr_read_ue(r); break;
        case SE: result = tavu_bsr_read_se(r); break;
        case TU: result = tavu_bsr_read_tu(r, 2 * n); break;
        case TE: result = tavu_bsr_read_te(r, most % 3); break;
        case ALIGN8: tavu_bsr_skip_align8(r); break;
        default: result = tavu_bsr_read(r, n);
    }
    return static_cast<uint32_t>(result + 256 * bits);
}

inline uint32_t operate(ReaderModel *m, int op, int n, int most) {
    const int align = m->left & 7;
    switch (op) {
        case READ1: return m->read1();
        case PEEK: return m->peek(n);
        case SKIP: return m->skip(n), 0;
        case SKIP_PEEK: return m->skip(most) ? m->peek(n) : 0;
        case UN: return m->read_tu(INT32_MAX);
        case READ_ALIGN8:
            return m->take(align) + static_cast<uint32_t>(n % 2 != 0 ? 0 : 256 * align);
        case UE: return m->read_ue();
        case SE: return m->read_se();
        case TU: return m->read_tu(2 * n);
        case TE: return m->read_te(most % 3);
        case ALIGN8: return m->drop(align), 0;
        default: return m->read(n);
    }
}

// Runs one operation on both; returns whether the results and the records are equal.
inline bool step(tavu_bsr_t *r, ReaderModel *m, int op, int n, int most) {
    const uint32_t got = operate(r, op, n, most), wanted = operate(m, op, n, most);
    return got == wanted && r->leftbits == m->left && r->code == m->cache.top(32) &&
           r->cur - r->beg == m->loaded && r->size == m->size;
}

// Compares any calls on any data, with the default refill and with one that loads less.
inline bool reader_equals_model(Input in) {
    const uint8_t start = in.byte();
    const auto [content, length] = in.bytes(start % size_t{40});
    Loads loads{4, 4, 4, 4};
    const bool own = start >= 120;
    const auto load = [&in] { return static_cast<uint8_t>(in.byte() % 5); };
    if (start >= 160) loads = {load(), load(), load(), load()};
    const std::vector<uint8_t> copy(content, content + length);  // for sanitizers to watch
    const auto bytes = static_cast<int32_t>(length);
    ShortReader r(copy.data(), bytes, loads);
    if (!own) tavu_bsr_init(&r, copy.data(), bytes, nullptr);
    ReaderModel m{copy.data(), bytes, own ? &loads : nullptr};
    while (!in.empty()) {
        const int op = in.byte() % READER_OPERATIONS, n = in.range(0, 32), most = in.range(0, 32);
        const int at_most = m.left < 0 ? INT32_MAX : 7;  // bytes asked for, unless bits are owed
        m.asked = r.asked = 0;
        if (!step(&r, &m, op, n, most) || m.asked > at_most) return false;
        if (own && (r.asked != m.asked || r.refills != m.refills)) return false;
    }
    return true;
}

#endif
