#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "list_model.h"
#include "memory.h"
#include "tavu.h"

namespace {

using List = std::unique_ptr<tavu_list_t, decltype(&tavu_list_delete)>;

tavu_list_t *watched;
Values released;

void on_release(void *data) {
    released.push_back(value(data));
    for (auto *n = watched->head; n != watched->tail; n = n->next) EXPECT_NE(n + 1, data);
}

List list_of(const Values &values) {
    released.clear();
    watched = tavu_list_create(4, on_release);
    for (const uint32_t &v : values) tavu_list_add(watched, &v);
    return {watched, tavu_list_delete};
}

void expect_equal(tavu_list_t *list, const ListModel &m) {
    ASSERT_EQ(tavu_list_get_cnt(list), m.cnt());
    ASSERT_EQ(value(tavu_list_get_cur(list)), m.at(m.cur));
    ASSERT_EQ(value(tavu_list_get_first(list)), m.at(0));
    ASSERT_EQ(value(tavu_list_get_last(list)), m.at(m.cnt() - 1));
    ASSERT_EQ(released, m.released);
    for (int i = -2; i < m.cnt() + 2; i++) {
        ASSERT_EQ(value(tavu_list_get_at(list, i)), m.at(std::max(i, 0)));
        ASSERT_EQ(value(tavu_list_get_atid(list, tavu_list_get_id(list, i))), m.at(i));
    }
}

TEST(List, FollowsTheModel) {
    std::mt19937 random(1);
    for (int round = 0; round < 100; round++) {
        const List list = list_of({});
        ListModel model;
        for (int i = 0; i < 200 && !HasFatalFailure(); i++) {
            const auto [got, expected] = step(list.get(), &model, static_cast<unsigned>(random()));
            ASSERT_EQ(got, expected);
            expect_equal(list.get(), model);
        }
    }
}

TEST(List, InsertsAtTheEndsOnlyAndTakesNegativePositionsForTheFirst) {
    EXPECT_EQ(tavu_list_get_at(list_of({}).get(), -5), nullptr);
    const List list = list_of({1, 2, 3});
    const uint32_t four = 4;
    for (int i : {0, 1, 2, 4}) EXPECT_EQ(tavu_list_insert_at(list.get(), &four, i), nullptr);
    EXPECT_EQ(value(tavu_list_insert_at(list.get(), &four, 3)), 4U);
    EXPECT_EQ(value(tavu_list_get_at(list.get(), -5)), 1U);
    EXPECT_EQ(tavu_list_get_id(list.get(), -5), nullptr);
}

TEST(List, WithoutCursorRemovesThePreviousButNotTheNext) {
    const List list = list_of({1, 2, 3, 4});
    tavu_list_rem_next(list.get());
    tavu_list_rem_prev(list.get());
    EXPECT_EQ(released, Values({4}));
    tavu_list_move_last(list.get());
    tavu_list_rem_all(list.get());
    EXPECT_EQ(released, Values({4, 1, 2, 3}));
    EXPECT_EQ(tavu_list_get_cur(list.get()), nullptr);
    list_of({6, 5}).reset();
    EXPECT_EQ(released, Values({6, 5}));
}

TEST(List, ElementsMayBeEmpty) {
    const List empties(tavu_list_create(0, nullptr), tavu_list_delete);
    EXPECT_NE(tavu_list_add(empties.get(), nullptr), nullptr);
    tavu_list_delete(nullptr);
}

TEST(List, CopiesElementsOfEverySize) {
    for (uint32_t size = 0; size < 40; size++) {
        const List list(tavu_list_create(size, nullptr), tavu_list_delete);
        GuardedBytes element(random_bytes(size, size));
        const void *copy = tavu_list_add(list.get(), element.data());
        EXPECT_EQ(memcmp(copy, element.data(), size), 0) << size;
    }
}

}  // namespace
