#include "core/atomic.h"

#include "simd/cpu.h"
#include "tavu.h"

using namespace tavu;

int32_t tavu_atomic_inc(int32_t *word) { return atomic_inc(word); }
int32_t tavu_atomic_dec(int32_t *word) { return atomic_dec(word); }

int32_t tavu_sync_wait(int32_t *word, int32_t value) {
    for (;;) {
        const int32_t now = load_for_event(word);
        if (now == -1) return TAVU_ERR;  // -1 means give up, even if it is the awaited value
        if (now == value) return TAVU_OK;
        wait_for_event();
    }
}

int32_t tavu_sync_wake(int32_t *word, int32_t value) {
    store_and_send_event(word, value);
    return TAVU_OK;
}
