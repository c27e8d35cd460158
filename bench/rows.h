// The benchmark's tables: each row is one case, timed for every side that can do it on the same
// memory. A side is named "row@who"; scripts/bench puts the sides of a row together. A side whose
// name begins with "bound" does the least that the case demands of the processor.
#ifndef TAVU_BENCH_ROWS_H
#define TAVU_BENCH_ROWS_H

#include <benchmark/benchmark.h>

#include <string>

// Times call(), which does `units` of what the table tells times of; what it returns, if anything,
// counts as used.
template <class Call>
void add_side(const std::string &row, const std::string &who, Call call, double units = 1) {
    benchmark::RegisterBenchmark((row + '@' + who).c_str(),
                                 [call, units](benchmark::State &state) mutable {
                                     for (auto _ : state) {
                                         if constexpr (std::is_void_v<decltype(call())>) {
                                             call();
                                         } else {
                                             benchmark::DoNotOptimize(call());
                                         }
                                         benchmark::ClobberMemory();
                                     }
                                     state.counters["units"] = units;
                                 });
}

// Beside peers, a family in a file.
void add_csc_rows();
void add_metric_rows();
void add_resize_rows();
void add_memory_rows();
void add_stream_rows();
void add_text_rows();
void add_bounds();

// Per pixel or element at several sizes, and by two threads.
void add_growth_rows();
void add_thread_rows();

#endif
