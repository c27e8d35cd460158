// The benchmark's tables. Each row is one case, timed for all its sides on the same memory. A side
// is named "row@who"; scripts/bench combines the sides of a row. A side whose name begins with
// "bound" does the minimum work that the case requires of the processor.
#ifndef TAVU_BENCH_ROWS_H
#define TAVU_BENCH_ROWS_H

#include <benchmark/benchmark.h>

#include <string>

// Times call(), which performs `units` operations. Its result, if any, is not optimised away.
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

// Comparisons with peers, one family per file.
void add_csc_rows();
void add_metric_rows();
void add_resize_rows();
void add_memory_rows();
void add_stream_rows();
void add_text_rows();
void add_bounds();

// Times per pixel or element at several sizes, and throughput of two threads.
void add_growth_rows();
void add_thread_rows();

#endif
