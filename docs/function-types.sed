# Rewrites functions that the header declares by a function type as prototypes, so that the site lists them.
s/^TAVU_API tavu_metric_block_t \(\w*\);/int32_t \1(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);/
s/^TAVU_API tavu_metric_area_t \(\w*\);/int32_t \1(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);/
s/^TAVU_API tavu_diff_block_t \(\w*\);/void \1(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_diff, int16_t *diff);/
s/^TAVU_API tavu_irsz_line_t \(\w*\);/void \1(const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w, int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out);/
s/^TAVU_API tavu_irsz_full_t \(\w*\);/void \1(const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h, int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y);/
s/^TAVU_API tavu_csc_routine_t \(\w*\);/void \1(uint8_t *const src[4], int32_t src_w, int32_t src_h, const int32_t src_stride[4], int32_t src_cs, uint8_t *const dst[4], int32_t dst_w, int32_t dst_h, const int32_t dst_stride[4], int32_t dst_cs);/
