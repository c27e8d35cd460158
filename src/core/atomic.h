// Atomic counters. Relaxed: they do not order other accesses.
#ifndef TAVU_CORE_ATOMIC_H
#define TAVU_CORE_ATOMIC_H

#include <cstdint>

namespace tavu {

inline int32_t atomic_inc(int32_t *word) { return __atomic_add_fetch(word, 1, __ATOMIC_RELAXED); }
inline int32_t atomic_dec(int32_t *word) { return __atomic_sub_fetch(word, 1, __ATOMIC_RELAXED); }

}  // namespace tavu

#endif
