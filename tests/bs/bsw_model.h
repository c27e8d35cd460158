// A bit-by-bit model of the bit writer, and a custom spill function. Also used by fuzzing.
#ifndef TAVU_TESTS_BSW_MODEL_H
#define TAVU_TESTS_BSW_MODEL_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "bits.h"
#include "tavu.h"
#include "values.h"

// Writes the inverse of the default spill's bytes. Only tavu_bsw_deinit() returns its result.
constexpr int32_t SPILL_RESULT = -77;
inline int32_t inverting_spill(tavu_bsw_t *bs) {
    for (int n = (39 - bs->leftbits) >> 3; n > 0; n--, bs->code <<= 8) {
        *bs->cur++ = static_cast<uint8_t>(~(bs->code >> 24));
    }
    return SPILL_RESULT;
}

struct WriterModel {
    int size;
    bool inverts;  // whether the spill inverts
    CacheBits cache{};
    int free_bits = 32;
    std::vector<uint8_t> written{};

    int remaining() const { return size - static_cast<int>(written.size()); }
    int pending() const { return (39 - free_bits) >> 3; }  // bytes that a spill writes
    int spill() {
        for (int n = pending(); n > 0; n--, cache.drop(8)) {
            written.push_back(static_cast<uint8_t>(cache.top(8) ^ (inverts ? 0xFF : 0)));
        }
        return inverts ? SPILL_RESULT : 0;
    }
    void spill_all() {
        spill();
        cache = {};
        free_bits = 32;
    }
    // Ors the low `length` bits of `value` into the cache, the first one at position `at`.
    void insert(uint32_t value, int length, int at) {
        for (int i = at; i < at + length; i++) {
            const bool bit = (value >> (at + length - 1 - i) & 1) != 0;
            if (i >= 0 && i < 32 && bit) cache.set(i);
        }
    }
    int write(uint32_t value, int length) {
        const int used = (32 - free_bits) & 0xFF;  // shifts take their counts modulo 256
        insert(value, length, used);
        const bool full = free_bits <= length;
        if (full && remaining() < 5) return -1;
        const int left = free_bits - length + (full ? 32 : 0);
        if (full) {
            free_bits = 0;
            spill_all();
            insert(value, length, used - 32);
        }
        free_bits = left;
        return 0;
    }
    int write_code(uint32_t v) { return write(v + 1, static_cast<int>(exp_golomb(v).size())); }
    int write1(int bit) {
        free_bits--;
        insert(bit & 1, 1, 31 - (free_bits & 0xFF));
        if (free_bits != 0) return 0;
        if (remaining() < 1) return -1;
        spill_all();
        return 0;
    }
    int sink() {
        if (remaining() <= pending()) return -1;
        spill_all();
        return 0;
    }
    bool equals(const tavu_bsw_t &w) const {
        return w.code == cache.top(32) && w.leftbits == free_bits && w.size == size &&
               w.cur - w.beg == static_cast<ptrdiff_t>(written.size());
    }
};

// One call on the writer, the model and the reader. TE uses the smallest possible range.
struct Code {
    enum { FIXED, SINGLE, UE, SE, TE, SINGLES, SINK, DEINIT, KINDS };
    int kind;
    uint32_t value;
    int32_t length;

    Code(int k, uint32_t v, int fixed_length) : kind(k), value(v), length(fixed_length) {
        if (kind == SINGLE) length = 1;
        if (kind == SINGLES) length = static_cast<int32_t>(value >> 1 & 0xFF);
        if (kind == FIXED && length < 32) value &= (1U << length) - 1;
        if (kind == SINGLE || kind == SINGLES) value &= 1;
        if (kind == UE || kind == TE) value = (value & 0xFFFF) % 65535 >> (value >> 16) % 16;
        if (kind == SE) value = static_cast<uint32_t>(static_cast<int32_t>(value % 65535) - 32767);
    }
    int32_t number() const { return static_cast<int32_t>(value); }
    int32_t range() const { return std::max(number(), 1); }
    // Maps 0, 1, -1, 2, -2 to 0, 1, 2, 3, 4.
    uint32_t index() const {
        const auto magnitude = static_cast<uint32_t>(std::abs(number()));
        return kind == SE ? 2 * magnitude - (number() > 0 ? 1 : 0) : value;
    }
    // Writes to both; returns both results.
    std::pair<int32_t, int32_t> write(tavu_bsw_t *w, WriterModel *m) const {
        switch (kind) {
            case FIXED: return {tavu_bsw_write(w, value, length), m->write(value, length)};
            case UE: return {tavu_bsw_write_ue(w, value), m->write_code(index())};
            case SE: return {tavu_bsw_write_se(w, number()), m->write_code(index())};
            case TE:
                return {tavu_bsw_write_te(w, number(), range()),
                        value < 2 ? m->write1(1 - number()) : m->write_code(index())};
            case SINK: return {tavu_bsw_sink(w), m->sink()};
            case DEINIT: return {tavu_bsw_deinit(w), m->spill()};
            default: break;
        }
        std::pair<int32_t, int32_t> results;
        for (int i = 0; i < length; i++) {
            results.first |= tavu_bsw_write1(w, number() + 2);  // only bit 0 is written
            results.second |= m->write1(number());
        }
        return results;
    }
    bool read(tavu_bsr_t *r) const {
        bool same = true;
        switch (kind) {
            case FIXED: return tavu_bsr_read(r, length) == number();
            case UE: return tavu_bsr_read_ue(r) == number();
            case SE: return tavu_bsr_read_se(r) == number();
            case TE: return tavu_bsr_read_te(r, range()) == number();
            default:
                for (int i = 0; i < length; i++) same &= tavu_bsr_read1(r) == number();
                return same;
        }
    }
};

// Compares fields, results and every byte of the memory, also after a full buffer refused bits. If
// all codes fit, the reader must read them back.
inline bool writer_equals_model(Input in) {
    const auto next_code = [](Input *from) {
        const int kind = from->byte() % Code::KINDS;
        const uint32_t value = from->word();
        return Code(kind, value, kind == Code::FIXED ? from->range(0, 32) : 0);
    };
    const int32_t size = in.byte();
    GuardedBytes memory(static_cast<size_t>(size) + 500);
    const bool inverts = size % 2 != 0;
    tavu_bsw_t w;
    tavu_bsw_init(&w, memory.data(), size, inverts ? inverting_spill : nullptr);
    WriterModel m{size, inverts};
    bool fits = !inverts;
    for (Input codes = in; !codes.empty();) {
        const Code code = next_code(&codes);
        const size_t spilt = m.written.size() + static_cast<size_t>(std::max(m.pending(), 0));
        if (code.kind == Code::DEINIT && spilt > memory.size()) continue;
        const auto [result, wanted] = code.write(&w, &m);
        if (result != wanted || !m.equals(w)) return false;
        fits = fits && result == 0 && code.kind < Code::SINK;
    }
    m.written.resize(memory.size(), GuardedBytes::CANARY);
    if (memory.bytes() != m.written) return false;
    if (!fits || tavu_bsw_sink(&w) != 0) return true;
    tavu_bsr_t r;
    tavu_bsr_init(&r, w.beg, static_cast<int32_t>(w.cur - w.beg), nullptr);
    while (!in.empty()) {
        if (!next_code(&in).read(&r)) return false;
    }
    return true;
}

#endif
