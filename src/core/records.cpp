// The layout of the records is part of the ABI; these assertions pin it for 32 and 64 bits.
#include <cstddef>

#include "tavu.h"

namespace {

template <size_t On32, size_t On64>
constexpr size_t AT = sizeof(void *) == 4 ? On32 : On64;  // NOLINT(bugprone-branch-clone)

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

AT_OFFSET(tavu_audb_t, samples, 16, 32);
AT_OFFSET(tavu_audb_t, bytes, 48, 64);
AT_OFFSET(tavu_audb_t, addr, 80, 96);
AT_OFFSET(tavu_audb_t, paddr, 112, 160);
AT_OFFSET(tavu_audb_t, channels, 144, 192);
AT_OFFSET(tavu_audb_t, format, 160, 208);
AT_OFFSET(tavu_audb_t, mem_alloc, 196, 248);
AT_OFFSET(tavu_audb_t, mem_free, 200, 256);

AT_OFFSET(tavu_bitb_t, addr, 16, 32);
AT_OFFSET(tavu_bitb_t, paddr, 20, 40);
AT_OFFSET(tavu_bitb_t, value, 32, 52);
AT_OFFSET(tavu_bitb_t, mem_alloc, 68, 88);
AT_OFFSET(tavu_bitb_t, mem_free, 72, 96);

static_assert(sizeof(tavu_mfal_t) == AT<84, 104>);

AT_OFFSET(tavu_vdata_t, len, 4, 4);
AT_OFFSET(tavu_vdata_t, data, 8, 8);

AT_OFFSET(tavu_bsr_t, leftbits, 4, 4);
AT_OFFSET(tavu_bsr_t, cur, 8, 8);
AT_OFFSET(tavu_bsr_t, end, 12, 16);
AT_OFFSET(tavu_bsr_t, beg, 16, 24);
AT_OFFSET(tavu_bsr_t, size, 20, 32);
AT_OFFSET(tavu_bsr_t, flush, 24, 40);

AT_OFFSET(tavu_bsw_t, cur, 8, 8);
AT_OFFSET(tavu_bsw_t, flush, 24, 40);

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

AT_OFFSET(tavu_list_node_t, next, 4, 8);
AT_OFFSET(tavu_list_t, cnt, 4, 4);
AT_OFFSET(tavu_list_t, head, 8, 8);
AT_OFFSET(tavu_list_t, tail, 12, 16);
AT_OFFSET(tavu_list_t, cur, 16, 24);
AT_OFFSET(tavu_list_t, release, 20, 32);

AT_OFFSET(tavu_rbuf_t, tail, 4, 4);
AT_OFFSET(tavu_rbuf_t, size, 8, 8);
AT_OFFSET(tavu_rbuf_t, buf, 12, 16);

AT_OFFSET(tavu_rlist_slot_t, next, 4, 8);
AT_OFFSET(tavu_rlist_t, slot_size, 4, 4);
AT_OFFSET(tavu_rlist_t, used, 8, 8);
AT_OFFSET(tavu_rlist_t, last, 12, 16);
AT_OFFSET(tavu_rlist_t, first, 16, 24);

}  // namespace
