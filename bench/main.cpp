// usage: tavu_bench [peers|growth|threads] [options of Google Benchmark]
#include <cstring>

#include "rows.h"

namespace {

void add_peer_rows() {
    add_text_rows();  // first, before the heap that the lists use is fragmented
    add_csc_rows();
    add_metric_rows();
    add_resize_rows();
    add_memory_rows();
    add_stream_rows();
    add_bounds();
}

struct {
    const char *name;
    void (*add)();
} const TABLES[] = {
    {"peers", add_peer_rows}, {"growth", add_growth_rows}, {"threads", add_thread_rows}};

}  // namespace

int main(int argc, char **argv) {
    const char *wanted = argc > 1 && argv[1][0] != '-' ? argv[1] : TABLES[0].name;
    for (const auto &table : TABLES) {
        if (strcmp(table.name, wanted) == 0) table.add();
    }
    benchmark::Initialize(&argc, argv);
    return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 1;
}
