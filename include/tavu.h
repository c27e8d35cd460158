/**
 * @file tavu.h
 * libtavu: building blocks for codecs and players.
 *
 * The library starts no threads and depends only on the C library. The only static data it modifies
 * is the buffer that tavu_version() returns and, on x86-64, the processor's dispatch level, which
 * is determined before the first call of a kernel. Failures are reported by return values. The
 * library prints nothing and never aborts the process; the only signal it can raise is SIGFPE, for
 * a target size of 0 in the functions that say so.
 *
 * Unless a function or its section says otherwise:
 *
 * - Threads: any number of threads may call a function at once, as long as no two of them use the
 *   same object or write the same memory.
 * - Units: sizes and strides are in bytes, widths and heights in pixels, unless the text says
 *   samples, pixels or bits. A stride is the distance between the starts of two consecutive rows.
 * - Memory: pointers need no alignment, and only the memory that the arguments describe is read or
 *   written.
 * - Pointers must not be null. A function that accepts null or reports it as an error says so.
 * - "Unchecked" means that arguments are not validated. Pixel kernels and the bit reader and writer
 *   trust their caller and state their requirements.
 * - "Null" means a null pointer. Failure codes are negative.
 */
#ifndef TAVU_H
#define TAVU_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Marks the symbols that the library exports. */
#if defined(__GNUC__)
#define TAVU_API __attribute__((visibility("default")))
#else
#define TAVU_API
#endif

/* ---- Core ------------------------------------------------------------------------------------ */

/**
 * @defgroup core Core
 * Status codes, aligned memory, version, integer logarithms, atomic counters, fills and copies.
 *
 * Threads: every function except tavu_version() is reentrant. The atomic counters and the wait and
 * wake functions operate on words that threads share.
 * @{
 */

/**
 * Version of the library that this header describes. A new major version requires changes in
 * programs; a new minor version adds functions. To require version 1.2 or later:
 *
 *     #if TAVU_VERSION_MAJOR == 1 && TAVU_VERSION_MINOR < 2
 *     #error "libtavu 1.2 or later is needed"
 *     #endif
 */
#define TAVU_VERSION_MAJOR 1
#define TAVU_VERSION_MINOR 1 /**< see #TAVU_VERSION_MAJOR */
#define TAVU_VERSION_PATCH 0 /**< see #TAVU_VERSION_MAJOR */

/**
 * Status codes: 0 is success, every failure is negative. A function with a `status` or `err`
 * parameter stores the code there, unless the pointer is null; other functions return the code.
 */
enum {
    TAVU_OK = 0, /**< success */
    /** Generic failure. */
    TAVU_ERR = -1,
    /** No memory for an object record, or an image payload too small for tavu_imgb_rebirth(). */
    TAVU_ERR_OUT_OF_MEMORY = -102,
    /** The operation does not exist for this object's format. */
    TAVU_ERR_UNSUPPORTED = -103,
    /** Null object, allocator without a free function, or a size that cannot be represented. */
    TAVU_ERR_INVALID_ARGUMENT = -105,
    /** The payload allocator of an image or audio buffer returned null. */
    TAVU_ERR_BUFFER_ALLOC = -203,
    /** The payload allocator of a bitstream buffer returned null. */
    TAVU_ERR_BITB_ALLOC = -204,
    /** Colour-space code that is unknown or not handled by this function. */
    TAVU_ERR_UNSUPPORTED_CS = -211
};

/**
 * Allocates memory aligned to 32 bytes.
 * @param size bytes; 0 is allowed and gives a pointer that must be freed
 * @return the block, or null if out of memory or if `size` plus the allocation header exceeds 32
 *         bits. Free it with tavu_mfree_align32() or tavu_mfree_fast_align32(), never with free().
 */
TAVU_API void *tavu_malloc_align32(uint32_t size);

/**
 * Frees a block returned by either aligned allocator; null is ignored. Unchecked: a pointer from
 * anywhere else, including malloc(), corrupts the heap.
 */
TAVU_API void tavu_mfree_align32(void *block);

/** Same as tavu_malloc_align32(); the blocks of both are interchangeable. */
TAVU_API void *tavu_malloc_fast_align32(uint32_t size);

/** Same as tavu_mfree_align32(). */
TAVU_API void tavu_mfree_fast_align32(void *block);

/**
 * Returns the build stamp "Dec 27 2013 13:23:55" followed by a line feed: 21 bytes and a zero byte.
 * @return a static buffer, which every call overwrites with the same bytes; not thread-safe
 */
TAVU_API const char *tavu_version(void);

/** Base-2 logarithm of `value`, rounded down: 0..31; -1 for 0. */
TAVU_API int32_t tavu_floor_log2(uint32_t value);

/** Base-2 logarithm of `value`, rounded up: 0..32; 32 above 0x80000000, -1 for 0. */
TAVU_API int32_t tavu_ceil_log2(uint32_t value);

/**
 * Atomically adds 1 to a word; wraps at INT32_MAX. Relaxed: no other access is ordered. Unchecked.
 * Any number of threads may call this function and tavu_atomic_dec() on the same word.
 * @param word aligned to 4 bytes
 * @return the value after the addition
 */
TAVU_API int32_t tavu_atomic_inc(int32_t *word);

/**
 * Atomically subtracts 1 from a word; wraps at INT32_MIN. Otherwise like tavu_atomic_inc().
 * @return the value after the subtraction
 */
TAVU_API int32_t tavu_atomic_dec(int32_t *word);

/**
 * Waits until a word shared with another thread equals `value`, without a timeout. On ARM the core
 * sleeps between events; on other processors the function spins with pause instructions.
 *
 * No acquire barrier follows the final load: a caller that then reads data published by the waker
 * must issue one. Unchecked.
 * @param word aligned to 4 bytes; any number of threads may wait on it
 * @param value the value to wait for
 * @return 0 when the word equals `value`; #TAVU_ERR as soon as the word holds -1, the agreed signal
 *         to give up, even if `value` is -1
 */
TAVU_API int32_t tavu_sync_wait(int32_t *word, int32_t value);

/**
 * Stores `value` into a word and wakes every waiter. All earlier writes of the caller become
 * visible before the word changes. Unchecked.
 * @param word aligned to 4 bytes
 * @param value the value to store; -1 makes all waiters give up
 * @return 0
 */
TAVU_API int32_t tavu_sync_wake(int32_t *word, int32_t value);

/**
 * @name Fills and block copies
 * Routines for pixel memory. Unchecked; sizes, widths and strides are in bytes. Each routine has
 * its own granularity and its own treatment of the remainder; callers rely on both. A size smaller
 * than one block writes nothing unless stated otherwise. Source and target must not overlap.
 * @{
 */

/**
 * Fills memory with a 32-bit value in blocks of 128 bytes, at least one. Writes `size` bytes
 * rounded up to a multiple of 128, and 128 bytes for a size below 1. That many bytes must be
 * writable.
 */
TAVU_API void tavu_mset_x128(void *dst, uint32_t value, int32_t size);

/**
 * Fills memory with a byte in whole blocks of 128 bytes, despite the name. The last `size` % 128
 * bytes are left unchanged.
 */
TAVU_API void tavu_mset_x64(void *dst, uint8_t value, int32_t size);

/** Fills exactly `size` bytes with the low 8 bits of `value`; writes nothing for a size below 1. */
TAVU_API void tavu_mset_x64a(void *dst, int32_t value, int32_t size);

/**
 * Fills memory with a 32-bit value in whole blocks of 32 bytes. The last `size` % 32 bytes are left
 * unchanged.
 * @param dst aligned to 4 bytes
 */
TAVU_API void tavu_mset_x32(void *dst, uint32_t value, int32_t size);

/**
 * Fills exactly `size` bytes: whole blocks of 32 bytes with the 32-bit value, the remainder with
 * the low byte of the value. A size below 32 writes nothing.
 */
TAVU_API void tavu_mset_x32ax4(void *dst, uint32_t value, int32_t size);

/**
 * Zeroes 32-bit words.
 * @param dst aligned to 4 bytes
 * @param words number of words, a positive multiple of 64; for any other number only whole blocks
 *        of 64 words are zeroed
 */
TAVU_API void tavu_mclr_x64(void *dst, int32_t words);

/**
 * Copies rows. If `width` equals both strides, the rows are treated as a single run of `width` *
 * `height` bytes: only its whole blocks of 64 bytes and the first byte of the remainder are copied.
 * @param width bytes per row, at least 64; for a single run only the total must be at least 64
 * @param height number of rows; a number below 1 copies nothing
 */
TAVU_API void tavu_mcpy_pic(void *dst, const void *src, int32_t dst_stride, int32_t src_stride,
                            int32_t width, int32_t height);

/**
 * Copies a block of rows.
 * @param width 2, 4, 6, 8, 12, 16 or 24 bytes; any other width, including 32 and 48, copies nothing
 * @param height number of rows, a multiple of 2; for widths of 16 and 24 a multiple of 4
 */
TAVU_API void tavu_mcpy_blk(void *dst, const void *src, int32_t dst_stride, int32_t src_stride,
                            int32_t width, int32_t height);

/** @} */

/** @} */

/* ---- Image buffer ---------------------------------------------------------------------------- */

/**
 * @defgroup imgb Image buffer
 * Pictures with a reference count: planes, strides and memory.
 *
 * Threads: only the count is atomic. Several threads may read a picture and add or drop references.
 * Writers, tavu_imgb_rebirth(), tavu_imgb_option() and tavu_imgb_expand() need exclusive access.
 * Every access that an owner makes before its `release` is complete before the last `release` frees
 * the picture; `addref` and `getref` order no other access.
 * @{
 */

/**
 * Colour-space codes. An image buffer accepts 10, 11, 12, 13, 18, 43 (planar, 8 bits per sample)
 * and the packed families 100..299 (2 bytes per pixel), 300..399 (4 bytes), 400..499 (3 bytes) and
 * 500..599 (4 bytes). Codes of 600 and above are for conversions only.
 *
 * The bytes of a packed pixel are named in memory order. A 5-6-5 unit is a little-endian 16-bit
 * value with the first colour in bits 15..11.
 */
enum {
    TAVU_CS_YUV400 = 10,    /**< one plane */
    TAVU_CS_YUV420 = 11,    /**< chroma of half width and half height, rounded up */
    TAVU_CS_YUV422 = 12,    /**< chroma of half width, rounded up */
    TAVU_CS_YUV444 = 13,    /**< Y, U, V planes of full size */
    TAVU_CS_YUV440 = 18,    /**< chroma of half height, rounded up */
    TAVU_CS_YUV444A8 = 43,  /**< the same as 13, plus an alpha plane of full size */
    TAVU_CS_RGB565 = 200,   /**< 5-6-5 units */
    TAVU_CS_RGB888 = 400,   /**< R, G, B */
    TAVU_CS_BGR888 = 401,   /**< B, G, R */
    TAVU_CS_RGBA5658 = 430, /**< 5-6-5 unit, then 8-bit alpha */
    TAVU_CS_RGBA8888 = 500, /**< R, G, B, A */
    TAVU_CS_BGRA8888 = 501, /**< B, G, R, A */
    TAVU_CS_R8G8B8 = 600,   /**< three planes R, G, B */
    TAVU_CS_RGB565A8 = 650, /**< a plane of 5-6-5 units and an 8-bit alpha plane */
    TAVU_CS_R8G8B8A8 = 700  /**< four planes R, G, B, A */
};

/** Clearing options of image buffers; combine them with |. */
enum {
    TAVU_IMGB_OPT_CLEAR_ALIGN = 1, /**< zero the columns and rows that alignment adds */
    TAVU_IMGB_OPT_CLEAR_PAD = 2    /**< zero the padding */
};

/**
 * Payload allocator of a buffer object, called only at creation.
 * @param size bytes to allocate; may be 0
 * @param second where to store the payload's address in a second address space, such as that of a
 *        device; initially 0, which means none
 * @return the payload, with any alignment, or null to make the creation fail
 */
typedef void *(*tavu_imgb_alloc_fn)(int32_t size, uint32_t *second);

/**
 * Frees a payload of the matching tavu_imgb_alloc_fn and receives both addresses of the payload.
 * Called on the thread that drops the last reference.
 */
typedef void (*tavu_imgb_free_fn)(void *payload, uint32_t second);

/**
 * A reference-counted picture: up to four planes in one payload. In every array, the entries of
 * planes that `cs` does not have are zero. Callers may write `x` and `y`; all other fields are
 * read-only.
 */
typedef struct tavu_imgb_t tavu_imgb_t;
struct tavu_imgb_t {
    int32_t refcnt;                    /**< reference count; only the methods change it */
    int32_t (*addref)(tavu_imgb_t *);  /**< adds a reference; returns the new count */
    int32_t (*getref)(tavu_imgb_t *);  /**< returns the count */
    int32_t (*release)(tavu_imgb_t *); /**< drops a reference; at 0 frees payload and record */
    int32_t w,                         /**< visible width in pixels */
        h;                             /**< visible height in pixels */
    int32_t x,                    /**< left column of the region of interest, see tavu_md5_imgb() */
        y;                        /**< top row of the region of interest */
    int32_t cs;                   /**< colour-space code */
    int32_t stride[4];            /**< bytes per row, including alignment and all padding */
    int32_t rows[4];              /**< rows, including alignment and all padding */
    uint8_t *addr[4];             /**< first visible pixel */
    uint32_t paddr[4];            /**< the same in the second address space */
    uint32_t reserved0[8];        /**< zero */
    int32_t aw,                   /**< aligned width of plane 0 in pixels, without padding */
        ah;                       /**< aligned height of plane 0 in rows, without padding */
    tavu_imgb_alloc_fn mem_alloc; /**< payload allocator used at creation */
    tavu_imgb_free_fn mem_free;   /**< payload free function */
    uint8_t *base[4];             /**< start of the plane's storage, padding included */
    uint32_t pbase[4];            /**< the same in the second address space */
    int32_t size;                 /**< payload capacity in bytes, fixed at creation */
    uint32_t reserved1[3];        /**< zero */
};

/**
 * Creates an image buffer with reference count 1. Free it with its `release` method. All three
 * methods return #TAVU_ERR_INVALID_ARGUMENT for null.
 *
 * The planes are stored back to back in one payload. Each plane has its visible size, rounded up to
 * the alignment, and padding on all sides. The default payload is aligned to 32 bytes and not
 * initialised. A stride is (aligned width + 2 * padding) * bytes per pixel; rows are aligned to 32
 * bytes only if `align` and `pad` make the stride a multiple of 32.
 *
 * The second addresses of later planes advance from the payload's second address even if that is 0:
 * with the default allocator, `pbase[p]` is the byte offset of the plane in the payload.
 *
 * @param w,h visible size in pixels; 0 is allowed
 * @param cs  colour-space code, see #TAVU_CS_YUV400 and the codes that follow it
 * @param opt 0, or TAVU_IMGB_OPT_ flags; other bits are ignored
 * @param align null, or one entry per plane: width alignment in pixels << 16 | height alignment in
 *        rows, each a power of two, at least 1
 * @param pad null, or one entry per plane: pixels added on the left and on the right << 16 | rows
 *        added above and below
 * @param mem_alloc,mem_free payload callbacks. If the allocator is null, the default pair is used
 *        and `mem_free` is ignored
 * @param status null, or where to store #TAVU_OK, #TAVU_ERR_INVALID_ARGUMENT (an allocator without
 *        a free function, a negative size, an alignment that is not a power of two, or a stride,
 *        row count or payload above INT32_MAX), #TAVU_ERR_OUT_OF_MEMORY, #TAVU_ERR_UNSUPPORTED_CS
 *        or #TAVU_ERR_BUFFER_ALLOC
 * @return the buffer or null
 */
TAVU_API tavu_imgb_t *tavu_imgb_create(int32_t w, int32_t h, int32_t cs, int32_t opt,
                                       const uint32_t *align, const uint32_t *pad,
                                       tavu_imgb_alloc_fn mem_alloc, tavu_imgb_free_fn mem_free,
                                       int32_t *status);

/**
 * Changes the layout of a buffer within its payload, which is never reallocated. Needs exclusive
 * access to the buffer. `x` and `y` become 0; `size`, the callbacks and the count are kept. The
 * arguments are those of tavu_imgb_create().
 * @return #TAVU_OK; #TAVU_ERR_OUT_OF_MEMORY if the payload is too small; #TAVU_ERR_INVALID_ARGUMENT
 *         for a null buffer and for the reasons listed at tavu_imgb_create();
 *         #TAVU_ERR_UNSUPPORTED_CS. On failure the buffer is unchanged.
 */
TAVU_API int32_t tavu_imgb_rebirth(tavu_imgb_t *imgb, int32_t w, int32_t h, int32_t cs, int32_t opt,
                                   const uint32_t *align, const uint32_t *pad);

/**
 * Applies clearing options to a buffer that has a layout. tavu_imgb_create() and
 * tavu_imgb_rebirth() do the same if `opt` is not 0.
 *
 * #TAVU_IMGB_OPT_CLEAR_ALIGN zeroes the bytes after the visible pixels of each row, up to the
 * aligned width. It also zeroes the first `aw[p]` *bytes* of each row from `h[p]` to `ah[p]` - 1,
 * regardless of the pixel size.
 *
 * #TAVU_IMGB_OPT_CLEAR_PAD zeroes the padding rows. In every other row it zeroes `pad[p] >> 16`
 * *bytes* at the start of the row and the same number from byte `(pad[p] >> 16) + aw[p]` on.
 *
 * Only the buffer is checked; the arrays are trusted.
 *
 * @param opt TAVU_IMGB_OPT_ flags
 * @param planes number of planes; all arrays have one entry per plane
 * @param w,h visible plane size in pixels
 * @param aw,ah aligned plane size in pixels
 * @param pad padding as in tavu_imgb_create(), or null for none
 * @param unit bytes per pixel << 16 | 1
 * @return #TAVU_OK, or #TAVU_ERR_INVALID_ARGUMENT for a null buffer
 */
TAVU_API int32_t tavu_imgb_option(tavu_imgb_t *imgb, int32_t opt, int32_t planes, const int32_t *w,
                                  const int32_t *h, const int32_t *aw, const int32_t *ah,
                                  const uint32_t *pad, const uint32_t *unit);

/**
 * Fills the padding of a planar 8-bit picture by repeating its edges, including the corners.
 *
 * The edges are those of the *aligned* picture, `aw` x `ah`: pixels that alignment adds are
 * repeated, not replaced. Planes 1 and 2 are treated as half as wide and half as high (rounded up)
 * in every layout. For codes 12, 13 and 18 these planes are larger, so the strips are written
 * inside them. If a picture of code 11 is aligned, give planes 1 and 2 half the alignment that
 * plane 0 has.
 *
 * @param pad one entry per plane, as given at creation: bytes on each side << 16 | rows above and
 *        below. The left strip begins as many *bytes* left of the picture as there are *rows* above
 *        it, so the padding is filled completely only if both numbers are equal. Entries larger
 *        than those given at creation cause writes outside the payload
 * @return #TAVU_OK; #TAVU_ERR_UNSUPPORTED for codes other than 10, 11, 12, 13 and 18;
 *         #TAVU_ERR_INVALID_ARGUMENT for null
 */
TAVU_API int32_t tavu_imgb_expand(tavu_imgb_t *imgb, const uint32_t *pad);

/**
 * In each of `rows` rows, writes `width` copies of the byte at `src` to `dst`, then advances both
 * pointers by `stride` bytes. Unchecked; a width or row count below 1 writes nothing.
 */
TAVU_API void tavu_imgb_expand_ver(const uint8_t *src, uint8_t *dst, int32_t rows, int32_t stride,
                                   int32_t width);

/**
 * Copies the `len` bytes at `src` to `rows` consecutive rows at `dst`, `len` bytes apart.
 * Unchecked; a length or row count below 1 writes nothing. If `len` is a multiple of 4 but not of
 * 16, the row count is rounded up to a multiple of 8: 9 becomes 16.
 */
TAVU_API void tavu_imgb_expand_hor(const uint8_t *src, uint8_t *dst, int32_t len, int32_t rows);

/** @} */

/* ---- Audio, bitstream and frame-list buffers, variable data ---------------------------------- */

/**
 * @defgroup buffers Other buffers
 * Audio, bitstream and frame-list buffers with a reference count, and records that hold a copy of
 * arbitrary bytes.
 *
 * The buffers begin with the same header as tavu_imgb_t; their methods return
 * #TAVU_ERR_INVALID_ARGUMENT for null. A null allocator selects the default pair. With an allocator
 * and a null free function, the payload is never freed.
 *
 * Threads: as with pictures, only the count is atomic, and `release` orders accesses in the same
 * way. A tavu_vdata_t must not be used by two threads at once.
 * @{
 */

/**
 * A reference-counted buffer of audio samples. Callers may write only `value` and the samples in
 * the blocks.
 */
typedef struct tavu_audb_t tavu_audb_t;
struct tavu_audb_t {
    int32_t refcnt;                    /**< reference count; only the methods change it */
    int32_t (*addref)(tavu_audb_t *);  /**< adds a reference; returns the new count */
    int32_t (*getref)(tavu_audb_t *);  /**< returns the count */
    int32_t (*release)(tavu_audb_t *); /**< drops a reference; at 0 frees blocks and record */
    int32_t samples[8];                /**< samples per channel in each block */
    int32_t bytes[8];                  /**< bytes of each block */
    uint8_t *addr[8];                  /**< blocks; null if unused */
    uint32_t paddr[8];                 /**< the same in the second address space */
    int32_t channels;                  /**< number of channels */
    int32_t bits;                      /**< bits per sample */
    int32_t value;                     /**< for the caller's use */
    int32_t interleaved;               /**< 1: one block; 0: one block per channel */
    int32_t format;                    /**< format code */
    uint32_t reserved[8];              /**< zero */
    tavu_imgb_alloc_fn mem_alloc;      /**< payload allocator */
    tavu_imgb_free_fn mem_free;        /**< payload free function or null */
};

/**
 * Creates an audio buffer with reference count 1; free it with its `release` method. The default
 * blocks are aligned to 32 bytes and not initialised.
 * @param samples samples per channel; 0 is allowed
 * @param channels number of channels, 0 or more, at most 8 unless interleaved
 * @param bits bits per sample, 0 or more; a sample takes (bits + 7) / 8 bytes
 * @param value stored for the caller
 * @param format 1..99: one block with interleaved channels; any other code: one block per channel
 * @param unused ignored
 * @param mem_alloc,mem_free payload callbacks; both null for the default
 * @param status null, or where to store #TAVU_OK, #TAVU_ERR_INVALID_ARGUMENT (a negative count,
 *        more than 8 blocks, or a block of more than INT32_MAX bytes), #TAVU_ERR_OUT_OF_MEMORY or
 *        #TAVU_ERR_BUFFER_ALLOC
 * @return the buffer or null
 */
TAVU_API tavu_audb_t *tavu_audb_create(int32_t samples, int32_t channels, int32_t bits,
                                       int32_t value, int32_t format, int32_t unused,
                                       tavu_imgb_alloc_fn mem_alloc, tavu_imgb_free_fn mem_free,
                                       int32_t *status);

/** A reference-counted buffer of coded data. */
typedef struct tavu_bitb_t tavu_bitb_t;
struct tavu_bitb_t {
    int32_t refcnt;                    /**< reference count; only the methods change it */
    int32_t (*addref)(tavu_bitb_t *);  /**< adds a reference; returns the new count */
    int32_t (*getref)(tavu_bitb_t *);  /**< returns the count */
    int32_t (*release)(tavu_bitb_t *); /**< drops a reference; at 0 frees payload and record */
    uint8_t *addr;                     /**< payload */
    uint32_t paddr;                    /**< the same in the second address space */
    uint32_t reserved0[2];             /**< zero */
    int32_t value;                     /**< for the caller's use */
    uint32_t reserved1[8];             /**< zero */
    tavu_imgb_alloc_fn mem_alloc;      /**< payload allocator */
    tavu_imgb_free_fn mem_free;        /**< payload free function or null */
};

/**
 * Creates a bitstream buffer with reference count 1; free it with its `release` method. The default
 * payload comes from malloc() and is not initialised.
 * @param size payload bytes. The default allocator rejects a negative size; a custom allocator is
 *        called with it
 * @param value stored for the caller
 * @param unused ignored
 * @param mem_alloc,mem_free payload callbacks; both null for the default
 * @param status null, or where to store #TAVU_OK, #TAVU_ERR_OUT_OF_MEMORY or #TAVU_ERR_BITB_ALLOC
 * @return the buffer or null
 */
TAVU_API tavu_bitb_t *tavu_bitb_create(int32_t size, int32_t value, int32_t unused,
                                       tavu_imgb_alloc_fn mem_alloc, tavu_imgb_free_fn mem_free,
                                       int32_t *status);

/** A reference-counted record; `body` is for the caller's use. */
typedef struct tavu_mfal_t tavu_mfal_t;
struct tavu_mfal_t {
    int32_t refcnt;                    /**< reference count; only the methods change it */
    int32_t (*addref)(tavu_mfal_t *);  /**< adds a reference; returns the new count */
    int32_t (*getref)(tavu_mfal_t *);  /**< returns the count */
    int32_t (*release)(tavu_mfal_t *); /**< drops a reference; at 0 frees the record */
    uint32_t body[17];                 /**< zero at creation */
};

/**
 * Creates a frame-list record with reference count 1; free it with its `release` method.
 * @param unused ignored
 * @param status null, or where to store #TAVU_OK or #TAVU_ERR_OUT_OF_MEMORY
 * @return the record or null
 */
TAVU_API tavu_mfal_t *tavu_mfal_create(int32_t unused, int32_t *status);

/** A copy of arbitrary bytes. The caller owns the record and must zero it before first use. */
typedef struct {
    int32_t type;  /**< for the caller's use */
    int32_t len;   /**< bytes, not counting the two zero bytes that follow them */
    uint8_t *data; /**< heap copy of the bytes */
} tavu_vdata_t;

/**
 * Stores a copy of `len` bytes followed by two zero bytes. Does not free a copy that the record
 * already holds: call tavu_vdata_free() first. `type` is stored for the caller.
 * @return #TAVU_OK; #TAVU_ERR_INVALID_ARGUMENT for null or a length below 1;
 *         #TAVU_ERR_OUT_OF_MEMORY. On failure the record is unchanged.
 */
TAVU_API int32_t tavu_vdata_set(tavu_vdata_t *vd, const void *src, int32_t len, int32_t type);

/** Calls tavu_vdata_set() with the bytes, length and type of `src` and returns its result. */
TAVU_API int32_t tavu_vdata_cpy(tavu_vdata_t *dst, const tavu_vdata_t *src);

/** Frees the copy, if any, and zeroes the record; null is ignored. */
TAVU_API void tavu_vdata_free(tavu_vdata_t *vd);

/** @} */

/* ---- Bitstream reader ------------------------------------------------------------------------ */

/**
 * @defgroup bsr Bitstream reader
 * Reads a byte buffer, most significant bit first, through a 32-bit cache word.
 *
 * Unchecked: the record must be initialised, and bit counts must be 0..32. Hostile data is safe: no
 * byte beyond the `size` bytes of the buffer is read, whatever the data. The position of the next
 * bit is (cur - beg) bytes minus `leftbits` bits.
 *
 * **Detecting a truncated header.** If the data ends inside a field, the missing bits read as 0 and
 * `leftbits` becomes negative. If a refill fails, `leftbits` becomes 0, as it does after a field
 * that ends at the end of the data, so the record does not show the failure later. tavu_bsr_read()
 * of up to 31 bits, tavu_bsr_read1() and tavu_bsr_read_ue() report missing data at once, by a
 * negative result or a negative `leftbits`; tavu_bsr_skip() and tavu_bsr_read_se() may not. To
 * check a whole header after its last field, note failed refills:
 * @code
 * struct reader { tavu_bsr_t bits; int ended; };
 * static int32_t refill(tavu_bsr_t *bits, int32_t bytes) {
 *     const int32_t status = tavu_bsr_flush(bits, bytes);
 *     if (status != 0) ((struct reader *)bits)->ended = 1;
 *     return status;
 * }
 * @endcode
 * The header is truncated if and only if `ended` is set or `leftbits` < 0 after the last field.
 * This holds for fixed-length fields, skips, Exp-Golomb codes of up to 31 bits and alignment. Peeks
 * past the last byte and unary codes may cause either in a complete header.
 *
 * **Owed bits.** While `leftbits` is negative, `code` is 0 and the first -`leftbits` bits of the
 * next refill count as consumed: these bits are owed. This happens at the end of the data. It also
 * happens in the middle of the data when a unary code ends with the cache; see tavu_bsr_read_un().
 * Call tavu_bsr_skip(bs, 0) to drop the owed bits before any other call. Otherwise, with k owed
 * bits:
 * - tavu_bsr_skip() and tavu_bsr_skip_peek() drop the owed bits first.
 * - tavu_bsr_skip_align8() and tavu_bsr_read_align8() find the correct boundary and add the skipped
 *   bits to the owed bits; the value read is 0.
 * - tavu_bsr_read() consumes the owed bits and returns them above the `size` requested bits; it
 *   returns 0 if `size` + k exceeds 32.
 * - tavu_bsr_read1() returns 0 and owes another bit; tavu_bsr_read_te() of range 1 returns 1.
 * - tavu_bsr_peek() loads (32 + k) / 8 bytes (4 or more) as zeros. The position is unchanged, but
 *   the data is lost.
 * - tavu_bsr_read_ue() is correct if k is 1 and both the owed bit and the next bit are 0. If the
 *   owed bit is 0 and the next bit is 1, it returns 0 and consumes only the owed bit. If the owed
 *   bit is 1, it returns -1 (tavu_bsr_read_se() returns 0) and consumes nothing.
 * - tavu_bsr_read_un() and tavu_bsr_read_tu() are correct if k is 1 and the owed bit is 1, except
 *   that tavu_bsr_read_tu() consumes one bit too few if more than `max` ones follow. If the owed
 *   bit is 0, both functions consume only that bit and return -1.
 *
 * With more owed bits, the values of codes may be wrong and `leftbits` may exceed 32.
 *
 * Threads: two threads must not use the same record at once.
 * @{
 */

/** Bit reader; the caller allocates it. */
typedef struct tavu_bsr_t tavu_bsr_t;

/**
 * Refills the cache of a reader. A custom refill must replace the cache with the next 1 to `bytes`
 * bytes (big-endian from bit 31 down, zeros below), set `leftbits` to 8 times their number, advance
 * `cur` and return 0. If no byte is left, it must set `code` and `leftbits` to 0 and return
 * non-zero.
 *
 * If a refill loads fewer bytes than a field needs, the missing bits read as 0 and are owed, as at
 * the end of the data.
 *
 * @param bytes number of bytes requested: 4, or (32 - leftbits) >> 3 when a peek tops up the cache.
 *        A peek requests 1 to 4 bytes, and more while bits are owed. tavu_bsr_skip_peek() requests
 *        up to 7 when it skips past the last byte. A peek after an Exp-Golomb code of only zeros
 *        requests 8, and every 12 hostile bytes may raise that number by 4: there is no upper
 *        bound. Load at most 4 bytes, the capacity of the cache; the position then remains correct
 */
typedef int32_t (*tavu_bsr_flush_fn)(tavu_bsr_t *bs, int32_t bytes);

struct tavu_bsr_t {
    uint32_t code;           /**< cache: the next bits, left-justified, zeros below */
    int32_t leftbits;        /**< valid bits in `code`; -k if k bits are owed */
    const uint8_t *cur;      /**< next byte to load */
    const uint8_t *end;      /**< last byte of the buffer */
    const uint8_t *beg;      /**< first byte of the buffer */
    int32_t size;            /**< buffer size in bytes */
    tavu_bsr_flush_fn flush; /**< refill function */
};

/**
 * Initialises a reader for `size` bytes, which must stay valid while the reader is in use. Loads
 * nothing yet. A reader needs no cleanup.
 * @param buf first byte; may be null if `size` is 0
 * @param size bytes, 0 or more
 * @param flush refill function, or null for tavu_bsr_flush()
 */
TAVU_API void tavu_bsr_init(tavu_bsr_t *bs, const void *buf, int32_t size, tavu_bsr_flush_fn flush);

/**
 * The default refill: replaces the cache with the next `bytes` bytes of the data, or with the
 * remaining bytes if fewer are left.
 * @param bytes see #tavu_bsr_flush_fn. If more than 4 bytes are loaded, `code` holds the first 4,
 *        while `leftbits` and `cur` count all of them
 * @return 0, or -1 with an empty cache if no byte is left
 */
TAVU_API int32_t tavu_bsr_flush(tavu_bsr_t *bs, int32_t bytes);

/**
 * Reads `size` bits, 0..32. Bits missing at the end of the data read as 0 and leave `leftbits`
 * negative; the next read that needs a refill then fails.
 * @return the bits (all 32 bits for a size of 32), or -1 if a required refill fails. A 32-bit value
 *         of all ones is also -1
 */
TAVU_API int32_t tavu_bsr_read(tavu_bsr_t *bs, int32_t size);

/** Reads one bit. Returns -1 if a required refill fails, and 0 while bits are owed. */
TAVU_API int32_t tavu_bsr_read1(tavu_bsr_t *bs);

/**
 * Drops `size` bits, 0..32. If a required refill fails, the cache is left empty; no error is
 * reported. If bits are missing, `leftbits` becomes negative. A size of 0 drops owed bits.
 */
TAVU_API void tavu_bsr_skip(tavu_bsr_t *bs, int32_t size);

/**
 * Returns the next `size` bits, 0..32, without consuming them; bits past the end are 0. May load
 * whole bytes into the cache, which does not change the position.
 */
TAVU_API uint32_t tavu_bsr_peek(tavu_bsr_t *bs, int32_t size);

/** Drops `skip` bits, then peeks at `size` bits. Returns 0 if the refill for the skip fails. */
TAVU_API uint32_t tavu_bsr_skip_peek(tavu_bsr_t *bs, int32_t skip, int32_t size);

/** Skips the 0..7 bits up to the next byte boundary. */
TAVU_API void tavu_bsr_skip_align8(tavu_bsr_t *bs);

/**
 * Reads the bits up to the next byte boundary.
 * @param bits null, or where to store the number of bits, 0..7
 * @return the value of the bits, 0..127; 0 if there are none
 */
TAVU_API int32_t tavu_bsr_read_align8(tavu_bsr_t *bs, int32_t *bits);

/**
 * Reads an unsigned Exp-Golomb code (ITU-T H.264, 9.1): n zeros, a 1 and n bits of value i encode
 * 2^n - 1 + i. Codes of up to 31 bits, with values 0..65534, are always decoded correctly. A longer
 * code may give any value and leave bits owed in the middle of the data.
 * @return the value, or -2 at the end of the data
 */
TAVU_API int32_t tavu_bsr_read_ue(tavu_bsr_t *bs);

/**
 * Reads a signed Exp-Golomb code (ITU-T H.264, 9.1.1): the unsigned codes 0, 1, 2, 3, 4 mean 0, 1,
 * -1, 2, -2.
 * @return the value; +1 at the end of the data
 */
TAVU_API int32_t tavu_bsr_read_se(tavu_bsr_t *bs);

/**
 * Reads a truncated Exp-Golomb code (ITU-T H.264, 9.1) of values 0..range. For a range of 1,
 * returns the next bit inverted, or 2 if no bit is left. For a larger range, returns the result of
 * tavu_bsr_read_ue(); the value is not checked against `range`. For a range below 1, returns 0 and
 * reads nothing.
 */
TAVU_API int32_t tavu_bsr_read_te(tavu_bsr_t *bs, int32_t range);

/**
 * Reads a unary code: returns the number of 1 bits before the next 0 bit and consumes the 0, too.
 *
 * A run of ones that reaches the last valid bit of the cache ends there. The bit after the cache
 * counts as the final 0: that bit is owed and `leftbits` is -1, even if data is left and the run
 * continues. If `leftbits` is negative, call tavu_bsr_skip(bs, 0) before anything else. A full
 * cache of 32 bits is skipped and counted as 32 ones, whatever its bits. The cache is full after
 * tavu_bsr_peek() or tavu_bsr_skip_peek() at a byte boundary.
 */
TAVU_API int32_t tavu_bsr_read_un(tavu_bsr_t *bs);

/**
 * Reads a truncated unary code of at most `max` ones and returns their number. A 0 after exactly
 * `max` ones is consumed, too; if there are more than `max` ones, exactly `max` are consumed. A
 * `max` of 0 reads nothing.
 *
 * As with tavu_bsr_read_un(), a run ends with the cache and may leave a bit owed. If the cache is
 * full (32 bits), the next `max` bits are dropped without being examined and `max` is returned; if
 * `max` exceeds 32, all 32 bits count as ones. If ones were counted before a refill and the total
 * then exceeds `max`, `max` bits of the new cache are dropped.
 */
TAVU_API int32_t tavu_bsr_read_tu(tavu_bsr_t *bs, int32_t max);

/** Returns the number of leading zero bits of a word; 32 for 0. */
TAVU_API int32_t tavu_bsr_clz_in_code(uint32_t code);

/** @} */

/* ---- Bitstream writer ------------------------------------------------------------------------ */

/**
 * @defgroup bsw Bitstream writer
 * Writes a byte buffer, most significant bit first, through a 32-bit cache word.
 *
 * Unchecked, except for space in the buffer. After tavu_bsw_sink(), `cur` - `beg` bytes have been
 * written. A stream fits if the buffer is at least one byte larger than the stream. A longer stream
 * is refused, at the latest by tavu_bsw_sink(); before that, tavu_bsw_write1() may write 3 bytes
 * past the end of the buffer.
 *
 * Stop at the first -1 and start again with a larger buffer: later calls may succeed and write
 * wrong bits, and tavu_bsw_deinit() would write past the end.
 *
 * Threads: two threads must not use the same record at once.
 * @{
 */

/** Bit writer; the caller allocates it. */
typedef struct tavu_bsw_t tavu_bsw_t;

/**
 * Spills the cache of a writer. A custom function must write the (39 - leftbits) >> 3 bytes of the
 * cache that hold bits, from bit 31 down, and advance `cur`; the writer then empties the cache. The
 * number is at most 4, except in tavu_bsw_deinit() after refused bits. Only tavu_bsw_deinit() uses
 * the result.
 */
typedef int32_t (*tavu_bsw_flush_fn)(tavu_bsw_t *bs);

struct tavu_bsw_t {
    uint32_t code;           /**< cache: bits not yet spilled, left-justified, zeros below */
    int32_t leftbits;        /**< free bits in `code`: 32 if empty, 0 if full; -k if a full
                                  buffer made tavu_bsw_write1() drop k bits */
    uint8_t *cur;            /**< next byte to write */
    uint8_t *end;            /**< last byte of the buffer */
    uint8_t *beg;            /**< first byte of the buffer */
    int32_t size;            /**< buffer size in bytes */
    tavu_bsw_flush_fn flush; /**< spill function */
};

/**
 * Initialises a writer for a buffer of `size` bytes, which must stay valid while the writer is in
 * use. A writer needs no cleanup.
 * @param buf first byte; may be null if `size` is 0
 * @param size bytes, 0 or more
 * @param flush spill function, or null for the default
 */
TAVU_API void tavu_bsw_init(tavu_bsw_t *bs, void *buf, int32_t size, tavu_bsw_flush_fn flush);

/**
 * Writes the low bit of `bit`. A full cache is spilled if at least one byte of the buffer is left.
 * The spill may write up to 3 bytes past the end, which must be writable.
 * @return 0, or -1 if the buffer is full. The bit is then in the cache, but later calls drop their
 *         bits and return 0
 */
TAVU_API int32_t tavu_bsw_write1(tavu_bsw_t *bs, int32_t bit);

/**
 * Writes the low `len` bits of `value`; the other bits are ignored.
 * @param len number of bits, 0..32
 * @return 0, or -1 if the bits fill the cache and fewer than 5 bytes of the buffer are left, one
 *         more than needed. The cache then holds the bits that fit, but does not count them
 */
TAVU_API int32_t tavu_bsw_write(tavu_bsw_t *bs, uint32_t value, int32_t len);

/**
 * Writes `value`, 0..65534, as an unsigned Exp-Golomb code (ITU-T H.264, 9.1); larger values give
 * no valid code. Returns the result of tavu_bsw_write().
 */
TAVU_API int32_t tavu_bsw_write_ue(tavu_bsw_t *bs, uint32_t value);

/**
 * Writes `value`, -32767..32767, as a signed Exp-Golomb code (ITU-T H.264, 9.1.1). Returns the
 * result of tavu_bsw_write().
 */
TAVU_API int32_t tavu_bsw_write_se(tavu_bsw_t *bs, int32_t value);

/**
 * Writes a truncated Exp-Golomb code of values 0..range. For a range of 1, writes the inverted bit
 * with tavu_bsw_write1(); for a larger range, an unsigned code with tavu_bsw_write_ue(). Returns
 * the result of that function. For a range below 1, writes nothing and returns 0.
 */
TAVU_API int32_t tavu_bsw_write_te(tavu_bsw_t *bs, int32_t value, int32_t range);

/**
 * Spills the cache and pads the last byte with 0 bits.
 * @return 0; -1, with nothing changed, if the buffer does not have at least one byte more left than
 *         the spill needs
 */
TAVU_API int32_t tavu_bsw_sink(tavu_bsw_t *bs);

/**
 * Calls the spill function without checking for space and without emptying the cache; returns the
 * result of the spill function.
 *
 * The default spill function writes (39 - leftbits) >> 3 bytes. If no call was refused, these are
 * at most 4 bytes, which may still reach 7 bytes past the end. After a refused tavu_bsw_write1(),
 * it writes 4 bytes plus one for every 8 bits dropped since, without bound: after 100,000 dropped
 * bits it writes 12,504 bytes past the end. Use tavu_bsw_sink(), which refuses instead, and do not
 * call this function after a -1.
 */
TAVU_API int32_t tavu_bsw_deinit(tavu_bsw_t *bs);

/** Length in bits of the unsigned Exp-Golomb code of `value`, 0..65534: 1..31. */
TAVU_API int32_t tavu_bsw_size_ue(uint32_t value);

/** Length in bits of the signed Exp-Golomb code of `value`, -32767..32767: 1..31. */
TAVU_API int32_t tavu_bsw_size_se(int32_t value);

/** @} */

/* ---- Media types, key frames, digests -------------------------------------------------------- */

/**
 * @defgroup media Media types, key frames, digests
 * Maps FourCCs to codecs, detects key frames, and computes MD5 digests of bytes and pictures.
 *
 * Threads: two threads must not use the same MD5 context at once; everything else is reentrant.
 * @{
 */

/**
 * Media-type codes: video 100..299, audio 300..499, DRM 1100..1299, subtitle 3000..3199. The last
 * code of each family means "not in this family". The values are fixed, because callers store and
 * exchange them. Each code is listed with the FourCCs and numeric wave-format tags that map to it.
 */
enum {
    TAVU_MT_NONE = 0, /**< unknown to tavu_fcc2mt() */

    /** MPEG-4 Visual: mp4v, xvid, divx, dx50, div4, m4s2, the same in capitals, and FMP4. */
    TAVU_MT_VID_MPEG4 = 102,
    TAVU_MT_VID_H263 = 103,    /**< H.263: h263, H263, d263, s263 */
    TAVU_MT_VID_H264 = 104,    /**< H.264: avc1, AVC1, H264, h264, x264, avcC */
    TAVU_MT_VID_WMV1 = 105,    /**< wmv1, WMV1 */
    TAVU_MT_VID_WMV2 = 106,    /**< wmv2, WMV2 */
    TAVU_MT_VID_WMV3 = 107,    /**< wmv3, WMV3 */
    TAVU_MT_VID_DIV3 = 110,    /**< DIV3, div3 */
    TAVU_MT_VID_H263X = 111,   /**< a second H.263 code; no FourCC maps to it */
    TAVU_MT_VID_RV10 = 113,    /**< RV10 */
    TAVU_MT_VID_RV20 = 114,    /**< RV20 */
    TAVU_MT_VID_RV30 = 115,    /**< RV30 */
    TAVU_MT_VID_RV40 = 116,    /**< RV40 */
    TAVU_MT_VID_MP43 = 117,    /**< mp43, MP43 */
    TAVU_MT_VID_VC1 = 118,     /**< VC-1: wvc1, WVC1 */
    TAVU_MT_VID_VP8 = 119,     /**< VP8: VP80 */
    TAVU_MT_VID_HEVC = 120,    /**< HEVC: hvc1, HVC1, H265, h265, x265, hvcC */
    TAVU_MT_VID_HFYU = 122,    /**< HuffYUV: HFYU */
    TAVU_MT_VID_UNKNOWN = 299, /**< not a known video codec */

    TAVU_MT_AUD_PCM = 300,     /**< linear PCM: tag 1 */
    TAVU_MT_AUD_ALAW = 301,    /**< A-law: tag 6 */
    TAVU_MT_AUD_MULAW = 302,   /**< mu-law: tag 7 */
    TAVU_MT_AUD_MPEG = 304,    /**< MPEG audio, layers 1 and 2: tag 80 */
    TAVU_MT_AUD_MP3 = 305,     /**< MPEG audio, layer 3: tag 85 */
    TAVU_MT_AUD_AAC = 306,     /**< AAC: tag 255, "aac ", mp4a */
    TAVU_MT_AUD_AC3 = 307,     /**< AC-3: tag 8192 */
    TAVU_MT_AUD_DTS = 308,     /**< DTS: tag 8193 */
    TAVU_MT_AUD_AMR = 309,     /**< AMR: samr */
    TAVU_MT_AUD_AMRWB = 310,   /**< AMR-WB: sawb */
    TAVU_MT_AUD_QCELP = 311,   /**< QCELP: sqcp, dqcp */
    TAVU_MT_AUD_WMA = 312,     /**< WMA: tags 352, 353 */
    TAVU_MT_AUD_WMAPRO = 313,  /**< WMA Professional: tag 354 */
    TAVU_MT_AUD_WMALSL = 314,  /**< WMA Lossless: tag 355 */
    TAVU_MT_AUD_EVRC = 321,    /**< EVRC: evrc */
    TAVU_MT_AUD_SIPR = 331,    /**< sipr */
    TAVU_MT_AUD_COOK = 332,    /**< cook */
    TAVU_MT_AUD_UNKNOWN = 499, /**< not a known audio codec */

    TAVU_MT_DRM_DIVX = 1100,    /**< DIVX, divx */
    TAVU_MT_DRM_UNKNOWN = 1299, /**< not a known DRM system */

    TAVU_MT_SUB_SRT = 3000,    /**< SubRip: SSRT */
    TAVU_MT_SUB_TX3G = 3006,   /**< 3GPP timed text: TX3G, tx3g, SBTL, sbtl */
    TAVU_MT_SUB_ASS = 3007,    /**< Advanced SubStation Alpha: SASS */
    TAVU_MT_SUB_SSA = 3008,    /**< SubStation Alpha: SSSA */
    TAVU_MT_SUB_UNKNOWN = 3199 /**< not a known subtitle format */
};

/**
 * Maps a FourCC or a numeric wave-format tag to a media-type code. Searches the audio, video,
 * subtitle and DRM families, in this order. The first character of a FourCC is in its lowest byte.
 * Matching is exact and case-sensitive.
 * @return the code, or #TAVU_MT_NONE
 */
TAVU_API int32_t tavu_fcc2mt(uint32_t fcc);

/** Returns the audio code of a FourCC or wave-format tag, or #TAVU_MT_AUD_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_aud(uint32_t fcc);

/** Returns the video code of a FourCC, or #TAVU_MT_VID_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_vid(uint32_t fcc);

/** Returns the subtitle code of a FourCC, or #TAVU_MT_SUB_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_sub(uint32_t fcc);

/**
 * Returns the DRM code of a FourCC, or #TAVU_MT_DRM_UNKNOWN. tavu_fcc2mt() maps "DIVX" to video.
 */
TAVU_API int32_t tavu_fcc2mt_drm(uint32_t fcc);

/**
 * Determines whether a coded video access unit is a key frame, from its start codes and first
 * header bits alone (ISO/IEC 14496-2; ITU-T H.263, 5.1; H.264 and H.265, table 7-1).
 *
 * The unit is a key frame
 *
 * - in MPEG-4 Visual if the first VOP (or short-header picture) is intra
 * - in H.263 if the first picture is intra
 * - in H.264 if an IDR slice comes before any other slice
 * - in HEVC if the first NAL unit is an IDR slice; a unit that begins with a parameter set gives 0
 * - in WMV1, WMV2 and DIV3 if the picture type is intra
 * - in HuffYUV always
 * - in any other codec never
 *
 * H.264 and HEVC units need start codes, not length fields. A start code is recognised only if at
 * least 5 bytes (MPEG-4 Visual), 7 (H.263) or 4 (H.264, HEVC) are left, including the start code.
 *
 * @param codec video media-type code
 * @param data  the unit. For WMV1, WMV2 and DIV3 the first byte is read regardless of `size`. For
 *        an H.263 unit with extended picture type, one byte past `size` may be read
 * @param size  bytes; a size below 1 scans nothing
 * @return 1 for a key frame, 0 otherwise
 */
TAVU_API int32_t tavu_is_vkeyfrm(int32_t codec, const void *data, int32_t size);

/** MD5 context (RFC 1321); the caller allocates it. */
typedef struct tavu_md5_t {
    uint32_t state[4]; /**< chaining state A, B, C, D */
    uint8_t msg[64];   /**< partial input block */
    uint32_t bits[2];  /**< message length in bits, low word first */
} tavu_md5_t;

/** Starts a digest; also makes a finished context usable again. */
TAVU_API void tavu_md5_init(tavu_md5_t *md5);

/** Adds `size` bytes to the digest, up to 2^61 - 1 in total. `data` may be null if `size` is 0. */
TAVU_API void tavu_md5_update(tavu_md5_t *md5, const void *data, uint32_t size);

/** Writes the 16 bytes of the digest, in the order of RFC 1321, and zeroes the context. */
TAVU_API void tavu_md5_finish(tavu_md5_t *md5, uint8_t digest[16]);

/**
 * Computes the MD5 digest of the visible picture of a planar image buffer; strides and padding do
 * not affect it.
 *
 * Luma rows `y` to `h` - 1 contribute their first `w - x` bytes. Unless `cs` is 10, rows `y >> 1`
 * to `(h + 1) / 2 - 1` of planes 1 and 2 follow with `(w + 1 - x) / 2` bytes each. Chroma is always
 * treated as halved in both directions, so other layouts are covered only in part; alpha is not
 * covered. Pictures with equal codes, sizes and samples have equal digests.
 *
 * @param imgb the picture; if `x` or `y` is negative, the padding must hold the longer rows on the
 *        right and the additional rows above
 * @param digest 16 bytes
 * @return 0; #TAVU_ERR_UNSUPPORTED_CS if `cs` is above 99 or negative, or
 *         #TAVU_ERR_INVALID_ARGUMENT for a null buffer, with nothing written
 */
TAVU_API int32_t tavu_md5_imgb(const tavu_imgb_t *imgb, uint8_t digest[16]);

/** @} */

/* ---- Block metrics --------------------------------------------------------------------------- */

/**
 * @defgroup metric Block metrics
 * These functions compare two blocks of 8-bit samples. A block is given by its top-left sample and
 * its stride in bytes. Sizes in names are columns x rows. Arguments are not checked. Blocks may
 * have any alignment, except the first block of tavu_sad_eskip().
 *
 * Readable slack: tavu_sad4x4(), tavu_sad4x8(), tavu_diff4x4() and tavu_ssd() with 4 columns may
 * read 8 bytes of every row of both blocks, so the 4 bytes after each row must be readable. These
 * bytes never change the result.
 *
 * Results are never negative, with these exceptions:
 *
 * - tavu_satd8x8() returns -8192..32640, because large residuals may wrap its 16-bit sums.
 * - tavu_satd2() adds up results of tavu_satd8x8() and may be negative for areas of any size.
 * - tavu_ssd() returns the sum modulo 2^32 as a signed number, which may be negative above 33,025
 *   samples (just over eight blocks of 64x64).
 * - tavu_satd(), tavu_satd1() and tavu_satd2() add up in 32 bits that wrap: above 4,210,752 samples
 *   (just over 2048x2048), the sum may be wrong or negative.
 * - tavu_sad_eskip() must not be given more than 8,421,504 samples, because its sum would overflow.
 *
 * Threads: all functions are reentrant.
 * @{
 */

/**
 * A metric of two blocks of fixed size.
 * @param a,b top-left samples of the blocks
 * @param stride_a,stride_b bytes from one row to the next; may be negative
 * @return the metric
 */
typedef int32_t tavu_metric_block_t(const uint8_t *a, const uint8_t *b, int32_t stride_a,
                                    int32_t stride_b);

/**
 * A metric of two blocks of `width` columns and `height` rows, otherwise like #tavu_metric_block_t.
 */
typedef int32_t tavu_metric_area_t(int32_t width, int32_t height, const uint8_t *a,
                                   const uint8_t *b, int32_t stride_a, int32_t stride_b);

/**
 * @name Sums of absolute differences
 * The sum of |a - b| over all samples.
 * @{
 */
TAVU_API tavu_metric_block_t tavu_sad2x2;   /**< 2 columns, 2 rows */
TAVU_API tavu_metric_block_t tavu_sad2x4;   /**< 2 columns, 4 rows */
TAVU_API tavu_metric_block_t tavu_sad4x2;   /**< 4 columns, 2 rows */
TAVU_API tavu_metric_block_t tavu_sad4x4;   /**< 4 columns, 4 rows; needs the slack */
TAVU_API tavu_metric_block_t tavu_sad4x8;   /**< 4 columns, 8 rows; needs the slack */
TAVU_API tavu_metric_block_t tavu_sad8x4;   /**< 8 columns, 4 rows */
TAVU_API tavu_metric_block_t tavu_sad8x8;   /**< 8 columns, 8 rows */
TAVU_API tavu_metric_block_t tavu_sad8x16;  /**< 8 columns, 16 rows */
TAVU_API tavu_metric_block_t tavu_sad16x8;  /**< 16 columns, 8 rows */
TAVU_API tavu_metric_block_t tavu_sad16x16; /**< 16 columns, 16 rows */
TAVU_API tavu_metric_block_t tavu_sad16x32; /**< 16 columns, 32 rows */
TAVU_API tavu_metric_block_t tavu_sad32x16; /**< 32 columns, 16 rows */
TAVU_API tavu_metric_block_t tavu_sad32x32; /**< 32 columns, 32 rows */
TAVU_API tavu_metric_block_t tavu_sad64x32; /**< 64 columns, 32 rows */
TAVU_API tavu_metric_block_t tavu_sad32x64; /**< 32 columns, 64 rows */
TAVU_API tavu_metric_block_t tavu_sad64x64; /**< 64 columns, 64 rows */
/** @} */

/**
 * Sum of absolute differences of 8 columns if `width` is 8, and of 16 columns for any other width.
 * The height is a positive multiple of 4 for 8 columns and of 8 for 16 columns, at most 256.
 */
TAVU_API tavu_metric_area_t tavu_sad;

/**
 * Sum of absolute differences that stops after the first row at which it exceeds `threshold`. At
 * least one row is summed, whatever the threshold. A sum equal to the threshold does not stop it.
 * @param width columns, a positive multiple of 4
 * @param height rows, at least 1; width * height is at most 8,421,504
 * @param a first block; the address and the stride are multiples of 4
 * @param b second block, of any alignment; every aligned 4-byte word that a row touches must be
 *        readable in full
 * @param stride_a,stride_b bytes from one row to the next; may be negative
 * @param threshold largest sum after which the next row is added
 * @return the sum of all rows, or of the rows up to the first at which it exceeds the threshold
 */
TAVU_API int32_t tavu_sad_eskip(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                                int32_t stride_a, int32_t stride_b, int32_t threshold);

/**
 * Residual of two blocks of fixed size: a - b, in 16-bit samples of -255..255.
 * @param a,b top-left samples of the blocks
 * @param stride_a,stride_b bytes from one row to the next; may be negative
 * @param stride_diff samples from one row of the residual to the next; may be negative
 * @param diff residual, aligned as an int16_t; samples past the block's columns are not written
 */
typedef void tavu_diff_block_t(const uint8_t *a, const uint8_t *b, int32_t stride_a,
                               int32_t stride_b, int32_t stride_diff, int16_t *diff);

TAVU_API tavu_diff_block_t tavu_diff2x2;   /**< 2 columns, 2 rows */
TAVU_API tavu_diff_block_t tavu_diff4x4;   /**< 4 columns, 4 rows; needs the slack */
TAVU_API tavu_diff_block_t tavu_diff8x8;   /**< 8 columns, 8 rows */
TAVU_API tavu_diff_block_t tavu_diff16x16; /**< 16 columns, 16 rows */
TAVU_API tavu_diff_block_t tavu_diff32x32; /**< 32 columns, 32 rows */
TAVU_API tavu_diff_block_t tavu_diff64x64; /**< 64 columns, 64 rows */

/**
 * Residual of blocks of any size, otherwise like #tavu_diff_block_t. A width or height below 1
 * writes nothing. Nothing outside the blocks is read.
 */
TAVU_API void tavu_diff(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                        int32_t stride_a, int32_t stride_b, int32_t stride_diff, int16_t *diff);

/**
 * Sum of squared differences of 4, 8, 16 or 32 columns; any other width is treated as 64. The
 * height is a positive multiple of 4 for 4, 8 and 16 columns and of 2 for 32 columns; for 64
 * columns it is any positive number. 4 columns need the slack.
 *
 * The sum wraps at 32 bits. It fits in an int32_t for up to 33,025 samples: 516 rows of 64 columns,
 * 1032 of 32, 2064 of 16, 4128 of 8, 8256 of 4. Beyond that it may be negative: 64x520 samples that
 * differ by 255 give -2130935296. Converted to uint32_t, the result is exact for up to 66,051
 * samples.
 */
TAVU_API tavu_metric_area_t tavu_ssd;

/**
 * Half the sum of the magnitudes of the two-dimensional 4x4 Hadamard transform, rounded down. The
 * transform is not normalised: its basis functions have values of +1 and -1.
 * @param block 16 residuals of -2047..2047, row by row without gaps, aligned as an int16_t
 * @return the metric, 0..65504; the same as tavu_satd4x4() of two blocks with this residual
 */
TAVU_API int32_t tavu_hadamard4x4(const int16_t *block);

/**
 * tavu_hadamard4x4() of the residual of two 4x4 blocks, 0..8160. Reads nothing outside the blocks.
 */
TAVU_API tavu_metric_block_t tavu_satd4x4;

/**
 * A quarter of the sum of the magnitudes of the 8x8 Hadamard transform of the residual, rounded to
 * nearest, in the range -8192..32640.
 *
 * The eight magnitudes of each horizontal frequency are summed in 16 bits that wrap, and the sum is
 * interpreted as signed. The result is exact if no such sum exceeds 32767, which holds for all
 * residuals of -204..204. At most one of the eight sums can exceed 32767; the result is then 16384
 * less than the exact value. For example, one row of residuals of -255 above seven rows of 255
 * gives -6184.
 */
TAVU_API tavu_metric_block_t tavu_satd8x8;

/**
 * Sum of tavu_satd4x4() over all 4x4 tiles. Width and height are positive multiples of 4. The sum
 * fits in an int32_t for up to 4,210,752 samples and wraps above that.
 */
TAVU_API tavu_metric_area_t tavu_satd;

/**
 * Sum of tavu_satd4x4() over the 4x4 tiles that cover the block. The last tiles may extend up to 3
 * samples past its right and lower edges; these samples must be readable and are included. The
 * result is 0 for a width or height below 1. The sum fits in an int32_t for up to 4,210,752 samples
 * of whole tiles and wraps above that.
 */
TAVU_API tavu_metric_area_t tavu_satd1;

/**
 * Sum of tavu_satd8x8() over the 8x8 tiles that cover the block. The last tiles may extend up to 7
 * samples past its right and lower edges; these samples must be readable and are included. The
 * result is 0 for a width or height below 1. It may be negative, as low as -8192 per tile; an 8x8
 * block can give -8192..32640. The sum fits in an int32_t for up to 4,210,752 samples of whole
 * tiles and wraps above that.
 */
TAVU_API tavu_metric_area_t tavu_satd2;

/** @} */

/* ---- Image resizing -------------------------------------------------------------------------- */

/**
 * @defgroup irsz Image resizing
 * Bilinear resizing of packed images, whole or in bands of rows.
 *
 * Positions have 18 fraction bits. The upper three bits of the fractions on both axes select one of
 * 8 x 8 groups of four weights that sum to 64. The weighted sum is shifted right by 6, which
 * truncates. Shrinking by a factor of 3 or more uses only every 2nd, 4th, 8th or 16th source pixel.
 * Target pixel i is at source position i (source - 1) / target, so a resize to the same size is not
 * a copy.
 *
 * With q = source / target, rounded down, an axis has
 *
 * - the decimation shift: 0 for q up to 2, 1 up to 4, 2 up to 8, 3 up to 16, else 4
 * - the step: (((source - 1) >> shift) << 18) / target, in units of 1 << shift source pixels
 *
 * The right and lower neighbours of a sample are 1 << shift pixels away and inside the source. A
 * source of one pixel has step 0 and no neighbour. With step 0, the neighbours on that axis are
 * read only if one of them has a weight other than 0; with the standard weights, none has.
 *
 * Largest source: (size - 1) >> shift must be below 8192. The limit is 8192 pixels, 16384 if the
 * target is smaller by a factor of 3 or more, and so on up to 131072; see docs/limits.md.
 *
 * Threads: two threads must not use the same resizer at once. Kernels and different resizers may be
 * used concurrently as long as no thread writes tavu_irsz_tbl_rsz_weight.
 * @{
 */

/** Pixel formats of the resizer. */
enum {
    TAVU_IRSZ_8B = 20,            /**< 1 byte to 1 byte */
    TAVU_IRSZ_8B8B8B = 21,        /**< 3 bytes to 3 bytes */
    TAVU_IRSZ_8B8B8B_5B6B5B = 23, /**< 3 bytes to a 5-6-5 unit */
    TAVU_IRSZ_5B6B5B = 25,        /**< 5-6-5 unit to 5-6-5 unit */
    TAVU_IRSZ_8B8B8B8B = 29       /**< 4 bytes to 4 bytes */
};

/** Modes of the resizer. */
enum {
    TAVU_IRSZ_MODE_FULL = 10, /**< each call passes a whole source image */
    TAVU_IRSZ_MODE_LINE = 11  /**< each call passes a band of a fixed number of source rows */
};

/** Errors of tavu_irsz_create(), besides #TAVU_ERR. */
enum {
    TAVU_IRSZ_ERR_MODE = -2,  /**< neither FULL nor LINE */
    TAVU_IRSZ_ERR_ALLOC = -3, /**< no memory for the object */
    TAVU_IRSZ_ERR_FORMAT = -4 /**< unknown pixel format */
};

/** Parameters of a resizer. */
typedef struct tavu_irsz_param {
    int32_t fmt;    /**< TAVU_IRSZ_ pixel format */
    int32_t mode;   /**< TAVU_IRSZ_MODE_ */
    int32_t src_w,  /**< source width in pixels */
        src_h;      /**< source height in pixels */
    int32_t src_s;  /**< source stride in pixels; in full mode it may be negative */
    int32_t band_h; /**< band mode: rows per band, a power of two */
    int32_t dst_w,  /**< target width in pixels */
        dst_h;      /**< target height in pixels */
    int32_t dst_s;  /**< target stride in pixels; it may be negative */
    void *dst;      /**< target pixels; must outlive the resizer */
} tavu_irsz_param;

typedef struct tavu_irsz_t tavu_irsz_t;

/** A driver: implements tavu_irsz() for one pixel format. */
typedef int32_t (*tavu_irsz_fn)(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);

/**
 * A resizer; read-only for callers. Line sizes and offsets are in bytes; for 5-6-5 to 5-6-5 they
 * are in pixels.
 */
struct tavu_irsz_t {
    int32_t fmt;           /**< pixel format */
    int32_t mode;          /**< mode */
    int32_t step_x;        /**< column step per target pixel, 18 fraction bits, in units of
                                1 << shift_x source pixels */
    int32_t step_y;        /**< row step per target row, in units of 1 << shift_y rows */
    int32_t pos_y;         /**< band mode: position of the next target row */
    int32_t next_x;        /**< pixels to the right neighbour: 1 << shift_x */
    int32_t line_size;     /**< source stride */
    int32_t dst_w,         /**< target width in pixels */
        dst_h;             /**< target height in pixels */
    int32_t dst_line;      /**< target stride */
    int32_t shift_x,       /**< decimation shift of columns, 0..4 */
        shift_y;           /**< decimation shift of rows, 0..4 */
    int32_t next_row;      /**< distance to the lower neighbour row */
    int32_t carry_next;    /**< band mode: offset of the carried row's lower neighbour in the
                                next band */
    int32_t pending;       /**< band mode: 1 while target row out_row - 1 is not yet written
                                because its lower source row is missing */
    int32_t band_size;     /**< band_h * line_size */
    int32_t out_row;       /**< band mode: next target row */
    int32_t upscale;       /**< 1 if either axis is enlarged */
    int32_t reuse;         /**< band mode: 1 while the carried row is the next upper row */
    tavu_irsz_fn rsz_func; /**< driver of the pixel format */
    uint8_t *carry_buf;    /**< band mode: the carried source row */
    uint8_t *dst;          /**< target pixels */
};

/**
 * Creates a resizer for one combination of sizes, pixel format and mode.
 *
 * Delete it with tavu_irsz_delete(). There is no reset: in band mode each image needs a new
 * resizer. Creation succeeds even if there is no memory for the carried row of band mode; callers
 * that must handle this case check `carry_buf` for null.
 *
 * @param param must not be null. Strides are not compared with widths, and `dst` is not checked
 * @param err null, or where to store 0, #TAVU_IRSZ_ERR_ALLOC, #TAVU_IRSZ_ERR_MODE (checked before
 *        the format), #TAVU_IRSZ_ERR_FORMAT, or #TAVU_ERR. The last means a size below 1; a source
 *        that is too large (see above); 16 source lines or one target line that do not fit in 32
 *        signed bits (counted in bytes, or in pixels for 5-6-5 to 5-6-5); or, in band mode, a band
 *        height that is not a power of two, a stride below 1, or band_h + 16 source lines above
 *        INT32_MAX
 * @return the resizer or null
 */
TAVU_API tavu_irsz_t *tavu_irsz_create(const tavu_irsz_param *param, int32_t *err);

/**
 * Resizes by calling the driver of the pixel format. Unchecked. Source and target must not overlap.
 *
 * Mode FULL: `src` is the source image; `first_row` and `rows` are ignored.
 *
 * Mode LINE: `src` is a band of source rows that starts with row `first_row`, a multiple of band_h.
 * `rows` is always band_h, even if the image ends inside the last band. Pass bands in order until
 * `out_row` reaches `dst_h` and `pending` is 0. A target row is pending if its lower source row is
 * in the next band; the next call writes it.
 *
 * @code
 * for (int32_t row = 0; row < src_h; row += band_h) {
 *     if (rsz->out_row == rsz->dst_h && !rsz->pending) break;
 *     tavu_irsz(rsz, band_at(row), row, band_h); // band_at(): band_h source rows from `row` on
 * }
 * @endcode
 *
 * Every row of a band, including the last, needs `line_size` readable bytes: if the lower neighbour
 * of a row is in the next band, that many bytes of the row are copied to `carry_buf`, including the
 * bytes between the width and the stride.
 *
 * The target is the same as in mode FULL if band_h >= 2 * n, where n is src_h / dst_h rounded up;
 * rows of the last band below the image are then not read. Two formats still differ.
 * #TAVU_IRSZ_5B6B5B keeps only the first `line_size` bytes of a carried row, half a stride; the
 * rest reads as 0. #TAVU_IRSZ_8B8B8B_5B6B5B packs pixels as its line kernel does.
 *
 * Shorter bands may leave out target rows, use wrong source rows, and read all rows of the last
 * band. If band_h is less than 1 << shift_y, no row is ever written and `pending` stays 1, so only
 * the number of source rows ends the loop. With bands of one row, the last target row may still be
 * pending when the source ends.
 * @return 0
 */
TAVU_API int32_t tavu_irsz(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);

/** Frees a resizer but not its target; null is ignored. */
TAVU_API void tavu_irsz_delete(tavu_irsz_t *rsz);

/** Driver of #TAVU_IRSZ_8B; arguments and result are those of tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B; arguments and result are those of tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b8b8b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                 int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B_5B6B5B; arguments and result are those of tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b8b8b_5b6b5b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                        int32_t rows);
/** Driver of #TAVU_IRSZ_5B6B5B; arguments and result are those of tavu_irsz(). */
TAVU_API int32_t tavu_irsz5b6b5b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                 int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B8B; arguments and result are those of tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b8b8b8b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                   int32_t rows);

/**
 * Computes the packed steps, (step << 3) | shift, that the whole-image kernels take. Unchecked. A
 * target size of 0 raises SIGFPE. The step has 29 bits, including the sign: with more than 16384
 * source pixels per target pixel, the upper bits are lost and a whole-image kernel reads outside
 * the source. tavu_irsz() and the combined conversions do not pack steps and do not have this
 * limit.
 * @param src_w,src_h source size in pixels
 * @param dst_w,dst_h target size in pixels
 * @param step_x,step_y where to store the packed steps
 * @return a meaningless value, not a status
 */
TAVU_API int32_t bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h,
                                        int32_t *step_x, int32_t *step_y);

/**
 * Bilinear weights: four bytes at 32 * a + 4 * b for the horizontal fraction a and the vertical
 * fraction b in eighths: upper-left (8 - a)(8 - b), upper-right a(8 - b), lower-left (8 - a)b,
 * lower-right ab. The resizer reads this table. Callers may write other weights into it, with a sum
 * of at most 64 in each group. The same formula then applies, at a lower speed.
 */
TAVU_API extern uint8_t tavu_irsz_tbl_rsz_weight[256];

/** A read-only copy of the weights for callers' own kernels. */
TAVU_API extern const uint8_t tavu_tbl_bilinear_rszw[256];

/**
 * Line kernel: computes one target row from two source rows. Unchecked. Reads no byte beyond the
 * right neighbour of the last pixel. A `dst_w` below 1 writes nothing.
 * @param rows   upper and lower source row
 * @param wrow   tavu_irsz_tbl_rsz_weight + 4 * b, or a table of the caller: eight groups of four
 *        weights for the eight horizontal fractions, 32 bytes apart. All groups may be read, even
 *        those that the row does not use, so 228 bytes must be readable. If `step_x` is 0 or
 *        `dst_w` is 1, only the first group (4 bytes) is read
 * @param dst_w  target pixels
 * @param shift_x,next_x decimation shift, and pixels to the right neighbour
 * @param step_x step with 18 fraction bits
 * @param out    target row
 */
typedef void tavu_irsz_line_t(const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w,
                              int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out);

/**
 * Whole-image kernel. Unchecked. A `dst_w` or `dst_h` below 1 writes nothing. Reads no byte beyond
 * the lower right neighbour of the last pixel.
 * @param src,src_line source and its stride in bytes (5-6-5 to 5-6-5: pixels)
 * @param dst_w,dst_h  target size in pixels
 * @param dst_line,dst target stride in bytes (5-6-5 to 5-6-5: pixels) and target
 * @param packed_x,packed_y steps of bilinear_rsz_step_size()
 */
typedef void tavu_irsz_full_t(const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h,
                              int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y);

TAVU_API tavu_irsz_line_t tavu_irsz8b_line;       /**< 1 byte per pixel */
TAVU_API tavu_irsz_full_t tavu_irsz8b_full;       /**< 1 byte per pixel */
TAVU_API tavu_irsz_line_t tavu_irsz8b8b8b_line;   /**< 3 bytes per pixel */
TAVU_API tavu_irsz_full_t tavu_irsz8b8b8b_full;   /**< 3 bytes per pixel */
TAVU_API tavu_irsz_line_t tavu_irsz8b8b8b8b_line; /**< 4 bytes per pixel */
TAVU_API tavu_irsz_full_t tavu_irsz8b8b8b8b_full; /**< 4 bytes per pixel */

/**
 * Packs 3 bytes c0, c1, c2 into 2 bytes: (c0 & 0x8F) | (c1 >> 5), then (c1 & 0xE0) | (c2 >> 3).
 * This is not a 5-6-5 unit in either byte order; callers rely on it.
 */
TAVU_API tavu_irsz_line_t tavu_irsz8b8b8b_5b6b5b_line;
/**
 * Packs 3 bytes c0, c1, c2 into 2 bytes: (c1 & 0xE0) | (c2 >> 3), then (c0 & 0xF8) | (c1 >> 5).
 * This is a little-endian unit that contains the upper three bits of c1 twice and lacks the next
 * three.
 */
TAVU_API tavu_irsz_full_t tavu_irsz8b8b8b_5b6b5b_full;

/**
 * 5-6-5 units. Channels are widened with zero low bits, weighted, and truncated to 5, 6 and 5 bits.
 */
TAVU_API tavu_irsz_line_t tavu_irsz5b6b5b_line;
/** 5-6-5 units, strides in pixels. */
TAVU_API tavu_irsz_full_t tavu_irsz5b6b5b_full;

/** @} */

/* ---- Colour-space conversion ----------------------------------------------------------------- */

/**
 * @defgroup csc Colour-space conversion
 * Converts planes to packed RGB and back, at the same size or with resizing.
 *
 * YUV to RGB uses the ITU-R BT.601 matrix at full range, as JPEG does, with 8 fraction bits.
 * With u = U - 128 and v = V - 128:
 *
 *     R = Y + ((359 v + 128) >> 8)
 *     G = Y - ((183 v + 88 u + 128) >> 8)
 *     B = Y + ((454 u + 128) >> 8)
 *
 * each clamped to 0..255. Shifts round toward minus infinity.
 *
 * RGB to YUV:
 *
 *     Y = (77 R + 150 G + 29 B + 128) >> 8
 *     U = 128 + ((-43 R - 85 G + 128 B + 128) >> 8)
 *     V = 128 + ((128 R - 107 G - 21 B + 128) >> 8)
 *
 * where a U or V outside 0..255 becomes 255.
 *
 * Threads: routines are reentrant. Threads may convert different rows of one picture concurrently.
 * @{
 */

/**
 * A conversion routine. Unchecked: planes must have the given sizes, and source and target must not
 * overlap. Planes need no alignment and no readable bytes after a row. Same-size routines ignore
 * the target size; a width or height below 1 writes nothing. Strides may be negative. Array entries
 * of planes that the routine does not use are not read.
 *
 * @param src        source planes in the order of the layout's name
 * @param src_w,src_h source size in pixels
 * @param src_stride bytes per row of each source plane. Same-size routines with packed 8-bit RGB
 *        targets use the first for all planes
 * @param src_cs     source code; ignored
 * @param dst        target planes
 * @param dst_w,dst_h target size in pixels
 * @param dst_stride bytes per row of each target plane; a packed target uses the first. Rows of
 *        5-6-5 units start 2 * stride - 2 * width bytes apart, which equals the stride only if rows
 *        have no padding
 * @param dst_cs     target code. In same-size routines with packed 8-bit targets, 401 and 501
 *        select B, G, R order, written through the *third* target pointer with the first stride.
 *        Other routines ignore the code, except tavu_csc_yuv444x_to_yuv444x()
 */
typedef void tavu_csc_routine_t(uint8_t *const src[4], int32_t src_w, int32_t src_h,
                                const int32_t src_stride[4], int32_t src_cs, uint8_t *const dst[4],
                                int32_t dst_w, int32_t dst_h, const int32_t dst_stride[4],
                                int32_t dst_cs);

/** Pointer to a conversion routine. */
typedef tavu_csc_routine_t *tavu_fn_csc_t;

/**
 * Finds the routine that converts between two colour-space codes, with resizing if the sizes
 * differ. Sizes are not checked.
 *
 * Same size: 600 to 400, 500, 200, 650; 700 to 500, 650 (and 430, which gives the routine for 500);
 * 13 to 400, 500, 200, 650, 13; 43 to 500, 430, 650, 13, 43. Different size: 600 and 13 to 400,
 * 500; 700 and 43 to 500.
 * @param err null, or where to store #TAVU_ERR_UNSUPPORTED_CS on failure; not written on success
 * @return the routine or null
 */
TAVU_API tavu_fn_csc_t tavu_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs,
                                            int32_t dst_w, int32_t dst_h, int32_t dst_cs,
                                            int32_t *err);

/**
 * Routines to RGB, at index 5 * row + column, plus 20 for resizing; rows: 600, 700, 13, 43;
 * columns: 400, 500, 200, 430, 650. Empty slots are null.
 */
TAVU_API extern const tavu_fn_csc_t tavu_tbl_fn_csc_to_rgb[40];

/**
 * Routines to planar YUV, at index 2 * row + column, plus 8 for resizing; rows as above; columns:
 * 13, 43. Empty slots are null. tavu_imgp_get_fn_csc() does not use the first two rows.
 */
TAVU_API extern const tavu_fn_csc_t tavu_tbl_fn_csc_to_yuvplanar[16];

/** Y, U, V planes to R, G, B; B, G, R for target code 401. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444_to_rgb888;
/** Y, U, V planes to R, G, B, 255; B, G, R, 255 for target code 501. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444_to_rgba8888;
/** Y, U, V, A planes to R, G, B, A; B, G, R, A for target code 501. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444a8_to_rgba8888;
/** R, G, B planes to R, G, B for target code 400, to B, G, R for every other code. */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8_to_rgb888;
/** R, G, B planes to R, G, B, 255; B, G, R, 255 for target code 501. */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8_to_rgba8888;
/** R, G, B, A planes to R, G, B, A; B, G, R, A for target code 501. */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8a8_to_rgba8888;

/** Y, U, V planes to 5-6-5 units. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444_to_rgb565;
/** Y, U, V planes to 5-6-5 units and an alpha plane of 255. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444_to_rgb565a8;
/** Y, U, V, A planes to 5-6-5 units and an alpha plane. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444a8_to_rgb565a8;
/**
 * Y, U, V, A planes to 5-6-5 units through the first target pointer, 2 bytes per pixel, and to
 * alpha bytes through the second, 3 bytes apart, with the second stride. If the two targets
 * overlap, a pixel's alpha is written after its unit.
 */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444a8_to_rgba5658;
/** R, G, B planes to 5-6-5 units, truncating. */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8_to_rgb565;
/** Three planes to 5-6-5 units, truncating, and an alpha plane of 255. */
TAVU_API tavu_csc_routine_t tavu_csc_x8y8z8_to_xyz565a8;
/** Three planes and alpha to 5-6-5 units, truncating, and an alpha plane. */
TAVU_API tavu_csc_routine_t tavu_csc_x8y8z8a8_to_xyz565a8;
/**
 * Plane 0 as grey and plane 3 as alpha to the two targets of tavu_csc_yuv444a8_to_rgba5658();
 * planes 1 and 2 are not read. Not in the tables.
 */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8a8_to_rgba5658;

/**
 * Packed pixels of 3 bytes to Y, U, V planes. The source pointers point to the first R, G and B,
 * each with its own stride; for B, G, R order, swap the first and the third pointer.
 */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8_to_yuv444;
/**
 * Packed pixels of 4 bytes to Y, U, V, A planes. The source pointers point to the first R, G, B and
 * A. Otherwise like tavu_csc_r8g8b8_to_yuv444().
 */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8a8_to_yuv444a8;
/**
 * Copies three planes, and the fourth if the target code is 43 and the fourth source pointer is not
 * null. Each plane has its own strides.
 */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444x_to_yuv444x;

/**
 * @name Combined conversion and resizing
 * Bilinear as in the resizer, to R, G, B(, A) through the first target pointer; the target code is
 * ignored. Each source plane has its own stride. A target size of 0 raises SIGFPE; a negative
 * target size writes nothing. The source limits of the resizer apply but are not checked. Steps are
 * not packed, so the 29-bit limit of bilinear_rsz_step_size() does not apply. The weights are
 * always the standard ones, whatever tavu_irsz_tbl_rsz_weight holds.
 *
 * YUV sources: full groups of eight pixels of a row are converted in 16-bit arithmetic. Products
 * and sums wrap before the rounding shift, so strong chroma gives results far from the formula
 * above: red for |v| of 92 and more, blue for |u| of 73 and more, green if 183 v + 88 u does not
 * fit in 16 bits. The last dst_w % 8 pixels are exact. Callers rely on these bytes.
 * @{
 */

/** R, G, B planes to R, G, B. */
TAVU_API tavu_csc_routine_t tavu_csc_rsz_r8g8b8_to_rgb888;
/** R, G, B planes to R, G, B, 255. */
TAVU_API tavu_csc_routine_t tavu_csc_rsz_r8g8b8_to_rgba8888;
/** R, G, B, A planes to R, G, B, A. */
TAVU_API tavu_csc_routine_t tavu_csc_rsz_r8g8b8a8_to_rgba8888;
/** Y, U, V planes to R, G, B. */
TAVU_API tavu_csc_routine_t tavu_csc_rsz_yuv444_to_rgb888;
/** Y, U, V planes to R, G, B, 255. */
TAVU_API tavu_csc_routine_t tavu_csc_rsz_yuv444_to_rgba8888;
/** Y, U, V, A planes to R, G, B, A. */
TAVU_API tavu_csc_routine_t tavu_csc_rsz_yuv444a8_to_rgba8888;

/** @} */
/** @} */

/* ---- Doubly linked list ---------------------------------------------------------------------- */

/**
 * @defgroup list Doubly linked list
 * A list of copies of elements, all of one size. An element is accessed by position, by handle or
 * through the cursor. Positions count from 0. Pointers to elements and handles are valid until the
 * element is removed. Elements are aligned to the size of two pointers. Only tavu_list_delete()
 * accepts a null list.
 *
 * Threads: two threads must not use the same list at once.
 * @{
 */

/**
 * Called with each element that is removed, after it is unlinked and before it is freed. The
 * callback must not use the list, whose count still includes the element.
 */
typedef void (*tavu_list_release_fn)(void *data);

/** An element's links, immediately followed by its bytes. The node's address is the handle. */
typedef struct tavu_list_node_t tavu_list_node_t;
struct tavu_list_node_t {
    tavu_list_node_t *prev, /**< the previous element, or the head marker */
        *next;              /**< the next element, or the tail marker */
};

/** A list; read-only for callers. */
typedef struct {
    uint32_t elem_size;           /**< bytes of an element */
    int32_t cnt;                  /**< number of elements */
    tavu_list_node_t *head;       /**< marker before the first element; its `prev` is itself */
    tavu_list_node_t *tail;       /**< marker after the last element; its `next` is itself */
    tavu_list_node_t *cur;        /**< current element or null */
    tavu_list_release_fn release; /**< callback or null */
} tavu_list_t;

/**
 * Creates an empty list without a current element; free it with tavu_list_delete().
 * @param elem_size bytes of an element; 0 is allowed
 * @param release null, or called for each element that is removed
 * @return the list; null if out of memory
 */
TAVU_API tavu_list_t *tavu_list_create(uint32_t elem_size, tavu_list_release_fn release);

/** Removes all elements from first to last and frees the list; null is ignored. */
TAVU_API void tavu_list_delete(tavu_list_t *list);

/**
 * Appends a copy of the `elem_size` bytes at `elem`. Adding and inserting never move the cursor.
 * @return the copy; null if out of memory
 */
TAVU_API void *tavu_list_add(tavu_list_t *list, const void *elem);

/** Prepends a copy of an element; otherwise like tavu_list_add(). */
TAVU_API void *tavu_list_add_first(tavu_list_t *list, const void *elem);

/**
 * Appends a copy if `index` equals the count, prepends a copy if `index` is negative, and inserts
 * nothing for any other index.
 * @return the copy, or null
 */
TAVU_API void *tavu_list_insert_at(tavu_list_t *list, const void *elem, int32_t index);

/**
 * Returns the element at a position; a negative position means the first. Walks from the nearer
 * end.
 * @return the element; null if the index is not below the count or the list is empty
 */
TAVU_API void *tavu_list_get_at(tavu_list_t *list, int32_t index);

/**
 * Returns the handle of the element at a position; null if the index is negative or not below the
 * count.
 */
TAVU_API void *tavu_list_get_id(tavu_list_t *list, int32_t index);

/** Returns the element with a handle of this list; null for null. */
TAVU_API void *tavu_list_get_atid(tavu_list_t *list, const void *id);

/** Returns the first element, or null. */
TAVU_API void *tavu_list_get_first(tavu_list_t *list);
/** Returns the last element, or null. */
TAVU_API void *tavu_list_get_last(tavu_list_t *list);
/** Returns the number of elements. */
TAVU_API int32_t tavu_list_get_cnt(tavu_list_t *list);

/**
 * Removes the element at a position, if there is one. Walks from the first element. Whenever a
 * function removes the current element, the next element becomes the current one; after the last
 * element there is none.
 */
TAVU_API void tavu_list_rem_at(tavu_list_t *list, int32_t index);

/** Removes the element with a handle of this list; null is ignored. */
TAVU_API void tavu_list_rem_atid(tavu_list_t *list, void *id);

/** Removes the first element, if any. */
TAVU_API void tavu_list_rem_first(tavu_list_t *list);
/** Removes the last element, if any. */
TAVU_API void tavu_list_rem_last(tavu_list_t *list);
/** Removes all elements from first to last; no element is current afterwards. */
TAVU_API void tavu_list_rem_all(tavu_list_t *list);

/** Returns the current element; null if there is none. */
TAVU_API void *tavu_list_get_cur(tavu_list_t *list);

/** Makes the first element the current one and returns it, or null. */
TAVU_API void *tavu_list_move_first(tavu_list_t *list);
/** Makes the last element the current one and returns it, or null. */
TAVU_API void *tavu_list_move_last(tavu_list_t *list);

/**
 * Moves the cursor to the next element and returns that element. After the last element there is no
 * current element: this step and every further step, in either direction, returns null.
 */
TAVU_API void *tavu_list_move_next(tavu_list_t *list);
/** Moves the cursor to the previous element; otherwise like tavu_list_move_next(). */
TAVU_API void *tavu_list_move_prev(tavu_list_t *list);

/** Removes the current element, if any. */
TAVU_API void tavu_list_rem_cur(tavu_list_t *list);
/**
 * Removes the element before the current one; without a current element, removes the last element.
 */
TAVU_API void tavu_list_rem_prev(tavu_list_t *list);
/** Removes the element after the current one; without a current element, removes nothing. */
TAVU_API void tavu_list_rem_next(tavu_list_t *list);

/** @} */

/* ---- Ring buffer ----------------------------------------------------------------------------- */

/**
 * @defgroup rbuf Ring buffer
 * A byte queue in a ring that also delivers text lines.
 *
 * `head` is the index of the next byte to write, `tail` the index of the next byte to read. The
 * ring is empty when they are equal. One byte of the storage stays free: the ring is full when the
 * head is one before the tail, modulo the size. While the head is below the tail, the data *wraps*:
 * it continues from the end of the storage to its start.
 *
 * Positions advance by plain addition and can leave the storage:
 * - tavu_rbuf_put() can leave the head at `size`; see there.
 * - tavu_rbuf_get_one_line() moves the tail one byte too far after a line that was stored without
 *   CR. The tail can pass the head, so that the ring appears nearly full of old bytes, and it can
 *   reach `size` + 1. With the head at 0, the ring then appears full and delivers no line.
 * - The skip functions move a position back for a negative count, even below 0.
 *
 * The formulas of all functions also hold in these states; returned lengths, results and positions
 * can then be negative or outside the storage. No function accesses a byte outside the storage or
 * before the start of a caller's buffer: tavu_rbuf_put() and tavu_rbuf_get() count such a byte
 * without copying it, and tavu_rbuf_get_one_line() treats it as a zero byte. tavu_rbuf_empty() ends
 * every such state, unless the head is below 0.
 *
 * Only tavu_rbuf_delete() accepts null.
 *
 * Threads: two threads must not use the same ring buffer at once, not even if one only writes and
 * the other only reads.
 * @{
 */

/** A ring buffer; read-only for callers. */
typedef struct {
    int32_t head; /**< index of the next byte to write */
    int32_t tail; /**< index of the next byte to read */
    int32_t size; /**< bytes of storage */
    uint8_t *buf; /**< storage */
} tavu_rbuf_t;

/**
 * Creates an empty ring buffer; free it with tavu_rbuf_delete().
 * @param size bytes of storage: the capacity plus 1, at least 2 to be useful
 * @return the ring buffer; null if out of memory or if `size` is below 1
 */
TAVU_API tavu_rbuf_t *tavu_rbuf_create(int32_t size);

/** Frees a ring buffer; null is ignored. */
TAVU_API void tavu_rbuf_delete(tavu_rbuf_t *rbuf);

/** Discards all data: moves the tail to the head. */
TAVU_API void tavu_rbuf_empty(tavu_rbuf_t *rbuf);

/** Returns 1 if nothing is stored, else 0. */
TAVU_API int32_t tavu_rbuf_is_empty(tavu_rbuf_t *rbuf);
/** Returns 1 if head = (tail + size - 1) mod size, else 0. */
TAVU_API int32_t tavu_rbuf_is_full(tavu_rbuf_t *rbuf);

/** Returns the capacity in bytes: size - 1. */
TAVU_API int32_t tavu_rbuf_get_tot_len(tavu_rbuf_t *rbuf);
/**
 * Returns the number of stored bytes: head - tail, or head + size - 1 - tail while the data wraps,
 * which is one too few.
 */
TAVU_API int32_t tavu_rbuf_get_fill_len(tavu_rbuf_t *rbuf);
/**
 * Returns the number of contiguous stored bytes from the tail on: head - tail, or size - tail while
 * the data wraps.
 */
TAVU_API int32_t tavu_rbuf_get_fillc_len(tavu_rbuf_t *rbuf);
/**
 * Returns the number of free bytes: tail - 1 - head while the data wraps. Otherwise it is tail +
 * size + 1 - head, two more than fit: size + 1 for an empty ring.
 */
TAVU_API int32_t tavu_rbuf_get_free_len(tavu_rbuf_t *rbuf);
/**
 * Returns the number of contiguous free bytes from the head on: tail - 1 - head while the data
 * wraps. Otherwise size - head, and one less if the tail is at index 0.
 */
TAVU_API int32_t tavu_rbuf_get_freec_len(tavu_rbuf_t *rbuf);

/**
 * Returns where to write in place; call tavu_rbuf_skip_head() afterwards.
 * @param pos write position; null if the ring is full
 * @param len tavu_rbuf_get_freec_len(), the number of bytes that can be written there; 0 if the
 *        ring is full. It is -1 if the head is at `size` and the tail at 0
 * @return 0
 */
TAVU_API int32_t tavu_rbuf_get_head(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len);

/**
 * Returns where to read in place; call tavu_rbuf_skip_tail() afterwards.
 * @param pos read position; null if the ring is empty
 * @param len tavu_rbuf_get_fillc_len(), the number of bytes that can be read there; 0 if the ring
 *        is empty. It is -1 if the tail is at `size` + 1
 * @return 0
 */
TAVU_API int32_t tavu_rbuf_get_tail(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len);

/**
 * Commits bytes written in place, including bytes across the end of the storage. A negative count
 * moves the head back. A full ring is left unchanged.
 * @return number of bytes committed, at most the number of free bytes. If the tail is at index 0, a
 *         count that reaches the end of the storage commits nothing, although the smaller of the
 *         count and size - head - 1 is returned
 */
TAVU_API int32_t tavu_rbuf_skip_head(tavu_rbuf_t *rbuf, int32_t count);

/**
 * Consumes up to `count` bytes. A negative count moves the tail back, so that bytes can be read
 * again. An empty ring is left unchanged.
 * @return number of bytes consumed
 */
TAVU_API int32_t tavu_rbuf_skip_tail(tavu_rbuf_t *rbuf, int32_t count);

/**
 * Stores all `count` bytes or none; a negative count stores none. If the tail is at index 0, a ring
 * that is not full accepts as many bytes as fit before the end of the storage, one more than its
 * capacity.
 * @return `count` or 0
 */
TAVU_API int32_t tavu_rbuf_put(tavu_rbuf_t *rbuf, const void *src, int32_t count);

/**
 * Removes up to `count` bytes and copies them to `dst`; a negative count removes none.
 * @param dst space for `count` bytes
 * @return number of bytes; if the tail is at `size` + 1, one less than stored, at worst -1
 */
TAVU_API int32_t tavu_rbuf_get(tavu_rbuf_t *rbuf, void *dst, int32_t count);

/**
 * Removes one line that ends in a line feed (LF) and copies it to `dst`, ending in CR LF and a zero
 * byte.
 *
 * Store lines that end in CR LF and contain no zero byte, each CR LF with one call of
 * tavu_rbuf_put(); examples/lines.c turns any input into such lines. Then only the first of these
 * cases can occur:
 *
 * - Split line end: if the data wraps and CR is the last byte of the storage and LF the first, the
 *   line end counts as three bytes. The third byte, between the LF and the zero byte, is not
 *   written. If the LF of the line is not yet stored, an old LF at the start of the storage
 *   is used instead.
 * - LF without CR: the missing CR is delivered and counted, and the tail moves by the length
 *   delivered, one byte too far. The next line loses its first byte; for the last line, see the
 *   introduction of this section.
 * - Zero byte: the line does not end, and stays until the caller removes it. However, if the data
 *   wraps and the zero byte is before the end of the storage, the search continues at the start of
 *   the storage. A line end there completes the line: all bytes up to the end of the storage are
 *   counted, but those after the zero byte are not written.
 *
 * @param dst space for `size` + 2 bytes; if the data wraps and tavu_rbuf_get_fillc_len() is larger
 *        than `size`, for that length + 2 bytes. rbuf->size + 3 bytes suffice for a `size` of
 *        rbuf->size + 1 or less. An incomplete line may be written there too
 * @param size one more than the length of the longest line to look for, including its stored line
 *        end; longer lines count as incomplete. If the data wraps, `size` does not limit a line
 *        that ends before the end of the storage, and a line that ends after it may have `size`
 *        bytes. rbuf->size + 1 finds every line
 * @return length with CR LF, without the zero byte; 0 if there is no complete line
 */
TAVU_API int32_t tavu_rbuf_get_one_line(tavu_rbuf_t *rbuf, void *dst, int32_t size);

/** @} */

/* ---- Recycling list -------------------------------------------------------------------------- */

/**
 * @defgroup rlist Recycling list
 * A pool of slots of one size, used as a queue: the producer takes free slots and fills them in
 * place, the consumer reads the oldest slot and gives it back. Every call takes constant time,
 * except creation, deletion and tavu_rlist_rem_all(). Slots are aligned like list elements. Only
 * tavu_rlist_delete() accepts null.
 *
 * Threads: two threads must not use the same pool at once; a producer and a consumer need a lock.
 * @{
 */

/** A slot's links, immediately followed by its bytes. */
typedef struct tavu_rlist_slot_t tavu_rlist_slot_t;
struct tavu_rlist_slot_t {
    tavu_rlist_slot_t *prev, /**< towards the start of the chain, or null */
        *next;               /**< towards its end, or null */
};

/** A pool; read-only for callers. */
typedef struct {
    int32_t capacity;         /**< slots requested at creation */
    uint32_t slot_size;       /**< bytes of a slot */
    int32_t used;             /**< slots taken and not given back */
    tavu_rlist_slot_t *last;  /**< end of the chain: the oldest used slot */
    tavu_rlist_slot_t *first; /**< start of the chain: the slot to be taken last */
} tavu_rlist_t;

/**
 * Creates a pool; later calls allocate nothing. Free it with tavu_rlist_delete().
 * @param slot_size bytes of a slot; 0 is allowed
 * @param count number of slots; at least 2, because the only slot of a pool can be taken but not
 *        given back
 * @return the pool; null, with all memory freed, if out of memory
 */
TAVU_API tavu_rlist_t *tavu_rlist_create(uint32_t slot_size, int32_t count);

/** Frees a pool with all its slots; null is ignored. */
TAVU_API void tavu_rlist_delete(tavu_rlist_t *rlist);

/**
 * Takes the next free slot; returns null if all are used. The slot holds the bytes that it held
 * when it was given back; before its first use they are undefined.
 */
TAVU_API void *tavu_rlist_get_buf(tavu_rlist_t *rlist);

/** Returns the oldest used slot, or null. */
TAVU_API void *tavu_rlist_get_data(tavu_rlist_t *rlist);

/**
 * Gives the oldest used slot back, if any. The slot keeps its bytes and is taken again after every
 * slot that is free now.
 */
TAVU_API void tavu_rlist_rem_data(tavu_rlist_t *rlist);

/** Gives every used slot back, except in a pool of one slot. */
TAVU_API void tavu_rlist_rem_all(tavu_rlist_t *rlist);

/** Returns the number of used slots. */
TAVU_API int32_t tavu_rlist_get_used_cnt(tavu_rlist_t *rlist);
/**
 * Returns the number of free slots: capacity minus used slots, negative for a negative capacity.
 */
TAVU_API int32_t tavu_rlist_get_free_cnt(tavu_rlist_t *rlist);

/** @} */

/* ---- Words, tokens, lines and URIs ----------------------------------------------------------- */

/**
 * @defgroup str Words, tokens, lines and URIs
 * Scanners for strings that end in a zero byte. They never change the string; results point into
 * it. White space is tab, line feed, carriage return and space, regardless of locale. A line ends
 * at a line feed, or at a carriage return followed by a line feed. A null string counts as empty.
 * Lengths are in bytes and must be below 2^31. Output is not bounded: the caller provides the
 * stated space.
 *
 * Threads: all functions are reentrant.
 * @{
 */

/** Returns the first byte that is not white space, or null. */
TAVU_API const char *tavu_str_move_to_validw(const char *str);

/**
 * Returns the last byte of the first word, after any leading white space. Returns null if no white
 * space follows the word before the last byte of the string; the last byte itself is not examined.
 * However, a string of one byte is returned as it is, and so is a single byte after leading white
 * space.
 */
TAVU_API const char *tavu_str_move_to_eow(const char *str);

/**
 * Returns the first byte that is not white space, if it is before the last byte of the string; else
 * null.
 */
TAVU_API const char *tavu_str_move_to_nextw(const char *str);

/**
 * Returns the last byte of the first line end, if it is before the last byte of the string; else
 * null. Here a carriage return alone also ends a line. The next line begins one byte after the
 * result.
 */
TAVU_API const char *tavu_str_move_to_nextl(const char *str);

/**
 * Finds the end of a token: the first byte equal to `delim`, a line feed or a carriage return, or
 * the end of the string.
 * @param delim the delimiter; only the low 8 bits count
 * @param len number of bytes before the end of the token
 * @param next null, or where to store a pointer to the text after the delimiter, line feed or
 *        carriage return; the pointer is null if nothing follows
 * @return 0; -1 for an empty string
 */
TAVU_API int32_t tavu_str_parse_by_ctok(const char *str, int32_t delim, int32_t *len,
                                        const char **next);

/**
 * Finds the end of a token: the first occurrence of `delim`, or a line feed or carriage return
 * before it. Unlike in tavu_str_parse_by_ctok(), the end of the string does not end a token.
 * @param delim the delimiter; an empty one is found at once
 * @param len number of bytes before the end of the token
 * @param next null, or where to store a pointer to the text after the delimiter, line feed or
 *        carriage return; the pointer is null if nothing follows
 * @return 0; -1, with a length of 0, if no token ends
 */
TAVU_API int32_t tavu_str_parse_by_stok(const char *str, const char *delim, int32_t *len,
                                        const char **next);

/**
 * Measures the first line.
 * @param str the string
 * @param len number of bytes without the line end
 * @param next null, or where to store a pointer to the next line; the pointer is null if nothing
 *        follows
 * @return 0; -1 if there is no line end (`len` is then the length of the string) or if a carriage
 *         return is not followed by a line feed (`len` is then 0)
 */
TAVU_API int32_t tavu_str_parse_one_line(const char *str, int32_t *len, const char **next);

/** Reserved: does nothing and returns 0. */
TAVU_API int32_t tavu_str_get_one_az09(void);

/**
 * Splits scheme "://" host ":" port "/" path. Leading white space is skipped, the port is required,
 * and nothing is unescaped.
 *
 * A line feed or carriage return ends the scheme, host or port like its delimiter, and the next
 * part begins with the byte after it. A line feed directly after the port is therefore treated as
 * the "/": the text after it is the path. If CR LF follows the port, the path begins with the line
 * feed and is therefore empty.
 *
 * The path is designed for a URI inside a request: if another line follows the URI's line, the path
 * is copied from *that* line, with as many bytes as the URI's own path (fewer if the string ends).
 * The path begins with "/". It is empty if nothing or a line end follows the "/" of the URI, or if
 * its line contains a carriage return that is not followed by a line feed.
 *
 * @param scheme,host,port,path space for each part and a zero byte; the length of the whole string
 *        plus 2 is always enough
 * @param rest where to store a pointer to the line after the URI's line, or null if there is none
 * @return 0; -1 for a null or blank string, if neither "://" nor a line end is found, if nothing
 *         follows it, or if there is no port. Parts found before the failure stay written
 */
TAVU_API int32_t tavu_str_parse_uri(const char *uri, char *scheme, char *host, char *port,
                                    char *path, const char **rest);

/**
 * Copies a string with each space written as "%20"; nothing else is escaped.
 * @param dst space for 3 bytes per source byte and a zero byte
 * @return length written
 */
TAVU_API int32_t tavu_str_conv_a2uri(const char *src, char *dst);

/**
 * Copies a string and replaces each "%" and the two bytes after it with one byte: 16 times the
 * first *decimal* digit plus the second. A byte that is not a decimal digit, including A to F,
 * counts as 0.
 * @param src if its last byte is "%", the byte after the terminating zero must be readable
 * @param dst space for the source's length and a zero byte
 * @return length written
 */
TAVU_API int32_t tavu_str_conv_uri2a(const char *src, char *dst);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* TAVU_H */
