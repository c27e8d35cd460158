// Sequences of list operations against a vector with a position.
#include "container/list_model.h"
#include "input.h"

namespace {

Values released;

void on_release(void *data) { released.push_back(value(data)); }

void check(tavu_list_t *list, const ListModel &m) {
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
    tavu_list_t *list = tavu_list_create(4, on_release);
    ListModel model;
    while (!in.empty()) {
        const uint8_t op = in.byte();
        // The position is from the byte's upper bits; only a few operations look at it.
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
