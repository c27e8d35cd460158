// Runs several threads at once, and limits the time without progress.
#ifndef TAVU_TESTS_THREADS_THREADS_H
#define TAVU_TESTS_THREADS_THREADS_H

#include <atomic>
#include <chrono>
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

// While an object exists, ends the process if `progress` does not change for 30 seconds.
class Watchdog {
  public:
    explicit Watchdog(const std::atomic<int> *progress)
        : thread_([this, progress] { watch(progress); }) {}
    Watchdog(const Watchdog &) = delete;
    Watchdog &operator=(const Watchdog &) = delete;
    ~Watchdog() {
        done_ = true;
        thread_.join();
    }

  private:
    void watch(const std::atomic<int> *progress) {
        int last = -1;
        for (int still = 0; !done_; still++) {
            const int now = *progress;
            if (now != last) still = 0;
            last = now;
            require(still < 3000, "no progress for 30 seconds");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::atomic<bool> done_{false};
    std::thread thread_;
};

#endif
