#include <cstdlib>

#include "buf/payload.h"
#include "buf/refcount.h"

namespace tavu {
namespace {

void *default_alloc(int32_t size, uint32_t *second) {
    *second = 0;
    return size < 0 ? nullptr : malloc(static_cast<size_t>(size));
}

void default_free(void *payload, uint32_t) { free(payload); }

void free_bitb(tavu_bitb_t *bitb) {
    free_payload(bitb->addr, bitb->paddr, bitb->mem_free);
    free(bitb);
}

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_bitb_t *tavu_bitb_create(int32_t size, int32_t value, int32_t, tavu_imgb_alloc_fn mem_alloc,
                              tavu_imgb_free_fn mem_free, int32_t *status) {
    return create_counted<tavu_bitb_t, free_bitb>(status, [=](tavu_bitb_t *bitb) -> int32_t {
        bitb->value = value;
        bitb->mem_alloc = mem_alloc != nullptr ? mem_alloc : default_alloc;
        bitb->mem_free = mem_alloc != nullptr ? mem_free : default_free;
        bitb->addr = static_cast<uint8_t *>(bitb->mem_alloc(size, &bitb->paddr));
        return bitb->addr != nullptr ? TAVU_OK : TAVU_ERR_BITB_ALLOC;
    });
}
