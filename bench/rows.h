// The benchmark's table: each row is one case, timed for every side that can do it on the same
// memory. A side is named "row@who"; scripts/bench puts the sides of a row together.
#ifndef TAVU_BENCH_ROWS_H
#define TAVU_BENCH_ROWS_H

#include <benchmark/benchmark.h>

#include <string>

// Times call(); what it returns, if anything, counts as used.
template <class Call>
void add_side(const std::string &row, const std::string &who, Call call) {
    benchmark::RegisterBenchmark((row + '@' + who).c_str(),
                                 [call](benchmark::State &state) mutable {
                                     for (auto _ : state) {
                                         if constexpr (std::is_void_v<decltype(call())>) {
                                             call();
                                         } else {
                                             benchmark::DoNotOptimize(call());
                                         }
                                         benchmark::ClobberMemory();
                                     }
                                 });
}

// The families, one file each.
void add_csc_rows();
void add_metric_rows();
void add_resize_rows();
void add_memory_rows();
void add_stream_rows();
void add_text_rows();

#endif
