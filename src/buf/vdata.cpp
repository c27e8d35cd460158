#include <cstdlib>
#include <cstring>

#include "tavu.h"

namespace tavu {
namespace {

int32_t set(tavu_vdata_t *vd, const void *src, int32_t len, int32_t type) {
    if (vd == nullptr || src == nullptr || len < 1) return TAVU_ERR_INVALID_ARGUMENT;
    const auto bytes = static_cast<size_t>(len);
    auto *copy = static_cast<uint8_t *>(malloc(bytes + 2));
    if (copy == nullptr) return TAVU_ERR_OUT_OF_MEMORY;
    memcpy(copy, src, bytes);
    copy[bytes] = copy[bytes + 1] = 0;
    *vd = {type, len, copy};
    return TAVU_OK;
}

}  // namespace
}  // namespace tavu

using namespace tavu;

int32_t tavu_vdata_set(tavu_vdata_t *vd, const void *src, int32_t len, int32_t type) {
    return set(vd, src, len, type);
}

int32_t tavu_vdata_cpy(tavu_vdata_t *dst, const tavu_vdata_t *src) {
    if (src == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    return set(dst, src->data, src->len, src->type);
}

void tavu_vdata_free(tavu_vdata_t *vd) {
    if (vd == nullptr) return;
    free(vd->data);
    *vd = {};
}
