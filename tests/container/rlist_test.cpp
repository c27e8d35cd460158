#include <gtest/gtest.h>

#include <deque>
#include <memory>

#include "memory.h"
#include "tavu.h"

namespace {

using Pool = std::unique_ptr<tavu_rlist_t, decltype(&tavu_rlist_delete)>;
using Queue = std::deque<void *>;

Pool create(int count) { return {tavu_rlist_create(5, count), tavu_rlist_delete}; }

// Moves a slot from the front of one queue to the back of another: the slot or null.
void *pass(Queue *from, Queue *to) {
    if (from->empty()) return nullptr;
    to->push_back(from->front());
    from->pop_front();
    return to->back();
}

TEST(Rlist, PassesSlotsBetweenTwoQueues) {
    std::mt19937 random(1);
    for (int count = 2; count < 9; count++) {
        const Pool pool = create(count);
        Queue free, used;
        for (int i = 0; i < count; i++)
            used.push_back(memset(tavu_rlist_get_buf(pool.get()), i, 5));
        for (int i = 0; i < 2000; i++) {
            if (random() % 2 == 0) {
                ASSERT_EQ(tavu_rlist_get_buf(pool.get()), pass(&free, &used));
            } else {
                tavu_rlist_rem_data(pool.get());
                pass(&used, &free);
            }
            ASSERT_EQ(tavu_rlist_get_data(pool.get()), used.empty() ? nullptr : used.front());
            ASSERT_EQ(tavu_rlist_get_used_cnt(pool.get()), static_cast<int>(used.size()));
            ASSERT_EQ(tavu_rlist_get_free_cnt(pool.get()), static_cast<int>(free.size()));
        }
        tavu_rlist_rem_all(pool.get());
        EXPECT_EQ(tavu_rlist_get_used_cnt(pool.get()), 0);
    }
}

TEST(Rlist, TheOnlySlotCannotBeGivenBack) {
    for (int count : {1, 0, -3, INT32_MIN}) {
        const Pool pool = create(count);
        EXPECT_NE(pool->first, nullptr);
        const void *slot = tavu_rlist_get_buf(pool.get());
        EXPECT_EQ(slot != nullptr, count == 1);
        tavu_rlist_rem_data(pool.get());
        tavu_rlist_rem_all(pool.get());
        EXPECT_EQ(tavu_rlist_get_data(pool.get()), slot);
        EXPECT_EQ(tavu_rlist_get_free_cnt(pool.get()), count == 1 ? 0 : count);
    }
}

}  // namespace
