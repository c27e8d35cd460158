/*
 * Reads a sequence parameter set of H.264 with the bit reader: profile, level and picture size.
 * Build: cc parse_sps.c $(pkg-config --cflags --libs tavu)
 */
#include <stdio.h>
#include <tavu.h>

/* A NAL unit without its start code; the pictures have 1088 rows, of which 8 are cropped. */
static const uint8_t nal[] = {0x67, 0x42, 0xc0, 0x28, 0xd9, 0x00, 0x78, 0x02, 0x27,
                              0xe5, 0xc0, 0x44, 0x00, 0x00, 0x03, 0x00, 0x04, 0x00,
                              0x00, 0x03, 0x00, 0xc8, 0x3c, 0x60, 0xc9, 0x20};

/* Drops the emulation prevention bytes: the 3 of every 0, 0, 3. Returns the length. */
static int32_t unescape(const uint8_t *src, int32_t size, uint8_t *dst) {
    int32_t n = 0, zeros = 0;
    for (int32_t i = 0; i < size; i++) {
        const int drop = zeros >= 2 && src[i] == 3;
        zeros = src[i] == 0 ? zeros + 1 : 0;
        if (!drop) dst[n++] = src[i];
    }
    return n;
}

static void skip_picture_order(tavu_bsr_t *bs) {
    const int32_t type = tavu_bsr_read_ue(bs);
    if (type == 0) tavu_bsr_read_ue(bs); /* log2_max_pic_order_cnt_lsb_minus4 */
    if (type != 1) return;
    tavu_bsr_read1(bs);
    tavu_bsr_read_se(bs);
    tavu_bsr_read_se(bs);
    for (int32_t n = tavu_bsr_read_ue(bs); n > 0; n--) tavu_bsr_read_se(bs);
}

int main(void) {
    uint8_t rbsp[sizeof nal];
    tavu_bsr_t bs;
    tavu_bsr_init(&bs, rbsp, unescape(nal, sizeof nal, rbsp), NULL);
    if ((tavu_bsr_read(&bs, 8) & 31) != 7) return 1; /* nal_unit_type */
    const int32_t profile = tavu_bsr_read(&bs, 8);
    if (profile != 66 && profile != 77 && profile != 88) return 1; /* others have more fields */
    tavu_bsr_skip(&bs, 8);                                         /* constraint flags */
    const int32_t level = tavu_bsr_read(&bs, 8);
    tavu_bsr_read_ue(&bs); /* seq_parameter_set_id */
    tavu_bsr_read_ue(&bs); /* log2_max_frame_num_minus4 */
    skip_picture_order(&bs);
    tavu_bsr_read_ue(&bs); /* max_num_ref_frames */
    tavu_bsr_skip(&bs, 1); /* gaps_in_frame_num_value_allowed_flag */
    int32_t width = 16 * (tavu_bsr_read_ue(&bs) + 1), height = 16 * (tavu_bsr_read_ue(&bs) + 1);
    const int32_t fields = tavu_bsr_read1(&bs) ? 1 : 2; /* frame_mbs_only_flag */
    height *= fields;
    tavu_bsr_skip(&bs, fields); /* mb_adaptive_frame_field_flag, direct_8x8_inference_flag */
    if (tavu_bsr_read1(&bs)) {  /* frame_cropping_flag; offsets count chroma samples */
        width -= 2 * (tavu_bsr_read_ue(&bs) + tavu_bsr_read_ue(&bs));
        height -= 2 * fields * (tavu_bsr_read_ue(&bs) + tavu_bsr_read_ue(&bs));
    }
    if (tavu_bsr_read1(&bs) < 0 || bs.leftbits < 0) return 1; /* the data ended before */
    printf("profile %d, level %d.%d, %d x %d\n", profile, level / 10, level % 10, width, height);
    return 0;
}
