// Runs a fuzz target on the inputs in packs, for builds without libFuzzer.
#include <cstdio>

#include "pack.h"

int main(int argc, char **argv) {
    int count = 0;
    for (int i = 1; i < argc; i++) count += replay(read_file(argv[i]));
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
