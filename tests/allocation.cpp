#include "memory.h"

// Counts an allocation of `size` bytes; returns whether it must fail.
static bool fails(uint64_t size) {
    FailingAllocations *const a = FailingAllocations::active;
    if (a == nullptr) return false;
    a->bytes = size;
    const bool fail = a->count++ == a->fail_at;
    a->kept += fail ? 0 : 1;
    return fail;
}

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void __real_free(void *block);
void *__wrap_malloc(size_t size) { return fails(size) ? nullptr : __real_malloc(size); }
void *__wrap_calloc(size_t count, size_t size) {
    return fails(uint64_t{count} * size) ? nullptr : __real_calloc(count, size);
}
void __wrap_free(void *block) {
    if (FailingAllocations::active != nullptr && block != nullptr)
        FailingAllocations::active->kept--;
    __real_free(block);
}
}
