#include "buf/payload.h"
#include "buf/refcount.h"

namespace tavu {
namespace {

constexpr int32_t MAX_BLOCKS = 8;

void free_audb(tavu_audb_t *audb) {
    for (int i = 0; i < MAX_BLOCKS; i++) {
        free_payload(audb->addr[i], audb->paddr[i], audb->mem_free);
    }
    free(audb);
}

// Bytes per block; -1 if out of range.
int32_t block_size(const tavu_audb_t &audb, int32_t samples) {
    if (samples < 0 || audb.channels < 0 || audb.bits < 0) return -1;
    const int64_t sample_bytes = (static_cast<int64_t>(audb.bits) + 7) >> 3;
    const int64_t channel = samples * sample_bytes;
    if (channel > INT32_MAX) return -1;
    const int64_t block = audb.interleaved ? channel * audb.channels : channel;
    return block > INT32_MAX ? -1 : static_cast<int32_t>(block);
}

// Allocates the blocks; returns a status code.
int32_t init_audb(tavu_audb_t *audb, int32_t samples) {
    audb->interleaved = audb->format >= 1 && audb->format <= 99;
    const int32_t blocks = audb->interleaved ? 1 : audb->channels;
    const int32_t bytes = block_size(*audb, samples);
    if (bytes < 0 || blocks > MAX_BLOCKS) return TAVU_ERR_INVALID_ARGUMENT;
    for (int32_t i = 0; i < blocks; i++) {
        audb->samples[i] = samples;
        audb->bytes[i] = bytes;
        audb->addr[i] = static_cast<uint8_t *>(audb->mem_alloc(bytes, &audb->paddr[i]));
        if (audb->addr[i] == nullptr) return TAVU_ERR_BUFFER_ALLOC;
    }
    return TAVU_OK;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_audb_t *tavu_audb_create(int32_t samples, int32_t channels, int32_t bits, int32_t value,
                              int32_t format, int32_t, tavu_imgb_alloc_fn mem_alloc,
                              tavu_imgb_free_fn mem_free, int32_t *status) {
    return create_counted<tavu_audb_t, free_audb>(status, [=](tavu_audb_t *audb) {
        audb->channels = channels;
        audb->bits = bits;
        audb->value = value;
        audb->format = format;
        audb->mem_alloc = mem_alloc != nullptr ? mem_alloc : aligned_payload;
        audb->mem_free = mem_alloc != nullptr ? mem_free : free_aligned_payload;
        return init_audb(audb, samples);
    });
}
