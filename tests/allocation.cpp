#include <cstdlib>

#include "memory.h"

namespace {
bool active = false;
int countdown = 0;
int calls = 0, held = 0;
uint64_t last = 0;

// Counts an allocation of `size` bytes; returns whether it must fail.
bool fails(uint64_t size) {
    if (!active) return false;
    last = size;
    calls++;
    const bool fail = countdown-- == 0;
    held += fail ? 0 : 1;
    return fail;
}
}  // namespace

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void __real_free(void *block);
void *__wrap_malloc(size_t size) { return fails(size) ? nullptr : __real_malloc(size); }
void *__wrap_calloc(size_t count, size_t size) {
    return fails(uint64_t{count} * size) ? nullptr : __real_calloc(count, size);
}
void __wrap_free(void *block) {
    if (active && block != nullptr) held--;
    __real_free(block);
}
}

FailingAllocations::FailingAllocations(int fail_at) {
    countdown = fail_at;
    calls = held = 0;
    active = true;
}

FailingAllocations::~FailingAllocations() { active = false; }

int FailingAllocations::count() const { return calls; }
int FailingAllocations::kept() const { return held; }
uint64_t FailingAllocations::bytes() const { return last; }
