// The layout of the records is part of the ABI: it is pinned here for 32 and 64 bits.
#include <cstddef>

#include "tavu.h"

namespace {

template <size_t On32, size_t On64>
constexpr size_t AT = sizeof(void *) == 4 ? On32 : On64;

#define AT_OFFSET(record, field, on32, on64) \
    static_assert(offsetof(record, field) == AT<on32, on64>, #record "." #field)

AT_OFFSET(tavu_imgb_t, refcnt, 0, 0);
AT_OFFSET(tavu_imgb_t, addref, 4, 8);
AT_OFFSET(tavu_imgb_t, release, 12, 24);
AT_OFFSET(tavu_imgb_t, w, 16, 32);
AT_OFFSET(tavu_imgb_t, cs, 32, 48);
AT_OFFSET(tavu_imgb_t, stride, 36, 52);
AT_OFFSET(tavu_imgb_t, rows, 52, 68);
AT_OFFSET(tavu_imgb_t, addr, 68, 88);
AT_OFFSET(tavu_imgb_t, paddr, 84, 120);
AT_OFFSET(tavu_imgb_t, aw, 132, 168);
AT_OFFSET(tavu_imgb_t, mem_alloc, 140, 176);
AT_OFFSET(tavu_imgb_t, base, 148, 192);
AT_OFFSET(tavu_imgb_t, pbase, 164, 224);
AT_OFFSET(tavu_imgb_t, size, 180, 240);
static_assert(sizeof(tavu_imgb_t) == AT<196, 256>);

AT_OFFSET(tavu_bsr_t, leftbits, 4, 4);
AT_OFFSET(tavu_bsr_t, cur, 8, 8);
AT_OFFSET(tavu_bsr_t, end, 12, 16);
AT_OFFSET(tavu_bsr_t, beg, 16, 24);
AT_OFFSET(tavu_bsr_t, size, 20, 32);
AT_OFFSET(tavu_bsr_t, flush, 24, 40);

AT_OFFSET(tavu_md5_t, msg, 16, 16);
AT_OFFSET(tavu_md5_t, bits, 80, 80);

AT_OFFSET(tavu_irsz_param, band_h, 20, 20);
AT_OFFSET(tavu_irsz_param, dst, 36, 40);

AT_OFFSET(tavu_irsz_t, pos_y, 16, 16);
AT_OFFSET(tavu_irsz_t, line_size, 24, 24);
AT_OFFSET(tavu_irsz_t, dst_w, 28, 28);
AT_OFFSET(tavu_irsz_t, shift_x, 40, 40);
AT_OFFSET(tavu_irsz_t, pending, 56, 56);
AT_OFFSET(tavu_irsz_t, out_row, 64, 64);
AT_OFFSET(tavu_irsz_t, reuse, 72, 72);
AT_OFFSET(tavu_irsz_t, rsz_func, 76, 80);
AT_OFFSET(tavu_irsz_t, carry_buf, 80, 88);
AT_OFFSET(tavu_irsz_t, dst, 84, 96);

}  // namespace
