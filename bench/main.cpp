#include "rows.h"

int main(int argc, char **argv) {
    add_csc_rows();
    add_metric_rows();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
