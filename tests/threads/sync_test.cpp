// Two threads pass a word back and forth: no wake-up is lost, and earlier writes of the waker are
// visible. Runs as many rounds as fit in a few seconds, because threads that share a core switch
// only at the end of a time slice.
#include <unistd.h>

#include <chrono>

#include "tavu.h"
#include "threads.h"

namespace {

constexpr int ROUNDS = 3000000, FEWEST = 100;

bool in_time() {
    static const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(8);
    return std::chrono::steady_clock::now() < end;
}

// Returns the number of rounds. A lost wake-up ends the process after 30 seconds.
int pass_back_and_forth() {
    int32_t word = 0;
    std::atomic<int> data{0};
    int rounds = 0;
    run_threads(2, [&](int side) {
        if (side == 1) {
            for (int i = 1; tavu_sync_wait(&word, i) == TAVU_OK; i += 2) {
                std::atomic_thread_fence(std::memory_order_acquire);
                require(data.load(std::memory_order_relaxed) == i,
                        "the data is visible with the word");
                data.store(i + 1, std::memory_order_relaxed);
                tavu_sync_wake(&word, i + 1);
            }
            return;
        }
        for (int i = 1; rounds < ROUNDS && (rounds < FEWEST || in_time()); i += 2, rounds++) {
            alarm(30);
            data.store(i, std::memory_order_relaxed);
            tavu_sync_wake(&word, i);
            require(tavu_sync_wait(&word, i + 1) == TAVU_OK, "the wait for the answer succeeds");
            std::atomic_thread_fence(std::memory_order_acquire);
            require(data.load(std::memory_order_relaxed) == i + 1,
                    "the data is visible with the answer");
        }
        tavu_sync_wake(&word, -1);
    });
    return rounds;
}

}  // namespace

int main() {
    std::printf("%d rounds\n", pass_back_and_forth());
    return 0;
}
