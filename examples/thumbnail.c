/*
 * Converts and resizes in one call: a thumbnail of a raw 4:4:4 picture, written as a PPM file.
 * Build: cc thumbnail.c $(pkg-config --cflags --libs tavu); run: ./a.out [FILE]
 */
#include <stdio.h>
#include <tavu.h>

/*
 * Luma increases to the right, U downwards, V upwards. U and V differ from 128 by less than 73:
 * with more, the 16-bit arithmetic of the combined routine wraps.
 */
static void draw(const tavu_imgb_t *p) {
    for (int32_t y = 0; y < p->h; y++) {
        for (int32_t x = 0; x < p->w; x++) {
            const int32_t down = 64 + 127 * y / (p->h - 1);
            p->addr[0][y * p->stride[0] + x] = (uint8_t)(255 * x / (p->w - 1));
            p->addr[1][y * p->stride[1] + x] = (uint8_t)down;
            p->addr[2][y * p->stride[2] + x] = (uint8_t)(255 - down);
        }
    }
}

static int write_ppm(const tavu_imgb_t *p, const char *name) {
    FILE *file = name != NULL ? fopen(name, "wb") : stdout;
    if (file == NULL) return -1;
    fprintf(file, "P6\n%d %d\n255\n", p->w, p->h);
    for (int32_t y = 0; y < p->h; y++) {
        fwrite(p->addr[0] + y * p->stride[0], 3, (size_t)p->w, file);
    }
    const int failed = fflush(file) != 0 || ferror(file);
    if (name != NULL) fclose(file);
    return failed ? -1 : 0;
}

static tavu_imgb_t *create(int32_t w, int32_t h, int32_t cs) {
    return tavu_imgb_create(w, h, cs, 0, NULL, NULL, NULL, NULL, NULL);
}

int main(int argc, char **argv) {
    tavu_imgb_t *picture = create(320, 180, TAVU_CS_YUV444);
    tavu_imgb_t *thumbnail = create(80, 45, TAVU_CS_RGB888);
    tavu_fn_csc_t convert =
        tavu_imgp_get_fn_csc(320, 180, TAVU_CS_YUV444, 80, 45, TAVU_CS_RGB888, NULL);
    int failed = 1;
    if (picture != NULL && thumbnail != NULL && convert != NULL) {
        draw(picture);
        convert(picture->addr, picture->w, picture->h, picture->stride, picture->cs,
                thumbnail->addr, thumbnail->w, thumbnail->h, thumbnail->stride, thumbnail->cs);
        failed = write_ppm(thumbnail, argc > 1 ? argv[1] : NULL) != 0;
    }
    if (picture != NULL) picture->release(picture);
    if (thumbnail != NULL) thumbnail->release(thumbnail);
    return failed;
}
