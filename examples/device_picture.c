/*
 * A picture in the caller's own memory, here an arena that a device sees at different addresses.
 * Build: cc device_picture.c $(pkg-config --cflags --libs tavu)
 */
#include <stdio.h>
#include <tavu.h>

static uint8_t arena[65536];
static const uint32_t device_arena = 0x80000000; /* where the device sees the arena */
static uint32_t used = 4096;                     /* the first page is in use */

static void *arena_alloc(int32_t size, uint32_t *second) {
    if ((uint32_t)size > sizeof arena - used) return NULL;
    void *payload = arena + used;
    *second = device_arena + used;
    used += (uint32_t)size;
    return payload;
}

static void arena_free(void *payload, uint32_t second) {
    const uint32_t offset = (uint32_t)((uint8_t *)payload - arena);
    printf("freed: offset %u, device address %#x\n", offset, second);
    used = offset;
}

int main(void) {
    int32_t status;
    tavu_imgb_t *picture =
        tavu_imgb_create(160, 120, TAVU_CS_YUV420, 0, NULL, NULL, arena_alloc, arena_free, &status);
    if (picture == NULL) return 1;
    for (int p = 0; p < 3; p++) {
        printf("plane %d: offset %d, device address %#x\n", p, (int)(picture->addr[p] - arena),
               picture->paddr[p]);
    }
    printf("a display takes a reference: %d\n", picture->addref(picture));
    printf("the decoder drops its own: %d\n", picture->release(picture));
    printf("the display drops the last: %d\n", picture->release(picture));
    /* A picture that does not fit is refused. */
    picture = tavu_imgb_create(1920, 1080, TAVU_CS_YUV420, 0, NULL, NULL, arena_alloc, arena_free,
                               &status);
    printf("too large: %s\n", status == TAVU_ERR_BUFFER_ALLOC ? "no memory" : "?");
    if (picture != NULL) picture->release(picture);
    return picture != NULL;
}
