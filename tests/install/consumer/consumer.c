/* A consumer's program: it uses code, kernels selected at load time, and data of the library. */
#include <stdio.h>
#include <string.h>
#include <tavu.h>

int main(void) {
    static const uint8_t expected[16] = {0x90, 0x01, 0x50, 0x98, 0x3c, 0xd2, 0x4f, 0xb0,
                                         0xd6, 0x96, 0x3f, 0x7d, 0x28, 0xe1, 0x7f, 0x72};
    uint8_t digest[16], ones[256], fours[256];
    int32_t status;
    tavu_md5_t md5;

    tavu_md5_init(&md5);
    tavu_md5_update(&md5, "abc", 3);
    tavu_md5_finish(&md5, digest);
    memset(ones, 1, sizeof ones);
    memset(fours, 4, sizeof fours);
    if (memcmp(digest, expected, 16) != 0) return 1;
    if (tavu_sad16x16(ones, fours, 16, 16) != 3 * 256) return 2;
    if (tavu_imgp_get_fn_csc(8, 8, TAVU_CS_YUV444, 8, 8, TAVU_CS_RGB888, &status) !=
        tavu_csc_yuv444_to_rgb888)
        return 3;
    puts("C");
    return 0;
}
