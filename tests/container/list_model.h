// What a list does, as a vector of numbers and a position: for the test and the fuzz target.
#ifndef TAVU_TESTS_CONTAINER_LIST_MODEL_H
#define TAVU_TESTS_CONTAINER_LIST_MODEL_H

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "tavu.h"

using Values = std::vector<uint32_t>;

// Elements are numbers above 0.
inline uint32_t value(void *data) { return data != nullptr ? *static_cast<uint32_t *>(data) : 0; }

struct ListModel {
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
inline std::pair<uint32_t, uint32_t> step(tavu_list_t *list, ListModel *m, unsigned random) {
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

#endif
