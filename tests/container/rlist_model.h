// A model of the recycling list: two queues of slots. Also used by fuzzing.
#ifndef TAVU_TESTS_CONTAINER_RLIST_MODEL_H
#define TAVU_TESTS_CONTAINER_RLIST_MODEL_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>

#include "tavu.h"
#include "values.h"

struct RlistModel {
    struct Filled {
        uint8_t *slot, value;  // of every byte of the slot
    };

    bool kept(const Filled &filled) const {
        return std::all_of(filled.slot, filled.slot + pool->slot_size,
                           [&](uint8_t byte) { return byte == filled.value; });
    }
    int32_t used_cnt() const { return static_cast<int32_t>(used.size()); }

    // A taken slot must be the next one with its old contents. Refills it.
    bool take(uint8_t value) {
        auto *slot = static_cast<uint8_t *>(tavu_rlist_get_buf(pool));
        if ((slot == nullptr) != (used_cnt() >= pool->capacity)) return false;
        if (slot == nullptr) return true;
        // A slot that was never taken is not in a queue yet.
        if (static_cast<int32_t>(free.size()) + used_cnt() == pool->capacity) {
            if (slot != free.front().slot || !kept(free.front())) return false;
            free.pop_front();
        }
        used.push_back({slot, value});
        memset(slot, value, pool->slot_size);
        return true;
    }

    // A pool's only slot is never given back.
    void give_back() {
        if (used.empty() || pool->capacity < 2) return;
        free.push_back(used.front());
        used.pop_front();
    }

    bool step(uint8_t op) {
        if (op % 8 < 4) return take(op);
        const size_t all = op % 8 == 7 ? used.size() : 1;
        (op % 8 == 7 ? tavu_rlist_rem_all : tavu_rlist_rem_data)(pool);
        for (size_t n = all; n > 0; n--) give_back();
        return true;
    }

    bool same() const {
        const auto *oldest = static_cast<uint8_t *>(tavu_rlist_get_data(pool));
        return oldest == (used.empty() ? nullptr : used.front().slot) &&
               (oldest == nullptr || kept(used.front())) &&
               tavu_rlist_get_used_cnt(pool) == used_cnt() &&
               tavu_rlist_get_free_cnt(pool) == pool->capacity - used_cnt();
    }

    tavu_rlist_t *pool;
    std::deque<Filled> free{}, used{};
};

inline bool rlist_equals_model(Input in) {
    const auto slot_size = static_cast<uint32_t>(in.range(0, 40));
    RlistModel m{tavu_rlist_create(slot_size, in.range(-1, 8))};
    bool right = m.pool->first != nullptr;  // whatever the capacity
    while (right && !in.empty()) right = m.step(in.byte()) && m.same();
    tavu_rlist_delete(m.pool);
    return right;
}

#endif
