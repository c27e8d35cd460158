#include "routines.h"

tavu_fn_csc_t offered_routine(int32_t from, int32_t to, bool resizing) {
    return tavu_imgp_get_fn_csc(2, 2, from, 2, resizing ? 1 : 2, to, nullptr);
}

int32_t written_code(int32_t from, int32_t to) {
    const bool stand_in =
        to == TAVU_CS_RGBA5658 &&
        offered_routine(from, to, false) == offered_routine(from, TAVU_CS_RGBA8888, false);
    return stand_in ? TAVU_CS_RGBA8888 : to;
}

tavu_fn_csc_t find_routine(int32_t from, int32_t to, bool resizing) {
    // The same-size routines for R, G, B order also write B, G, R, depending on the target code.
    if (!resizing && to == TAVU_CS_BGR888) to = TAVU_CS_RGB888;
    if (!resizing && to == TAVU_CS_BGRA8888) to = TAVU_CS_RGBA8888;
    return written_code(from, to) == to ? offered_routine(from, to, resizing) : nullptr;
}
