// The used slots are at the end of the chain, the oldest last; the slots before them are free.
#include <cstdlib>

#include "container/links.h"
#include "tavu.h"

namespace tavu {
namespace {

using Slot = tavu_rlist_slot_t;

// The record as allocated: the public part and the slot taken last (if any is used).
struct Pool : tavu_rlist_t {
    Slot *newest;
};

Slot *next_free(const Pool *pool) { return pool->used == 0 ? pool->last : pool->newest->prev; }

bool append_slot(tavu_rlist_t *rlist) {
    Slot *slot = allocate_links<Slot>(rlist->slot_size);
    if (slot == nullptr) return false;
    *slot = {rlist->last, nullptr};
    (rlist->last != nullptr ? rlist->last->next : rlist->first) = slot;
    rlist->last = slot;
    return true;
}

// Appends at least one slot, even for a capacity that allows none to be taken.
bool append_slots(tavu_rlist_t *rlist) {
    if (!append_slot(rlist)) return false;
    for (int32_t i = 1; i < rlist->capacity; i++) {
        if (!append_slot(rlist)) return false;
    }
    return true;
}

void free_rlist(tavu_rlist_t *rlist) {
    while (rlist->first != nullptr) {
        Slot *slot = rlist->first;
        rlist->first = slot->next;
        free(slot);
    }
    free(rlist);
}

// Moves the oldest used slot to the start of the chain. Returns false if there is none, or if it is
// the pool's only slot, which stays in use.
bool recycle_oldest(tavu_rlist_t *rlist) {
    Slot *slot = rlist->last;
    if (rlist->used == 0 || slot->prev == nullptr) return false;
    rlist->last = slot->prev;
    rlist->last->next = nullptr;
    *slot = {nullptr, rlist->first};
    rlist->first->prev = slot;
    rlist->first = slot;
    rlist->used--;
    return true;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_rlist_t *tavu_rlist_create(uint32_t slot_size, int32_t count) {
    auto *rlist = static_cast<Pool *>(malloc(sizeof(Pool)));
    if (rlist == nullptr) return nullptr;
    *rlist = {{count, slot_size, 0, nullptr, nullptr}, nullptr};
    if (!append_slots(rlist)) {
        free_rlist(rlist);
        return nullptr;
    }
    return rlist;
}

void tavu_rlist_delete(tavu_rlist_t *rlist) {
    if (rlist != nullptr) free_rlist(rlist);
}

void *tavu_rlist_get_buf(tavu_rlist_t *rlist) {
    if (rlist->used >= rlist->capacity) return nullptr;
    auto *pool = static_cast<Pool *>(rlist);
    pool->newest = next_free(pool);
    pool->used++;
    return pool->newest + 1;
}

void *tavu_rlist_get_data(tavu_rlist_t *rlist) {
    return rlist->used == 0 ? nullptr : rlist->last + 1;
}

void tavu_rlist_rem_data(tavu_rlist_t *rlist) { recycle_oldest(rlist); }

void tavu_rlist_rem_all(tavu_rlist_t *rlist) {
    while (recycle_oldest(rlist)) continue;
}

int32_t tavu_rlist_get_used_cnt(tavu_rlist_t *rlist) { return rlist->used; }

int32_t tavu_rlist_get_free_cnt(tavu_rlist_t *rlist) { return rlist->capacity - rlist->used; }
