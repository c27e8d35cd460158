// Counters and reference counts in several threads. Every thread writes to the payload while it
// holds a reference; the one that drops the last reference frees it after all writes.
#include "tavu.h"
#include "threads.h"

namespace {

constexpr int THREADS = 4, ROUNDS = 200;
std::atomic<int> freed{0};

void *allocate(int32_t size, uint32_t *) { return malloc(static_cast<size_t>(size)); }

void release(void *payload, uint32_t) {
    freed++;
    free(payload);
}

// Each thread takes references, uses its part of the payload and drops all of them.
template <class Object>
void share(Object *object, uint8_t *payload) {
    require(object != nullptr, "the object is created");
    for (int i = 1; i < THREADS; i++) object->addref(object);
    run_threads(THREADS, [=](int thread) {
        for (int i = 0; i < 50; i++) {
            require(object->addref(object) > 1, "addref counts a reference");
            require(object->getref(object) > 1, "getref counts the held references");
            payload[thread] = static_cast<uint8_t>(payload[thread] + 1);
            require(object->release(object) >= 1, "release leaves other references");
        }
        payload[thread] = 0;
        object->release(object);
    });
}

void count() {
    int32_t word = 0;
    run_threads(THREADS, [&](int thread) {
        for (int i = 0; i < 100000; i++) {
            thread % 2 == 0 ? tavu_atomic_inc(&word) : tavu_atomic_dec(&word);
        }
    });
    require(word == 0, "increments and decrements cancel");
}

}  // namespace

int main() {
    count();
    for (int i = 0; i < ROUNDS; i++) {
        tavu_imgb_t *image =
            tavu_imgb_create(8, 8, 10, 0, nullptr, nullptr, allocate, release, nullptr);
        share(image, image->base[0]);
        tavu_audb_t *audio = tavu_audb_create(8, 1, 8, 0, 1, 0, allocate, release, nullptr);
        share(audio, audio->addr[0]);
        tavu_bitb_t *bits = tavu_bitb_create(8, 0, 0, allocate, release, nullptr);
        share(bits, bits->addr);
    }
    require(freed == 3 * ROUNDS, "each payload is freed once");
    std::printf("%d objects\n", freed.load());
    return 0;
}
