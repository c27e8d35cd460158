// The forms of a kernel that this processor can run: what is exported, and the levels behind it.
#ifndef TAVU_BENCH_VARIANTS_H
#define TAVU_BENCH_VARIANTS_H

#include <cstddef>
#include <vector>

#include "tavu.h"

template <class Routine>
struct Variant {
    const char *level;
    Routine run;
};

// Defined for every kernel that is compiled at several levels: variants<tavu_ssd>().
template <auto *Routine>
std::vector<Variant<decltype(Routine)>> variants();

#endif
