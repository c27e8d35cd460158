// Band mode of the resizer.
#ifndef TAVU_IMGP_RESIZER_BAND_H
#define TAVU_IMGP_RESIZER_BAND_H

#include "tavu.h"

namespace tavu {

// Makes the target rows whose source rows have come. Line sizes count `line_unit` bytes.
void resize_band(tavu_irsz_t *rsz, const uint8_t *src, int32_t first_row, int32_t rows,
                 int line_unit, tavu_irsz_line_t *make_line);

}  // namespace tavu

#endif
