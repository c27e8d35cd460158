/*
 * Reads a sequence parameter set of H.264 with the bit reader: profile, level and picture size.
 * Build: cc parse_sps.c $(pkg-config --cflags --libs tavu)
 */
#include <stdio.h>
#include <tavu.h>

/* A NAL unit without its start code; the pictures have 1088 rows, 8 of them cropped. */
static const uint8_t nal[] = {0x67, 0x42, 0xc0, 0x28, 0xd9, 0x00, 0x78, 0x02, 0x27,
                              0xe5, 0xc0, 0x44, 0x00, 0x00, 0x03, 0x00, 0x04, 0x00,
                              0x00, 0x03, 0x00, 0xc8, 0x3c, 0x60, 0xc9, 0x20};

/* Removes the emulation prevention bytes: the 3 of every 0, 0, 3. Returns the length. */
static int32_t unescape(const uint8_t *src, int32_t size, uint8_t *dst) {
    int32_t n = 0, zeros = 0;
    for (int32_t i = 0; i < size; i++) {
        const int drop = zeros >= 2 && src[i] == 3;
        zeros = src[i] == 0 ? zeros + 1 : 0;
        if (!drop) dst[n++] = src[i];
    }
    return n;
}

/* A bit reader whose refill records the end of the data. The refill gets the address of `bits`,
 * which is therefore the first member. */
struct reader {
    tavu_bsr_t bits;
    int broken;
};

static int32_t refill(tavu_bsr_t *bits, int32_t bytes) {
    const int32_t status = tavu_bsr_flush(bits, bytes);
    if (status != 0) ((struct reader *)bits)->broken = 1;
    return status;
}

/* True if a field was out of range or extended past the end of the data. */
static int is_broken(const struct reader *r) { return r->broken || r->bits.leftbits < 0; }

/* Reads a code with a value in 0..max. */
static int32_t read_ue(struct reader *r, int32_t max) {
    const int32_t value = tavu_bsr_read_ue(&r->bits);
    if (value >= 0 && value <= max) return value;
    r->broken = 1;
    return 0;
}

static void skip_picture_order(struct reader *r) {
    const int32_t type = read_ue(r, 2);
    if (type == 0) read_ue(r, 12); /* log2_max_pic_order_cnt_lsb_minus4 */
    if (type != 1) return;
    tavu_bsr_read1(&r->bits);
    tavu_bsr_read_se(&r->bits);
    tavu_bsr_read_se(&r->bits);
    for (int32_t n = read_ue(r, 255); n > 0; n--) tavu_bsr_read_se(&r->bits);
}

struct sequence {
    int32_t profile, level, width, height;
};

static void read_size(struct reader *r, struct sequence *info) {
    info->width = 16 * (read_ue(r, 1023) + 1);
    info->height = 16 * (read_ue(r, 1023) + 1);
    const int32_t fields = tavu_bsr_read1(&r->bits) != 0 ? 1 : 2; /* frame_mbs_only_flag */
    info->height *= fields;
    tavu_bsr_skip(&r->bits, fields); /* mb_adaptive_frame_field_flag, direct_8x8_inference_flag */
    if (tavu_bsr_read1(&r->bits) == 1) { /* frame_cropping_flag; offsets count chroma samples */
        info->width -= 2 * (read_ue(r, 4095) + read_ue(r, 4095));
        info->height -= 2 * fields * (read_ue(r, 4095) + read_ue(r, 4095));
    }
    if (info->width < 1 || info->height < 1) r->broken = 1;
}

/* Reads the parameter set in the NAL unit. Returns 0, or -1 if there is none or it is invalid. */
static int parse(const uint8_t *unit, int32_t size, struct sequence *info) {
    uint8_t rbsp[sizeof nal];
    struct reader r = {.broken = 0};
    const int32_t bytes = unescape(unit, size, rbsp);
    tavu_bsr_init(&r.bits, rbsp, bytes, refill);
    if ((tavu_bsr_read(&r.bits, 8) & 31) != 7) return -1; /* nal_unit_type */
    info->profile = tavu_bsr_read(&r.bits, 8);
    if (info->profile != 66 && info->profile != 77 && info->profile != 88) return -1;
    tavu_bsr_skip(&r.bits, 8); /* constraint flags; other profiles have more fields */
    info->level = tavu_bsr_read(&r.bits, 8);
    read_ue(&r, 31); /* seq_parameter_set_id */
    read_ue(&r, 12); /* log2_max_frame_num_minus4 */
    skip_picture_order(&r);
    read_ue(&r, 16);           /* max_num_ref_frames */
    tavu_bsr_skip(&r.bits, 1); /* gaps_in_frame_num_value_allowed_flag */
    read_size(&r, info);
    return is_broken(&r) ? -1 : 0;
}

int main(void) {
    struct sequence info;
    if (parse(nal, sizeof nal, &info) != 0) return 1;
    printf("profile %d, level %d.%d, %d x %d\n", info.profile, info.level / 10, info.level % 10,
           info.width, info.height);
    int32_t enough = 0;
    while (parse(nal, enough, &info) != 0) enough++;
    printf("the first %d of %d bytes are enough\n", enough, (int)sizeof nal);
    return 0;
}
