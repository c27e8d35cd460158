// Compares sequences of operations on a recycling list with two queues of slots.
#include <deque>

#include "input.h"
#include "tavu.h"

namespace {

struct Filled {
    uint8_t *slot, value;  // all bytes of the slot have that value
};

using Queue = std::deque<Filled>;

void require_kept(const Filled &filled, uint32_t size) {
    for (uint32_t i = 0; i < size; i++) require(filled.slot[i] == filled.value);
}

// Takes a slot, checks that it is the next one with its old contents, and refills it.
void take(tavu_rlist_t *pool, Queue *free, Queue *used, uint8_t value) {
    auto *slot = static_cast<uint8_t *>(tavu_rlist_get_buf(pool));
    require((slot != nullptr) == (static_cast<int32_t>(used->size()) < pool->capacity));
    if (slot == nullptr) return;
    // A slot that was never taken is not in a queue yet.
    if (static_cast<int32_t>(free->size() + used->size()) == pool->capacity) {
        require(slot == free->front().slot);
        require_kept(free->front(), pool->slot_size);
        free->pop_front();
    }
    used->push_back({slot, value});
    memset(slot, value, pool->slot_size);
}

// A pool's only slot is never given back.
void give_back(int32_t capacity, Queue *free, Queue *used) {
    if (used->empty() || capacity < 2) return;
    free->push_back(used->front());
    used->pop_front();
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const auto slot_size = static_cast<uint32_t>(in.range(0, 40));
    const int32_t capacity = in.range(-1, 8);
    tavu_rlist_t *pool = tavu_rlist_create(slot_size, capacity);
    require(pool->first != nullptr);  // whatever the capacity
    Queue free, used;
    while (!in.empty()) {
        const uint8_t op = in.byte();
        if (op % 8 < 4) {
            take(pool, &free, &used, op);
        } else if (op % 8 < 7) {
            tavu_rlist_rem_data(pool);
            give_back(capacity, &free, &used);
        } else {
            tavu_rlist_rem_all(pool);
            for (size_t n = used.size(); n > 0; n--) give_back(capacity, &free, &used);
        }
        const auto *oldest = static_cast<uint8_t *>(tavu_rlist_get_data(pool));
        require(oldest == (used.empty() ? nullptr : used.front().slot));
        if (oldest != nullptr) require_kept(used.front(), slot_size);
        require(tavu_rlist_get_used_cnt(pool) == static_cast<int32_t>(used.size()));
        require(tavu_rlist_get_free_cnt(pool) == capacity - static_cast<int32_t>(used.size()));
    }
    tavu_rlist_delete(pool);
    return 0;
}
