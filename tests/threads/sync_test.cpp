// Two threads hand a word to and fro: no wake-up is lost, and what the waker wrote before is seen. As
// many rounds as fit into a few seconds, for threads that share a core take turns by its time slices.
#include "tavu.h"
#include "threads.h"

namespace {

constexpr int ROUNDS = 3000000, FEWEST = 100;

bool in_time() {
    static const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(8);
    return std::chrono::steady_clock::now() < end;
}

void hand_to_and_fro(std::atomic<int> *progress) {
    int32_t word = 0;
    std::atomic<int> data{0};
    const Watchdog watchdog(progress);
    run_threads(2, [&](int side) {
        if (side == 1) {
            for (int i = 1; tavu_sync_wait(&word, i) == TAVU_OK; i += 2) {
                std::atomic_thread_fence(std::memory_order_acquire);
                require(data.load(std::memory_order_relaxed) == i,
                        "the data comes before the word");
                data.store(i + 1, std::memory_order_relaxed);
                tavu_sync_wake(&word, i + 1);
            }
            return;
        }
        for (int i = 1; i < 2 * ROUNDS && (i < 2 * FEWEST || in_time()); i += 2) {
            data.store(i, std::memory_order_relaxed);
            tavu_sync_wake(&word, i);
            require(tavu_sync_wait(&word, i + 1) == TAVU_OK, "the word is answered");
            std::atomic_thread_fence(std::memory_order_acquire);
            require(data.load(std::memory_order_relaxed) == i + 1,
                    "the answer comes with its data");
            *progress = i / 2 + 1;
        }
        tavu_sync_wake(&word, -1);
    });
}

}  // namespace

int main() {
    std::atomic<int> rounds{0};
    hand_to_and_fro(&rounds);
    std::printf("%d rounds\n", rounds.load());
    return 0;
}
