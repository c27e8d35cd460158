// The level that the processor has.
#ifndef TAVU_SIMD_X86_CPU_LEVEL_H
#define TAVU_SIMD_X86_CPU_LEVEL_H

// The attributes of resolvers of indirect functions and of all that they call. Resolvers run before
// relocation is complete and before a sanitizer is ready: they call nothing in other libraries, do not
// read the thread's stack guard, and are not instrumented.
#if defined(__clang__)
#define TAVU_UNINSTRUMENTED \
    __attribute__((disable_sanitizer_instrumentation, no_sanitize("undefined"), no_stack_protector))
#else
#define TAVU_UNINSTRUMENTED \
    __attribute__((no_sanitize("address", "undefined", "thread"), no_stack_protector))
#endif

// 2, 3 or 4, as TAVU_LEVEL.
extern "C" __attribute__((visibility("hidden"))) int tavu_cpu_level();

#endif
