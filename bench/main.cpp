#include "rows.h"

int main(int argc, char **argv) {
    add_csc_rows();
    add_metric_rows();
    add_resize_rows();
    add_memory_rows();
    add_stream_rows();
    add_text_rows();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
