#include <cstdlib>

#include "memory.h"

namespace {
bool active = false;
int countdown = 0;
int calls = 0;

bool fails() {
    if (!active) return false;
    calls++;
    return countdown-- == 0;
}
}  // namespace

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__wrap_malloc(size_t size) { return fails() ? nullptr : __real_malloc(size); }
void *__wrap_calloc(size_t count, size_t size) {
    return fails() ? nullptr : __real_calloc(count, size);
}
}

FailingAllocations::FailingAllocations(int fail_at) {
    countdown = fail_at;
    calls = 0;
    active = true;
}

FailingAllocations::~FailingAllocations() { active = false; }

int FailingAllocations::count() const { return calls; }
