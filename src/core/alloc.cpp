#include "core/alloc.h"

#include "tavu.h"

using namespace tavu;

void *tavu_malloc_align32(uint32_t size) { return malloc_align32(size); }
void tavu_mfree_align32(void *block) { free_align32(block); }
void *tavu_malloc_fast_align32(uint32_t size) { return malloc_align32(size); }
void tavu_mfree_fast_align32(void *block) { free_align32(block); }
