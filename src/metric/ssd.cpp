#include "metric/ssd_model.h"

using namespace tavu;

TAVU_METRIC_AREA(tavu_ssd, ssd_area)
