// Which x86-64 level the processor has.
#ifndef TAVU_SIMD_LEVEL_H
#define TAVU_SIMD_LEVEL_H

// For resolvers of indirect functions, which run before relocation is complete and before any
// sanitizer is ready: they call nothing across libraries, do not read the thread's stack guard, and
// are not instrumented.
#if defined(__clang__)
#define TAVU_UNINSTRUMENTED \
    __attribute__((disable_sanitizer_instrumentation, no_sanitize("undefined"), no_stack_protector))
#else
#define TAVU_UNINSTRUMENTED \
    __attribute__((no_sanitize("address", "undefined", "thread"), no_stack_protector))
#endif

// 2, 3 or 4, which takes in VBMI.
extern "C" __attribute__((visibility("hidden"))) int tavu_cpu_level();

#endif
