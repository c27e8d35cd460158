#include <gtest/gtest.h>

#include <memory>

#include "tavu.h"

namespace {

using Pool = std::unique_ptr<tavu_rlist_t, decltype(&tavu_rlist_delete)>;

Pool create(int count) { return {tavu_rlist_create(5, count), tavu_rlist_delete}; }

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
