// Runs the kept inputs of a fuzz target in several threads at once: functions without state give
// each thread the same results as a single thread.
#include <cstdint>
#include <cstdio>

#include "pack.h"
#include "threads.h"

int main(int argc, char **argv) {
    if (argc != 2) return 1;
    const auto pack = read_file(argv[1]);
    std::atomic<int> inputs{0};
    run_threads(4, [&](int) { inputs += replay(pack); });
    std::printf("%d inputs\n", inputs.load());
    return inputs > 0 ? 0 : 1;
}
