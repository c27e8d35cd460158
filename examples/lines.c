/*
 * Prints the lines of standard input, which a ring buffer receives in chunks, as from a socket. A
 * line that has no line end or is longer than the ring is printed in parts that end in "...".
 * Build: cc lines.c $(pkg-config --cflags --libs tavu)
 *
 * tavu_rbuf_get_one_line() needs lines that contain no zero bytes and end in CR LF, stored by one
 * call: feed() drops zero bytes and carriage returns and stores each line feed as CR LF.
 */
#include <stdio.h>
#include <string.h>
#include <tavu.h>

enum { STORAGE = 48, CHUNK = 16 };

/* Returns the number of lines. */
static int print_lines(tavu_rbuf_t *ring) {
    char line[STORAGE + 3]; /* 2 bytes more than the size passed */
    int count = 0;
    int32_t length;
    /* A size of STORAGE + 1 is enough for every line that the ring can hold. */
    while ((length = tavu_rbuf_get_one_line(ring, line, STORAGE + 1)) > 0) {
        /* If the end of the storage splits CR LF, the last byte of `length` is not written. */
        const char *line_feed = memchr(line, '\n', (size_t)length);
        printf("[%.*s]\n", (int)(line_feed - line) - 1, line);
        count++;
    }
    return count;
}

static void print_piece(tavu_rbuf_t *ring) {
    char piece[STORAGE];
    const int32_t length = tavu_rbuf_get(ring, piece, STORAGE);
    if (length > 0) printf("[%.*s...\n", length, piece);
}

static void feed(tavu_rbuf_t *ring, char byte) {
    const int32_t length = byte == '\n' ? 2 : 1;
    if (byte == '\0' || byte == '\r') return;
    /* All or nothing: 0 when there is too little space. */
    while (tavu_rbuf_put(ring, byte == '\n' ? "\r\n" : &byte, length) == 0) {
        if (print_lines(ring) == 0) print_piece(ring);
    }
}

int main(void) {
    char chunk[CHUNK];
    size_t count;
    tavu_rbuf_t *ring = tavu_rbuf_create(STORAGE);
    if (ring == NULL) return 1;
    while ((count = fread(chunk, 1, sizeof chunk, stdin)) > 0) {
        for (size_t i = 0; i < count; i++) feed(ring, chunk[i]);
        print_lines(ring);
    }
    print_piece(ring);
    tavu_rbuf_delete(ring);
    return 0;
}
