// A model of the list: a vector and a position. Also used by fuzzing.
#ifndef TAVU_TESTS_CONTAINER_LIST_MODEL_H
#define TAVU_TESTS_CONTAINER_LIST_MODEL_H

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "tavu.h"
#include "values.h"

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

    std::vector<uint32_t> values, released;  // positive numbers
    uint32_t made = 0;
    int cur = -1;
};

inline uint32_t value(void *data) { return data != nullptr ? *static_cast<uint32_t *>(data) : 0; }

// Runs one operation on both; returns both results.
inline std::pair<uint32_t, uint32_t> step(tavu_list_t *list, ListModel *m, unsigned op, int i) {
    const int n = m->cnt(), next = m->cur < 0 ? -1 : m->cur + 1, prev = m->cur < 0 ? n : m->cur;
    const uint32_t e = m->made + 1;
    void *id = tavu_list_get_id(list, i);
    const auto remove = [&](int at, auto call, auto... where) {
        call(list, where...);
        return std::pair(0U, m->remove(at));
    };
    switch (op) {
        case 0: return {value(tavu_list_add_first(list, &e)), m->insert(0)};
        case 1:
            return {value(tavu_list_insert_at(list, &e, i)),
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
        default: return {value(tavu_list_add(list, &e)), m->insert(n)};
    }
}

// A list's callback has no context, so only one list is watched at a time.
struct Watched {
    inline static tavu_list_t *list;
    inline static std::vector<uint32_t> released;
    inline static bool sound;  // a released element was no longer linked but still counted

    static void on_release(void *data) {
        released.push_back(value(data));
        int32_t linked = 0;
        for (auto *n = list->head->next; n != list->tail; n = n->next, linked++) {
            sound = sound && n + 1 != data;
        }
        sound = sound && tavu_list_get_cnt(list) == linked + 1;
    }
};

// Walks both ways over the values, between sentinels that link to themselves at the outer ends.
inline bool has_links(const tavu_list_t *list, const std::vector<uint32_t> &values) {
    tavu_list_node_t *before = list->head;
    for (const uint32_t v : values) {
        if (before->next->prev != before) return false;
        before = before->next;
        if (value(before + 1) != v) return false;
    }
    return before->next == list->tail && list->tail->prev == before &&
           list->head->prev == list->head && list->tail->next == list->tail;
}

inline bool same(tavu_list_t *list, const ListModel &m) {
    bool elements = true;
    for (int i = -1; i <= m.cnt(); i++) {
        void *id = tavu_list_get_id(list, i);
        elements &= value(tavu_list_get_at(list, i)) == m.at(std::max(i, 0)) &&
                    value(tavu_list_get_atid(list, id)) == m.at(i);
    }
    return elements && has_links(list, m.values) && tavu_list_get_cnt(list) == m.cnt() &&
           value(tavu_list_get_cur(list)) == m.at(m.cur) &&
           value(tavu_list_get_first(list)) == m.at(0) &&
           value(tavu_list_get_last(list)) == m.at(m.cnt() - 1) && Watched::sound &&
           Watched::released == m.released;
}

inline bool list_equals_model(Input in) {
    tavu_list_t *list = Watched::list = tavu_list_create(4, Watched::on_release);
    Watched::released.clear();
    Watched::sound = true;
    ListModel m;
    bool right = same(list, m);
    while (right && !in.empty()) {
        const unsigned op = in.byte() % 32 % 20;
        const auto [got, wanted] = step(list, &m, op, in.byte() % (m.cnt() + 4) - 2);
        right = got == wanted && same(list, m);
    }
    tavu_list_delete(list);
    m.released.insert(m.released.end(), m.values.begin(), m.values.end());
    return right && Watched::sound && Watched::released == m.released;
}

#endif
