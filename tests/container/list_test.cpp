#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "memory.h"
#include "tavu.h"

namespace {

using List = std::unique_ptr<tavu_list_t, decltype(&tavu_list_delete)>;
using Values = std::vector<uint32_t>;

tavu_list_t *watched;
Values released;

// Elements are numbers above 0.
uint32_t value(void *data) { return data != nullptr ? *static_cast<uint32_t *>(data) : 0; }

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

struct Model {
    uint32_t at(int i) const { return i < 0 || i >= cnt() ? 0 : values[static_cast<size_t>(i)]; }
    int cnt() const { return static_cast<int>(values.size()); }
    uint32_t insert(int i) {
        if (cur >= i) cur++;
        return *values.insert(values.begin() + i, ++made);
    }
    uint32_t remove(int i) {
        if (at(i) == 0) return 0;
        released.push_back(at(i));
        values.erase(values.begin() + i);
        cur = i < cur ? cur - 1 : cur == cnt() ? -1 : cur;
        return 0;
    }
    uint32_t move(int to) { return at(cur = at(to) != 0 ? to : -1); }

    Values values, released;
    uint32_t made = 0;
    int cur = -1;
};

// One random operation on both: the values that they return.
std::pair<uint32_t, uint32_t> step(tavu_list_t *list, Model *m, unsigned random) {
    const int n = m->cnt(), i = static_cast<int>(random / 32 % static_cast<unsigned>(n + 4)) - 2;
    const int next = m->cur < 0 ? -1 : m->cur + 1, prev = m->cur < 0 ? n : m->cur;
    const Values e{m->made + 1};
    void *id = tavu_list_get_id(list, i);
    const auto remove = [&](int at, auto call, auto... where) {
        call(list, where...);
        return std::pair(0U, m->remove(at));
    };
    switch (random % 20) {
        case 0: return {value(tavu_list_add_first(list, e.data())), m->insert(0)};
        case 1:
            return {value(tavu_list_insert_at(list, e.data(), i)),
                    i < 0 || i == n ? m->insert(std::max(i, 0)) : 0};
        case 2: return {value(tavu_list_move_first(list)), m->move(0)};
        case 3: return {value(tavu_list_move_last(list)), m->move(n - 1)};
        case 4: return {value(tavu_list_move_next(list)), m->move(next)};
        case 5: return {value(tavu_list_move_prev(list)), m->move(m->cur - 1)};
        case 6: return remove(0, tavu_list_rem_first);
        case 7: return remove(n - 1, tavu_list_rem_last);
        case 8: return remove(m->cur, tavu_list_rem_cur);
        case 9: return remove(prev - 1, tavu_list_rem_prev);
        case 10: return remove(next, tavu_list_rem_next);
        case 11: return remove(i, tavu_list_rem_at, i);
        case 12: return id == nullptr ? std::pair(0U, 0U) : remove(i, tavu_list_rem_atid, id);
        default: return {value(tavu_list_add(list, e.data())), m->insert(n)};
    }
}

void expect_equal(tavu_list_t *list, const Model &m) {
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
        Model model;
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

TEST(List, SurvivesFailingAllocations) {
    for (int i = 0; i < 3; i++) {
        const FailingAllocations failing(i);
        EXPECT_EQ(tavu_list_create(4, nullptr), nullptr);
    }
    const List empties(tavu_list_create(0, nullptr), tavu_list_delete);
    EXPECT_NE(tavu_list_add(empties.get(), nullptr), nullptr);
    // With 32-bit addresses, element and links together exceed them.
    const List giants(tavu_list_create(UINT32_MAX - 7, nullptr), tavu_list_delete);
    EXPECT_TRUE(sizeof(size_t) > 4 || tavu_list_add(giants.get(), &released) == nullptr);
    const FailingAllocations failing(0);
    EXPECT_EQ(tavu_list_add(empties.get(), nullptr), nullptr);
    EXPECT_EQ(empties->head->next->next, empties->tail);
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
