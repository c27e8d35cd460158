#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "memory.h"
#include "tavu.h"

namespace {

using Values = std::vector<uint32_t>;
using List = std::unique_ptr<tavu_list_t, decltype(&tavu_list_delete)>;

// Elements are numbers above 0.
uint32_t value(void *data) { return data != nullptr ? *static_cast<uint32_t *>(data) : 0; }

tavu_list_t *watched;
Values released;

void on_release(void *data) {
    released.push_back(value(data));
    int32_t linked = 0;
    for (auto *n = watched->head->next; n != watched->tail; n = n->next, linked++) {
        EXPECT_NE(n + 1, data);
    }
    EXPECT_EQ(tavu_list_get_cnt(watched), linked + 1);
}

List list_of(const Values &values) {
    released.clear();
    watched = tavu_list_create(4, on_release);
    for (const uint32_t &v : values) tavu_list_add(watched, &v);
    return {watched, tavu_list_delete};
}

TEST(List, InsertsAtTheEndsOnlyAndTakesNegativePositionsForTheFirst) {
    EXPECT_EQ(tavu_list_get_at(list_of({}).get(), -5), nullptr);
    const List list = list_of({1, 2, 3});
    EXPECT_EQ(list->head->prev, list->head);
    EXPECT_EQ(list->tail->next, list->tail);
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
