// Scalar instructions that C++ has no word for.
#ifndef TAVU_SIMD_CPU_H
#define TAVU_SIMD_CPU_H

#include <cstdint>

namespace tavu {

// Shifts as ARM's registers do them: the count is taken as its low 8 bits, and 32 or more yields 0.
inline uint32_t shift_left(uint32_t x, int32_t n) {
#if defined(__arm__)
    uint32_t r;
    __asm__("lsl %0, %1, %2" : "=r"(r) : "r"(x), "r"(n));
    return r;
#else
    return (n & 0xFF) < 32 ? x << (n & 31) : 0;
#endif
}

inline uint32_t shift_right(uint32_t x, int32_t n) {
#if defined(__arm__)
    uint32_t r;
    __asm__("lsr %0, %1, %2" : "=r"(r) : "r"(x), "r"(n));
    return r;
#else
    return (n & 0xFF) < 32 ? x >> (n & 31) : 0;
#endif
}

// Leading zero bits; 32 for 0.
inline int32_t count_leading_zeros(uint32_t x) { return x == 0 ? 32 : __builtin_clz(x); }

// -1 for 0.
inline int32_t floor_log2(uint32_t x) { return 31 - count_leading_zeros(x); }

// Loads a word such that on ARM a store to it by another core ends wait_for_event().
inline int32_t load_for_event(const int32_t *word) {
#if defined(__arm__)
    int32_t v;
    __asm__ volatile("ldrex %0, %1" : "=r"(v) : "Q"(*word) : "memory");
    return v;
#elif defined(__aarch64__)
    int32_t v;
    __asm__ volatile("ldxr %w0, %1" : "=r"(v) : "Q"(*word) : "memory");
    return v;
#else
    return __atomic_load_n(word, __ATOMIC_RELAXED);
#endif
}

inline void wait_for_event() {
#if defined(__arm__) || defined(__aarch64__)
    __asm__ volatile("wfe" ::: "memory");
#elif defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

// Stores a word between full barriers and wakes every core in wait_for_event().
inline void store_and_send_event(int32_t *word, int32_t value) {
    __atomic_thread_fence(__ATOMIC_SEQ_CST);
    __atomic_store_n(word, value, __ATOMIC_RELAXED);
#if defined(__arm__)
    __asm__ volatile("dsb\n\tsev" ::: "memory");
#elif defined(__aarch64__)
    __asm__ volatile("dsb ish\n\tsev" ::: "memory");
#else
    __atomic_thread_fence(__ATOMIC_SEQ_CST);
#endif
}

}  // namespace tavu

#endif
