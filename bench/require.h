// Ends the benchmark if the sides of a row have different results.
#ifndef TAVU_BENCH_REQUIRE_H
#define TAVU_BENCH_REQUIRE_H

#include <cstdio>
#include <cstdlib>
#include <string>

inline void require(bool same, const std::string &row) {
    if (same) return;
    std::fprintf(stderr, "%s: the sides differ\n", row.c_str());
    std::exit(1);
}

#endif
