// The sentinels before the first and after the last element link to themselves at the outer ends,
// so a step from any node ends at a node.
#include <cstdlib>
#include <cstring>

#include "container/links.h"
#include "tavu.h"

namespace tavu {
namespace {

using Node = tavu_list_node_t;

void *data(Node *node) { return node != nullptr ? node + 1 : nullptr; }

// The neighbours of a node, null at the ends.
Node *next(const tavu_list_t *list, const Node *node) {
    return node->next != list->tail ? node->next : nullptr;
}

Node *prev(const tavu_list_t *list, const Node *node) {
    return node->prev != list->head ? node->prev : nullptr;
}

Node *first(const tavu_list_t *list) { return next(list, list->head); }

Node *last(const tavu_list_t *list) { return prev(list, list->tail); }

bool has_index(const tavu_list_t *list, int32_t index) { return index >= 0 && index < list->cnt; }

Node *forward(Node *node, int32_t steps) {
    for (; steps > 0; steps--) node = node->next;
    return node;
}

Node *backward(Node *node, int32_t steps) {
    for (; steps > 0; steps--) node = node->prev;
    return node;
}

// Walks from the nearer end; takes no step for a negative index.
Node *node_at(const tavu_list_t *list, int32_t index) {
    if (index > list->cnt / 2) return backward(list->tail->prev, list->cnt - 1 - index);
    return forward(list->head->next, index);
}

// Most elements have the size of one or two pointers; these are copied without a call.
void copy_element(void *dst, const void *src, uint32_t size) {
    auto *to = static_cast<char *>(dst);
    const auto *from = static_cast<const char *>(src);
    constexpr uint32_t POINTER = sizeof(void *);
    if (size >= POINTER && size <= 2 * POINTER) {
        memcpy(to, from, POINTER);
        memcpy(to + size - POINTER, from + size - POINTER, POINTER);
    } else if (size > 0) {
        memcpy(to, from, size);
    }
}

Node *make_node(const tavu_list_t *list, const void *elem) {
    Node *node = allocate_links<Node>(list->elem_size);
    if (node != nullptr) copy_element(data(node), elem, list->elem_size);
    return node;
}

// Returns null for null.
void *link_after(tavu_list_t *list, Node *before, Node *node) {
    if (node == nullptr) return nullptr;
    *node = {before, before->next};
    node->next->prev = node;
    before->next = node;
    list->cnt++;
    return data(node);
}

// Does nothing for null. The cursor leaves the element before the callback runs.
void remove_node(tavu_list_t *list, Node *node) {
    if (node == nullptr) return;
    if (node == list->cur) list->cur = next(list, node);
    node->prev->next = node->next;
    node->next->prev = node->prev;
    if (list->release != nullptr) list->release(data(node));
    free(node);
    list->cnt--;
}

void remove_all(tavu_list_t *list) {
    while (list->cnt > 0) remove_node(list, first(list));
}

void free_list(tavu_list_t *list) {
    free(list->head);
    free(list->tail);
    free(list);
}

// Moves the cursor to a node; clears it at `sentinel`, which a step past the outermost one reaches.
void *step_to(tavu_list_t *list, Node *node, const Node *sentinel) {
    list->cur = node != sentinel ? node : nullptr;
    return node != sentinel ? node + 1 : nullptr;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_list_t *tavu_list_create(uint32_t elem_size, tavu_list_release_fn release) {
    auto *list = static_cast<tavu_list_t *>(malloc(sizeof(tavu_list_t)));
    if (list == nullptr) return nullptr;
    *list = {elem_size, 0, allocate_links<Node>(0), allocate_links<Node>(0), nullptr, release};
    if (list->head == nullptr || list->tail == nullptr) {
        free_list(list);
        return nullptr;
    }
    *list->head = *list->tail = {list->head, list->tail};
    return list;
}

void tavu_list_delete(tavu_list_t *list) {
    if (list == nullptr) return;
    remove_all(list);
    free_list(list);
}

void *tavu_list_add(tavu_list_t *list, const void *elem) {
    Node *node = make_node(list, elem);
    return link_after(list, list->tail->prev, node);
}

void *tavu_list_add_first(tavu_list_t *list, const void *elem) {
    return link_after(list, list->head, make_node(list, elem));
}

void *tavu_list_insert_at(tavu_list_t *list, const void *elem, int32_t index) {
    // An index within the list is refused; callers rely on it.
    if (index >= 0 && index != list->cnt) return nullptr;
    Node *node = make_node(list, elem);
    return link_after(list, index < 0 ? list->head : list->tail->prev, node);
}

void *tavu_list_get_at(tavu_list_t *list, int32_t index) {
    if (index >= list->cnt) return nullptr;
    // A negative index means the first element; callers rely on it.
    return data(list->cnt > 0 ? node_at(list, index) : nullptr);
}

void *tavu_list_get_id(tavu_list_t *list, int32_t index) {
    return has_index(list, index) ? node_at(list, index) : nullptr;
}

void *tavu_list_get_atid(tavu_list_t *, const void *id) {
    return data(static_cast<Node *>(const_cast<void *>(id)));
}

void *tavu_list_get_first(tavu_list_t *list) { return data(first(list)); }

void *tavu_list_get_last(tavu_list_t *list) { return data(last(list)); }

int32_t tavu_list_get_cnt(tavu_list_t *list) { return list->cnt; }

void tavu_list_rem_at(tavu_list_t *list, int32_t index) {
    if (has_index(list, index)) remove_node(list, forward(list->head->next, index));
}

void tavu_list_rem_atid(tavu_list_t *list, void *id) { remove_node(list, static_cast<Node *>(id)); }

void tavu_list_rem_first(tavu_list_t *list) { remove_node(list, first(list)); }

void tavu_list_rem_last(tavu_list_t *list) { remove_node(list, last(list)); }

void tavu_list_rem_all(tavu_list_t *list) { remove_all(list); }

void *tavu_list_get_cur(tavu_list_t *list) { return data(list->cur); }

void *tavu_list_move_first(tavu_list_t *list) {
    return step_to(list, list->head->next, list->tail);
}

void *tavu_list_move_last(tavu_list_t *list) { return step_to(list, list->tail->prev, list->head); }

void *tavu_list_move_next(tavu_list_t *list) {
    if (list->cur == nullptr) return nullptr;
    return step_to(list, list->cur->next, list->tail);
}

void *tavu_list_move_prev(tavu_list_t *list) {
    if (list->cur == nullptr) return nullptr;
    return step_to(list, list->cur->prev, list->head);
}

void tavu_list_rem_cur(tavu_list_t *list) { remove_node(list, list->cur); }

// Without a cursor this one removes the last element and the next one nothing; callers rely on it.
void tavu_list_rem_prev(tavu_list_t *list) {
    const Node *from = list->cur != nullptr ? list->cur : list->tail;
    remove_node(list, prev(list, from));
}

void tavu_list_rem_next(tavu_list_t *list) {
    if (list->cur != nullptr) remove_node(list, next(list, list->cur));
}
