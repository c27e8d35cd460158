// Runs several threads at once.
#ifndef TAVU_TESTS_THREADS_THREADS_H
#define TAVU_TESTS_THREADS_THREADS_H

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

inline void require(bool ok, const char *condition) {
    if (ok) return;
    std::fprintf(stderr, "failed: %s\n", condition);
    std::_Exit(1);
}

// Runs work(0), work(1), ... in threads that start together.
template <class Work>
void run_threads(int count, Work work) {
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    threads.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; i++) {
        threads.emplace_back([&, i] {
            ready++;
            while (ready < count) std::this_thread::yield();
            work(i);
        });
    }
    for (std::thread &t : threads) t.join();
}

#endif
