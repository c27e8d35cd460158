// Two threads pass a word back and forth: no wake-up is lost, and earlier writes of the waker are
// visible. Runs as many rounds as fit in a few seconds, because threads that share a core switch
// only at the end of a time slice.
#include "tavu.h"
#include "threads.h"

namespace {

constexpr int ROUNDS = 3000000, FEWEST = 100;

bool in_time() {
    static const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(8);
    return std::chrono::steady_clock::now() < end;
}

void pass_back_and_forth(std::atomic<int> *progress) {
    int32_t word = 0;
    std::atomic<int> data{0};
    const Watchdog watchdog(progress);
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
        for (int i = 1; i < 2 * ROUNDS && (i < 2 * FEWEST || in_time()); i += 2) {
            data.store(i, std::memory_order_relaxed);
            tavu_sync_wake(&word, i);
            require(tavu_sync_wait(&word, i + 1) == TAVU_OK, "the wait for the answer succeeds");
            std::atomic_thread_fence(std::memory_order_acquire);
            require(data.load(std::memory_order_relaxed) == i + 1,
                    "the data is visible with the answer");
            *progress = i / 2 + 1;
        }
        tavu_sync_wake(&word, -1);
    });
}

}  // namespace

int main() {
    std::atomic<int> rounds{0};
    pass_back_and_forth(&rounds);
    std::printf("%d rounds\n", rounds.load());
    return 0;
}
