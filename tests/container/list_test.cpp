#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "container/list_model.h"
#include "memory.h"
#include "tavu.h"

namespace {

using List = std::unique_ptr<tavu_list_t, decltype(&tavu_list_delete)>;

std::string released;

List list_of(const std::string &letters) {
    released.clear();
    List list(tavu_list_create(1, [](void *letter) { released += *static_cast<char *>(letter); }),
              tavu_list_delete);
    for (const char &letter : letters) tavu_list_add(list.get(), &letter);
    return list;
}

TEST(List, InsertsOnlyAtTheEndsAndTreatsNegativePositionsAsTheFirst) {
    const List list = list_of("abc");
    for (int i : {0, 1, 2, 4}) EXPECT_EQ(tavu_list_insert_at(list.get(), "d", i), nullptr);
    EXPECT_EQ(*static_cast<char *>(tavu_list_insert_at(list.get(), "d", 3)), 'd');
    EXPECT_EQ(*static_cast<char *>(tavu_list_get_at(list.get(), -5)), 'a');
    EXPECT_EQ(tavu_list_get_id(list.get(), -5), nullptr);
}

TEST(List, WithoutCursorRemovesThePreviousButNotTheNext) {
    const List list = list_of("abcd");
    tavu_list_rem_next(list.get());
    tavu_list_rem_prev(list.get());
    EXPECT_EQ(released, "d");
    tavu_list_move_last(list.get());
    tavu_list_rem_all(list.get());
    EXPECT_EQ(released, "dabc");
    EXPECT_EQ(tavu_list_get_cur(list.get()), nullptr);
}

TEST(List, EqualsItsModel) { EXPECT_TRUE(on_random_inputs(list_equals_model)); }

TEST(List, CopiesElementsOfEverySize) {
    for (uint32_t size = 0; size < 40; size++) {
        const List list(tavu_list_create(size, nullptr), tavu_list_delete);
        GuardedBytes element(random_bytes(size, size));
        const void *copy = tavu_list_add(list.get(), size > 0 ? element.data() : nullptr);
        EXPECT_EQ(memcmp(copy, element.data(), size), 0) << size;
    }
    tavu_list_delete(nullptr);
}

}  // namespace
