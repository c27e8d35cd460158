// Times dlopen() of each given library: microseconds, the median of many loads while it is not yet
// in the process.
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

double load_once(const char *library) {
    if (dlopen(library, RTLD_NOW | RTLD_NOLOAD) != nullptr) {
        std::fprintf(stderr, "%s is loaded already\n", library);
        std::exit(1);
    }
    const auto begin = std::chrono::steady_clock::now();
    void *const handle = dlopen(library, RTLD_NOW);
    const auto end = std::chrono::steady_clock::now();
    if (handle == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    dlclose(handle);
    return std::chrono::duration<double, std::micro>(end - begin).count();
}

}  // namespace

int main(int argc, char **argv) {
    constexpr int LOADS = 501;
    std::vector<std::vector<double>> times(static_cast<size_t>(argc));
    for (int turn = 0; turn < LOADS; turn++) {
        for (int i = 1; i < argc; i++) times[static_cast<size_t>(i)].push_back(load_once(argv[i]));
    }
    for (int i = 1; i < argc; i++) {
        auto &of = times[static_cast<size_t>(i)];
        std::nth_element(of.begin(), of.begin() + LOADS / 2, of.end());
        std::printf("%s|%.1f\n", argv[i], of[LOADS / 2]);
    }
    return 0;
}
