/*
 * Takes lines out of a ring buffer that is fed with chunks, as from a socket.
 * Build: cc lines.c $(pkg-config --cflags --libs tavu)
 *
 * Lines must end in CR LF. Of a stream whose lines end in LF alone each line but the first would
 * lose its first byte, for CR LF is delivered and as many bytes are taken out.
 */
#include <stdio.h>
#include <string.h>
#include <tavu.h>

enum { STORAGE = 48, LONGEST_LINE = 40 };

static const char *const chunks[] = {
    "PLAY rtsp://cam", ":554/live RTSP",          "/1.0\r\nCSe",
    "q: 3\r\n\r",      "\nTEARDOWN * RTSP/1.0\r", "\nCSeq: 4\r\nrest"};

static void print_lines(tavu_rbuf_t *ring) {
    char line[LONGEST_LINE + 3];
    int32_t length;
    while ((length = tavu_rbuf_get_one_line(ring, line, sizeof line)) > 0) {
        length -= 2; /* CR LF */
        printf("[%.*s]\n", length, line);
    }
}

int main(void) {
    tavu_rbuf_t *ring = tavu_rbuf_create(STORAGE);
    if (ring == NULL) return 1;
    int failed = 0;
    for (size_t i = 0; i < sizeof chunks / sizeof chunks[0] && !failed; i++) {
        const int32_t length = (int32_t)strlen(chunks[i]);
        failed = tavu_rbuf_put(ring, chunks[i], length) != length; /* all or nothing */
        print_lines(ring);
    }
    printf("%d bytes without a line end\n", tavu_rbuf_get_fill_len(ring));
    tavu_rbuf_delete(ring);
    return failed;
}
