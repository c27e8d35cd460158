// The variants of a kernel that this processor can run: the exported routine, and that of each level.
#ifndef TAVU_KERNEL_TABLE_VARIANTS_H
#define TAVU_KERNEL_TABLE_VARIANTS_H

#include <vector>

#include "tavu.h"

template <class Routine>
struct Variant {
    const char *level;
    Routine run;
};

// Defined for every kernel of kernels.def: variants<tavu_ssd>(). The exported routine is the first.
template <auto *Routine>
std::vector<Variant<decltype(Routine)>> variants();

#endif
