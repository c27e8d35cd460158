// The bit writer's rules spelt out bit by bit, and a spill function of its own. Fuzzing shares them.
#ifndef TAVU_TESTS_BSW_MODEL_H
#define TAVU_TESTS_BSW_MODEL_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bsr_model.h"
#include "tavu.h"

// A spill function like the default one whose result must not matter.
inline int32_t failing_spill(tavu_bsw_t *bs) {
    for (int n = (39 - bs->leftbits) >> 3; n > 0; n--, bs->code <<= 8) {
        *bs->cur++ = static_cast<uint8_t>(bs->code >> 24);
    }
    return -1;
}

struct WriterModel {
    int size;
    CacheBits cache{};
    int free_bits = 32;
    std::vector<uint8_t> written{};

    int remaining() const { return size - static_cast<int>(written.size()); }
    int pending() const { return (39 - free_bits) >> 3; }  // bytes that a spill writes
    void spill() {
        for (int n = pending(); n > 0; n--, cache.drop(8)) {
            written.push_back(static_cast<uint8_t>(cache.top(8)));
        }
    }
    void spill_all() {
        spill();
        cache = {};
        free_bits = 32;
    }
    // Ors the low `length` bits of `value` into the cache, the first one at bit `at`.
    void insert(uint32_t value, int length, int at) {
        for (int i = 0; i < length; i++) {
            const bool bit = (value >> (length - 1 - i) & 1) != 0;
            if (at + i >= 0 && at + i < 32 && bit) cache.bits[at + i] = true;
        }
    }
    int write(uint32_t value, int length) {
        const int used = (32 - free_bits) & 0xFF;  // shifts take their counts modulo 256
        insert(value, length, used);
        const bool full = free_bits <= length;
        if (full && remaining() < 5) return -1;
        if (full) {
            const int kept = free_bits + 32 - length;
            free_bits = 0;
            spill();
            cache = {};
            insert(value, length, used - 32);
            free_bits = kept;
        } else {
            free_bits -= length;
        }
        return 0;
    }
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
        return w.code == cache.top(32) && w.leftbits == free_bits &&
               w.cur - w.beg == static_cast<ptrdiff_t>(written.size());
    }
};

#endif
