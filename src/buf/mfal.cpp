#include "buf/refcount.h"

namespace tavu {
namespace {

void free_mfal(tavu_mfal_t *mfal) { free(mfal); }

}  // namespace
}  // namespace tavu

using namespace tavu;

tavu_mfal_t *tavu_mfal_create(int32_t, int32_t *status) {
    return create_counted<tavu_mfal_t, free_mfal>(status,
                                                  [](tavu_mfal_t *) -> int32_t { return TAVU_OK; });
}
