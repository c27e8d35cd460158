// Compares sequences of list operations with a vector and a position.
#include <utility>
#include <vector>

#include "input.h"
#include "tavu.h"

namespace {

using Values = std::vector<uint32_t>;

// Elements are positive numbers.
uint32_t value(void *data) { return data != nullptr ? *static_cast<uint32_t *>(data) : 0; }

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

// Runs one random operation on both; returns both results.
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

tavu_list_t *watched;
Values released;

// At this point the element is no longer linked but still counted.
void on_release(void *data) {
    released.push_back(value(data));
    int32_t linked = 0;
    for (auto *n = watched->head->next; n != watched->tail; n = n->next, linked++) {
        require(n + 1 != data);
    }
    require(tavu_list_get_cnt(watched) == linked + 1);
}

// Walks both ways over the values, between sentinels that link to themselves at the outer ends.
void check_links(const tavu_list_t *list, const Values &values) {
    require(list->head->prev == list->head && list->tail->next == list->tail);
    tavu_list_node_t *before = list->head;
    for (const uint32_t v : values) {
        require(before->next->prev == before);
        before = before->next;
        require(value(before + 1) == v);
    }
    require(before->next == list->tail && list->tail->prev == before);
}

void check(tavu_list_t *list, const Model &m) {
    check_links(list, m.values);
    require(tavu_list_get_cnt(list) == m.cnt());
    require(value(tavu_list_get_cur(list)) == m.at(m.cur));
    require(value(tavu_list_get_first(list)) == m.at(0));
    require(value(tavu_list_get_last(list)) == m.at(m.cnt() - 1));
    require(released == m.released);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    released.clear();
    tavu_list_t *list = watched = tavu_list_create(4, on_release);
    Model model;
    check(list, model);
    while (!in.empty()) {
        const uint8_t op = in.byte();
        // The second byte is the position, which only a few operations use.
        const auto [got, wanted] = step(list, &model, op % 32 + in.byte() % 64 * 32U);
        require(got == wanted);
        check(list, model);
    }
    for (int i = -1; i <= model.cnt(); i++) {
        require(value(tavu_list_get_at(list, i)) == model.at(std::max(i, 0)));
        require(value(tavu_list_get_atid(list, tavu_list_get_id(list, i))) == model.at(i));
    }
    tavu_list_delete(list);
    model.released.insert(model.released.end(), model.values.begin(), model.values.end());
    require(released == model.released);
    return 0;
}
