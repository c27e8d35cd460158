// A byte-by-byte model of the ring buffer, over memory in which bytes can be missing: those outside
// the storage and those before the caller's buffer.
#ifndef TAVU_TESTS_CONTAINER_RING_MODEL_H
#define TAVU_TESTS_CONTAINER_RING_MODEL_H

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "tavu.h"
#include "values.h"

enum class RingOp { EMPTY, GET, SKIP_HEAD, SKIP_TAIL, LINE, PUT };

// Bytes at positions 0 to size - 1, with a margin on both sides that must not be written.
class RingMemory {
  public:
    static constexpr int64_t NONE = -1, MARGIN = 8;

    explicit RingMemory(int64_t size) : bytes_(static_cast<size_t>(size + 2 * MARGIN), 0xA5) {}
    explicit RingMemory(const std::vector<uint8_t> &content)
        : RingMemory(static_cast<int64_t>(content.size())) {
        std::copy(content.begin(), content.end(), data());
    }
    int64_t size() const { return static_cast<int64_t>(bytes_.size()) - 2 * MARGIN; }
    uint8_t *data() { return bytes_.data() + MARGIN; }
    bool operator==(const RingMemory &other) const { return bytes_ == other.bytes_; }

    int64_t read(int64_t at) const {
        return at < 0 || at >= size() ? NONE : bytes_[static_cast<size_t>(at + MARGIN)];
    }
    void write(int64_t at, int64_t byte) {
        beyond_ = beyond_ || at >= size();
        if (at >= 0 && at < size() && byte != NONE) data()[at] = static_cast<uint8_t>(byte);
    }
    bool written_beyond() const { return beyond_; }
    void copy(int64_t to, const RingMemory &src, int64_t from, int64_t count) {
        for (int64_t i = 0; i < count; i++) write(to + i, src.read(from + i));
    }

  private:
    std::vector<uint8_t> bytes_;
    bool beyond_ = false;
};

struct RingModel {
    explicit RingModel(size_t size)
        : s(static_cast<int64_t>(size)), storage(std::vector<uint8_t>(size)) {}

    bool empty() const { return h == t; }
    bool full() const { return h == mod(t + s - 1); }
    int64_t fill_len() const { return h >= t ? h - t : h + s - 1 - t; }
    int64_t fillc_len() const { return h >= t ? h - t : s - t; }
    int64_t free_len() const { return h >= t ? t + s + 1 - h : t - 1 - h; }
    int64_t freec_len() const { return h < t ? t - 1 - h : t != 0 ? s - h : s - 1 - h; }

    int64_t skip_head(int64_t n) {
        if (full()) return 0;
        const int64_t space = s - h;
        if (h < t) return advance(&h, std::min(n, t - 1 - h));
        if (n < space) return advance(&h, n);
        if (t == 0) return std::min(n, space - 1);
        h = n - space < t ? n - space : t - 1;
        return space + h;
    }

    int64_t skip_tail(int64_t n) {
        if (empty()) return 0;
        const int64_t space = s - t;
        if (h > t) return advance(&t, std::min(n, h - t));
        if (n < space) return advance(&t, n);
        t = std::min(n - space, h);
        return space + t;
    }

    int64_t put(const RingMemory &src, int64_t n) {
        if (n < 0 || full()) return 0;
        const int64_t space = s - h;
        if (h < t ? t - h > n : n < space || (t == 0 && n == space)) {
            storage.copy(h, src, 0, n);
            return advance(&h, n);
        }
        if (h < t || t == 0) return 0;
        storage.copy(h, src, 0, space);
        if (t <= n - space) return 0;
        h = n - space;
        storage.copy(0, src, space, h);
        return n;
    }

    int64_t get(RingMemory *dst, int64_t n) {
        if (n < 0 || empty()) return 0;
        const int64_t first = h > t ? h - t : s - t, k = std::min(n, first);
        dst->copy(0, storage, t, k);
        if (h > t) return advance(&t, k);
        if (n <= first) {
            t = mod(t + n);
            return n;
        }
        t = std::min(n - first, h);
        dst->copy(first, storage, 0, t);
        return first + t;
    }

    int64_t get_one_line(RingMemory *dst, int64_t z) {
        if (empty()) return 0;
        const int64_t first = s - t;
        const int64_t n = copy_line(dst, 0, t, h > t ? std::min(z - 1, h - t) : first);
        if (n > 0) return finish_line(dst, n, t + n);
        if (h > t || z <= first) return 0;
        if (storage.read(s - 1) == '\r' && storage.read(0) == '\n') {
            dst->write(first, '\n');
            return finish_line(dst, first + 2, 1);
        }
        const int64_t m = copy_line(dst, first, 0, std::min(z - first, h));
        return m > 0 ? finish_line(dst, first + m, m) : 0;
    }

    int64_t s, h = 0, t = 0;
    RingMemory storage;

  private:
    int64_t mod(int64_t position) const { return static_cast<uint32_t>(position) % s; }

    static int64_t advance(int64_t *position, int64_t n) {
        *position += n;
        return n;
    }

    int64_t copy_line(RingMemory *dst, int64_t to, int64_t from, int64_t m) const {
        for (int64_t i = 0; i < m; i++) {
            const int64_t byte = storage.read(from + i);
            dst->write(to + i, byte);
            if (byte == RingMemory::NONE || byte == 0) return 0;
            if (byte != '\n') continue;
            if (i > 0 && storage.read(from + i - 1) == '\r') return i + 1;
            dst->write(to + i, '\r');
            dst->write(to + i + 1, '\n');
            return i + 2;
        }
        return 0;
    }
    int64_t finish_line(RingMemory *dst, int64_t length, int64_t tail) {
        dst->write(length, 0);
        t = tail;
        return length;
    }
};

// A ring buffer and its model.
class RingPair {
  public:
    explicit RingPair(int32_t size)
        : model(static_cast<size_t>(size)), ring_(tavu_rbuf_create(size), tavu_rbuf_delete) {}

    void set(int32_t head, int32_t tail, const std::vector<uint8_t> &storage) {
        model.h = ring_->head = head;
        model.t = ring_->tail = tail;
        std::copy(storage.begin(), storage.end(), ring_->buf);
        model.storage = RingMemory(storage);
    }

    // One operation on both; false if they differ in the result, in the state, or in the bytes that
    // they write to a buffer of the size that the header requires.
    bool step(RingOp op, int32_t n, const std::vector<uint8_t> &src = {}) {
        RingMemory ours(target_size(op, n)), wanted = ours;
        const auto [result, right] = run(op, n, src, ours.data(), &wanted);
        model.h = narrow(model.h);
        model.t = narrow(model.t);
        return result == narrow(right) && ours == wanted && !wanted.written_beyond() &&
               same_state();
    }

    // Fills the free bytes at the head in place, without tavu_rbuf_put().
    void write_in_place() {
        uint8_t *at;
        int32_t len;
        tavu_rbuf_get_head(ring_.get(), &at, &len);
        for (int64_t i = 0; i < len; i++) {
            if (model.storage.read(model.h + i) == RingMemory::NONE) continue;
            model.storage.write(model.h + i, '+');
            at[i] = '+';
        }
    }

    RingModel model;

  private:
    // Positions and results have 32 bits.
    static int32_t narrow(int64_t value) { return static_cast<int32_t>(value); }

    // The size that the header requires of a destination, which exceeds any result.
    int64_t target_size(RingOp op, int64_t n) const {
        const int64_t wanted = std::clamp<int64_t>(n, 0, 2 * model.s + 8);
        if (op == RingOp::GET) return wanted;
        return op == RingOp::LINE ? std::max(wanted, model.h < model.t ? model.s - model.t : 0) + 2
                                  : 0;
    }

    // Results of the operation on the ring and on the model.
    std::pair<int32_t, int64_t> run(RingOp op, int32_t n, const std::vector<uint8_t> &src,
                                    uint8_t *dst, RingMemory *model_dst) {
        tavu_rbuf_t *ring = ring_.get();
        switch (op) {
            case RingOp::GET: return {tavu_rbuf_get(ring, dst, n), model.get(model_dst, n)};
            case RingOp::LINE:
                return {tavu_rbuf_get_one_line(ring, dst, n), model.get_one_line(model_dst, n)};
            case RingOp::PUT:
                return {tavu_rbuf_put(ring, src.data(), n), model.put(RingMemory(src), n)};
            case RingOp::SKIP_HEAD: return {tavu_rbuf_skip_head(ring, n), model.skip_head(n)};
            case RingOp::SKIP_TAIL: return {tavu_rbuf_skip_tail(ring, n), model.skip_tail(n)};
            default:
                tavu_rbuf_empty(ring);
                model.t = model.h;
                return {0, 0};
        }
    }

    bool same_state() {
        tavu_rbuf_t *r = ring_.get();
        return r->head == model.h && r->tail == model.t &&
               std::equal(r->buf, r->buf + model.s, model.storage.data()) &&
               tavu_rbuf_is_empty(r) == model.empty() && tavu_rbuf_is_full(r) == model.full() &&
               tavu_rbuf_get_tot_len(r) == model.s - 1 &&
               tavu_rbuf_get_fill_len(r) == narrow(model.fill_len()) &&
               tavu_rbuf_get_fillc_len(r) == narrow(model.fillc_len()) &&
               tavu_rbuf_get_free_len(r) == narrow(model.free_len()) &&
               tavu_rbuf_get_freec_len(r) == narrow(model.freec_len()) &&
               same_place(tavu_rbuf_get_head, model.full(), model.h, model.freec_len()) &&
               same_place(tavu_rbuf_get_tail, model.empty(), model.t, model.fillc_len());
    }

    template <class Get>
    bool same_place(Get get, bool none, int64_t position, int64_t length) const {
        uint8_t *at, *const wanted = none ? nullptr : ring_->buf + position;
        int32_t len;
        const int32_t status = get(ring_.get(), &at, &len);
        return status == 0 && at == wanted && len == (none ? 0 : narrow(length));
    }

    std::unique_ptr<tavu_rbuf_t, void (*)(tavu_rbuf_t *)> ring_;
};

// Text with line ends, close together or far apart; zeros too.
inline std::vector<uint8_t> ring_text(int32_t size, uint8_t kind) {
    std::vector<uint8_t> bytes(static_cast<size_t>(std::max(size, 0)), 'x');
    const size_t step = kind < 192 ? 1 : kind - size_t{190};
    for (size_t i = kind % 8; i < bytes.size(); i += step) {
        bytes[i] =
            static_cast<uint8_t>("ab\r\n\0cd\r\nef\ng"[(i * (kind % 8 + 1) + kind / 8) % 13]);
    }
    return bytes;
}

inline bool ring_equals_model(Input in) {
    const int small = in.range(1, 60);
    RingPair pair(small < 50 ? small % 12 + 1 : (small - 49) * 90);
    while (!in.empty()) {
        const auto op = static_cast<RingOp>(std::min(in.byte() % 8, 5));
        const int32_t n =
            in.range(-3, static_cast<int32_t>(std::min<int64_t>(pair.model.s, 240)) + 3);
        const bool puts = op == RingOp::PUT;
        if (!pair.step(op, n, puts ? ring_text(n, in.byte()) : std::vector<uint8_t>()))
            return false;
        pair.write_in_place();
    }
    return true;
}

#endif
