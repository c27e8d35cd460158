// Runs the kept inputs of a fuzz target from several threads at once: functions that keep no state give
// each thread what they give to one alone.
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
