#include "metric/satd_model.h"

#include <cstring>

using namespace tavu;

TAVU_METRIC_BLOCK(tavu_satd4x4, satd4x4)
TAVU_METRIC_BLOCK(tavu_satd8x8, satd8x8)
TAVU_METRIC_AREA(tavu_satd, tiles<4, satd4x4>)
TAVU_METRIC_AREA(tavu_satd1, tiles<4, satd4x4>)
TAVU_METRIC_AREA(tavu_satd2, tiles<8, satd8x8>)

int32_t tavu_hadamard4x4(const int16_t *block) {
    Transform<4> t;
    memcpy(t.at, block, sizeof t.at);
    return hadamard4x4(t);
}
