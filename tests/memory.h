// Memory for tests: guard pages, canaries, random bytes, allocations that fail.
#ifndef TAVU_TESTS_MEMORY_H
#define TAVU_TESTS_MEMORY_H

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

using Bytes = std::vector<uint8_t>;

inline Bytes random_bytes(size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (size_t i = 0; i < size; i += sizeof(uint32_t)) {
        const auto word = static_cast<uint32_t>(random());
        memcpy(&bytes[i], &word, std::min(size - i, sizeof word));
    }
    return bytes;
}

// `size` bytes that end at an unreadable page, preceded by an unreadable page and a margin of
// canaries: sanitizers do not see reads of vector instructions past the end of a buffer.
class GuardedBytes {
  public:
    explicit GuardedBytes(size_t size) : size_(size) {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        mapped_ = (size + MARGIN + page - 1) / page * page + 2 * page;
        void *map = mmap(near_, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map == MAP_FAILED) throw std::bad_alloc();
        if (near_ == nullptr) near_ = map;
        map_ = static_cast<uint8_t *>(map);
        usable_ = map_ + page;
        end_ = map_ + mapped_ - page;
        if (mprotect(usable_, mapped_ - 2 * page, PROT_READ | PROT_WRITE) != 0) {
            throw std::bad_alloc();
        }
        memset(usable_, CANARY, static_cast<size_t>(end_ - usable_));
    }
    explicit GuardedBytes(const Bytes &content) : GuardedBytes(content.size()) {
        if (size_ > 0) memcpy(data(), content.data(), size_);
    }
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;
    ~GuardedBytes() { munmap(map_, mapped_); }

    uint8_t *data() { return end_ - size_; }
    size_t size() const { return size_; }
    Bytes bytes() { return Bytes(data(), end_); }
    bool front_is_intact() {
        const auto more = static_cast<size_t>(data() - usable_) - 1;
        return *usable_ == CANARY && memcmp(usable_, usable_ + 1, more) == 0;
    }

    static constexpr uint8_t CANARY = 0xA5;

  private:
    static constexpr size_t MARGIN = 64;
    // The address of a thread's first mapping, reused as a hint. Without it the ARM emulator uses
    // new addresses each time and finally some that the sanitizer does not track.
    inline static thread_local void *near_ = nullptr;
    size_t size_, mapped_;
    uint8_t *map_, *usable_, *end_;
};

// While an object exists, allocation number `fail_at` (from 0) by malloc or calloc returns null. It
// counts all allocations and those not freed, and records the size of the last one.
struct FailingAllocations {
    explicit FailingAllocations(int number) : fail_at(number) { active = this; }
    FailingAllocations(const FailingAllocations &) = delete;
    FailingAllocations &operator=(const FailingAllocations &) = delete;
    ~FailingAllocations() { active = nullptr; }

    int fail_at, count = 0, kept = 0;
    uint64_t bytes = 0;
    inline static FailingAllocations *active = nullptr;
};

#endif
