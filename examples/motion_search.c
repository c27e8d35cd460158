/*
 * Full search of a 16x16 block in a picture with a border, with a sum of absolute differences that
 * stops once it exceeds the best one so far.
 * Build: cc motion_search.c $(pkg-config --cflags --libs tavu)
 */
#include <stdio.h>
#include <tavu.h>

enum { BORDER = 16, RANGE = 8, BLOCK = 16 };

static void draw_noise(const tavu_imgb_t *picture) {
    uint32_t noise = 1;
    for (int32_t y = 0; y < picture->h; y++) {
        for (int32_t x = 0; x < picture->w; x++) {
            noise = noise * 1664525 + 1013904223;
            picture->addr[0][y * picture->stride[0] + x] = (uint8_t)(noise >> 24);
        }
    }
}

/* Finds the vector of the best match of `block` around `at`; `stride` is that of the picture. */
static int32_t search(const uint8_t *block, const uint8_t *at, int32_t stride, int32_t vector[2]) {
    int32_t best = INT32_MAX;
    for (int32_t dy = -RANGE; dy <= RANGE; dy++) {
        for (int32_t dx = -RANGE; dx <= RANGE; dx++) {
            const uint8_t *candidate = at + dy * stride + dx;
            const int32_t sum = tavu_sad_eskip(BLOCK, BLOCK, block, candidate, BLOCK, stride, best);
            if (sum >= best) continue;
            best = sum;
            vector[0] = dx;
            vector[1] = dy;
        }
    }
    return best;
}

int main(void) {
    const uint32_t pad[4] = {(uint32_t)BORDER << 16 | BORDER};
    tavu_imgb_t *picture = tavu_imgb_create(64, 48, TAVU_CS_YUV400, 0, NULL, pad, NULL, NULL, NULL);
    uint8_t *block = tavu_malloc_align32(BLOCK * BLOCK);
    int failed = 1;
    if (picture != NULL && block != NULL) {
        const int32_t stride = picture->stride[0];
        const uint8_t *at = picture->addr[0] + 24 * stride; /* the block's position is (0, 24) */
        draw_noise(picture);
        /* Its content is from (-5, 27): the first columns repeat the left edge, like the border. */
        for (int32_t i = 0; i < BLOCK * BLOCK; i++) {
            const int32_t x = i % BLOCK - 5, y = i / BLOCK + 3;
            block[i] = at[y * stride + (x < 0 ? 0 : x)];
        }
        failed = tavu_imgb_expand(picture, pad) != TAVU_OK;
        int32_t vector[2] = {0, 0};
        const int32_t sum = failed ? -1 : search(block, at, stride, vector);
        printf("vector (%d, %d), sum %d\n", vector[0], vector[1], sum);
    }
    tavu_mfree_align32(block);
    if (picture != NULL) picture->release(picture);
    return failed;
}
