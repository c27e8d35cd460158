/**
 * @file tavu.h
 * libtavu: building blocks for codecs and players.
 *
 * The library starts no threads and needs only the C library. Its only state is the buffer that
 * tavu_version() returns and, on x86-64, the processor's level, found before the first call of a
 * kernel. Failures are reported by return values; nothing is printed, and the process is never
 * aborted (only a target size of 0 raises SIGFPE, where stated).
 *
 * Unless a function or its section says otherwise:
 *
 * - Threads: any number of threads may call a function at once, as long as no two of them use the
 *   same object or write the same memory.
 * - Units: sizes and strides are in bytes, widths and heights in pixels, unless the text says
 *   samples, pixels or bits. A stride is the distance between the starts of two rows.
 * - Memory needs no alignment, and nothing outside what the arguments describe is read or written.
 * - Pointers must not be null. A function that accepts null, or reports it as an error, says so.
 * - "Unchecked" means that no argument is tested. Pixel kernels and the bit reader and writer trust
 *   their caller and state their requirements.
 * - "Null" means a null pointer. Failure codes are negative.
 */
#ifndef TAVU_H
#define TAVU_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Marks what the library exports. */
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
 * Threads: every function is reentrant except tavu_version(). The atomic counters and the wait and
 * wake pair are made for words that threads share.
 * @{
 */

/**
 * The version of the library that this header belongs to. A new major version needs changes in
 * programs, a minor one adds functions. Where a program needs version 1.2 or later:
 *
 *     #if TAVU_VERSION_MAJOR == 1 && TAVU_VERSION_MINOR < 2
 *     #error "libtavu 1.2 or later is needed"
 *     #endif
 */
#define TAVU_VERSION_MAJOR 1
#define TAVU_VERSION_MINOR 1 /**< see #TAVU_VERSION_MAJOR */
#define TAVU_VERSION_PATCH 0 /**< see #TAVU_VERSION_MAJOR */

/**
 * Status codes: 0 is success, every failure is negative. Creators store the code through a pointer,
 * which may be null; other functions return it.
 */
enum {
    TAVU_OK = 0, /**< success */
    /** Generic failure. */
    TAVU_ERR = -1,
    /** No memory for an object record, or an image payload too small for tavu_imgb_rebirth(). */
    TAVU_ERR_OUT_OF_MEMORY = -102,
    /** The operation does not exist for this object's format. */
    TAVU_ERR_UNSUPPORTED = -103,
    /** Null object, allocator without its free function, or a size that cannot be represented. */
    TAVU_ERR_INVALID_ARGUMENT = -105,
    /** The payload allocator of an image or audio buffer returned null. */
    TAVU_ERR_BUFFER_ALLOC = -203,
    /** The payload allocator of a bitstream buffer returned null. */
    TAVU_ERR_BITB_ALLOC = -204,
    /** Colour-space code unknown, or not handled by this function. */
    TAVU_ERR_UNSUPPORTED_CS = -211
};

/**
 * Allocates memory aligned to 32 bytes.
 * @param size bytes; 0 is allowed and gives a pointer that must be freed
 * @return the block, or null if memory is short or `size` plus the header exceeds 32 bits. Free it
 *         with tavu_mfree_align32() or tavu_mfree_fast_align32(), never with free().
 */
TAVU_API void *tavu_malloc_align32(uint32_t size);

/**
 * Frees a block of either aligned allocator; null is ignored. Unchecked: a pointer from anywhere
 * else, including malloc(), corrupts the heap.
 */
TAVU_API void tavu_mfree_align32(void *block);

/** The same as tavu_malloc_align32(); their blocks are interchangeable. */
TAVU_API void *tavu_malloc_fast_align32(uint32_t size);

/** The same as tavu_mfree_align32(). */
TAVU_API void tavu_mfree_fast_align32(void *block);

/**
 * The build stamp "Dec 27 2013 13:23:55" followed by a line feed, 21 bytes and a zero byte.
 * @return a static buffer that every call overwrites with the same bytes: not thread-safe
 */
TAVU_API const char *tavu_version(void);

/** Rounded-down base-2 logarithm of an unsigned value, 0..31; -1 for 0. */
TAVU_API int32_t tavu_floor_log2(uint32_t value);

/** Rounded-up base-2 logarithm of an unsigned value, 0..32; -1 for 0, 32 above 0x80000000. */
TAVU_API int32_t tavu_ceil_log2(uint32_t value);

/**
 * Adds 1 to a word atomically (relaxed: other accesses are not ordered); wraps at INT32_MAX.
 * Unchecked. Any number of threads may call this and tavu_atomic_dec() on the same word.
 * @param word aligned to 4 bytes
 * @return the value after the addition
 */
TAVU_API int32_t tavu_atomic_inc(int32_t *word);

/**
 * Subtracts 1 atomically, otherwise like tavu_atomic_inc(); wraps at INT32_MIN.
 * @return the value after the subtraction
 */
TAVU_API int32_t tavu_atomic_dec(int32_t *word);

/**
 * Waits until a word shared with another thread equals `value`; never times out. On ARM the core
 * sleeps between events; elsewhere it spins with pause instructions.
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
 * Stores `value` into a word and wakes every waiter. All earlier writes of the caller are visible
 * before the word changes. Unchecked.
 * @param word aligned to 4 bytes
 * @param value the value to store; -1 makes all waiters give up
 * @return 0
 */
TAVU_API int32_t tavu_sync_wake(int32_t *word, int32_t value);

/**
 * @name Fills and block copies
 * For pixel memory. Unchecked; sizes, widths and strides are in bytes. Each routine has its own
 * granularity and its own treatment of the remainder, which callers rely on. Sizes below the first
 * block write nothing unless stated otherwise. Source and target must not overlap.
 * @{
 */

/**
 * Fills with a 32-bit value in blocks of 128 bytes, at least one: writes `size` rounded up to a
 * multiple of 128 bytes, and 128 bytes for a size below 1. The bytes after `size` up to that
 * multiple must be writable.
 */
TAVU_API void tavu_mset_x128(void *dst, uint32_t value, int32_t size);

/**
 * Fills with a byte in whole blocks of 128, despite its name; the last `size` % 128 bytes are left
 * unchanged.
 */
TAVU_API void tavu_mset_x64(void *dst, uint8_t value, int32_t size);

/** Fills exactly `size` bytes with the low 8 bits of `value`; none for a size below 1. */
TAVU_API void tavu_mset_x64a(void *dst, int32_t value, int32_t size);

/**
 * Fills with a 32-bit value in whole blocks of 32; the last `size` % 32 bytes are left unchanged.
 * @param dst aligned to 4 bytes
 */
TAVU_API void tavu_mset_x32(void *dst, uint32_t value, int32_t size);

/**
 * Fills exactly `size` bytes: whole blocks of 32 with the 32-bit value, the rest with its low byte.
 * A size below 32 writes nothing.
 */
TAVU_API void tavu_mset_x32ax4(void *dst, uint32_t value, int32_t size);

/**
 * Zeroes 32-bit words.
 * @param dst aligned to 4 bytes
 * @param words a positive multiple of 64; for other counts only whole blocks of 64 are zeroed
 */
TAVU_API void tavu_mclr_x64(void *dst, int32_t words);

/**
 * Copies rows. If `width` equals both strides, the rows are copied as one run of `width` * `height`
 * bytes: its whole blocks of 64 and only the first byte of the remainder.
 * @param width bytes per row, at least 64; for a single run the total must be at least 64
 * @param height rows; below 1 copies nothing
 */
TAVU_API void tavu_mcpy_pic(void *dst, const void *src, int32_t dst_stride, int32_t src_stride,
                            int32_t width, int32_t height);

/**
 * Copies a block of rows.
 * @param width 2, 4, 6, 8, 12, 16 or 24 bytes; any other width, including 32 and 48, copies nothing
 * @param height rows, a multiple of 2; for widths of 16 and 24 a multiple of 4
 */
TAVU_API void tavu_mcpy_blk(void *dst, const void *src, int32_t dst_stride, int32_t src_stride,
                            int32_t width, int32_t height);

/** @} */

/** @} */

/* ---- Image buffer ---------------------------------------------------------------------------- */

/**
 * @defgroup imgb Image buffer
 * The library's picture: planes, their strides and their memory, with a reference count.
 *
 * Threads: only the count is atomic. Several threads may read a picture and add or drop references.
 * Writers, tavu_imgb_rebirth(), tavu_imgb_option() and tavu_imgb_expand() need exclusive use of it.
 * The last `release` frees the picture after all accesses that other owners made before theirs;
 * `addref` and `getref` order no other access.
 * @{
 */

/**
 * Colour-space codes. An image buffer takes 10, 11, 12, 13, 18, 43 (planar, 8 bits per sample) and
 * the packed families 100..299 (2 bytes per pixel), 300..399 (4 bytes), 400..499 (3 bytes) and
 * 500..599 (4 bytes). The codes from 600 on are for conversions only.
 *
 * Bytes of a packed pixel are named in memory order. A 5-6-5 unit is 16 bits, little-endian, with
 * the first colour in bits 15..11.
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
 * Payload allocator of a buffer object, called at creation only.
 * @param size bytes to allocate; may be 0
 * @param second where to store the payload's address in a second address space, for example that of
 *        a device. It holds 0, which means none
 * @return the payload, with any alignment, or null to make the creation fail
 */
typedef void *(*tavu_imgb_alloc_fn)(int32_t size, uint32_t *second);

/**
 * Frees a payload of the matching tavu_imgb_alloc_fn; gets both of its addresses. Called on the
 * thread that drops the last reference.
 */
typedef void (*tavu_imgb_free_fn)(void *payload, uint32_t second);

/**
 * A reference-counted picture: up to four planes in one payload. Planes that `cs` does not have
 * are zero in every array. Callers may write `x` and `y`; all other fields are read-only for them.
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
    int32_t stride[4];            /**< bytes per row, alignment and both paddings included */
    int32_t rows[4];              /**< rows, alignment and both paddings included */
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
 * Creates an image buffer with reference count 1. Free it with its `release` method; all three
 * methods return #TAVU_ERR_INVALID_ARGUMENT for null.
 *
 * The planes are stored back to back in one payload. A plane has its visible size, rounded up to
 * the alignment, and padding on all sides. The default payload is aligned to 32 bytes and not
 * initialised. A stride is (aligned width + 2 * padding) * bytes per pixel; rows are aligned to 32
 * bytes only if `align` and `pad` make the stride a multiple of 32.
 *
 * The second addresses of later planes advance from that of the payload even if it is 0: with the
 * default allocator `pbase[p]` is the plane's byte offset in the payload.
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
 *        a free function, a negative size, an alignment that is no power of two, or a picture
 *        whose rows or payload exceed INT32_MAX bytes), #TAVU_ERR_OUT_OF_MEMORY,
 *        #TAVU_ERR_UNSUPPORTED_CS or #TAVU_ERR_BUFFER_ALLOC
 * @return the buffer or null
 */
TAVU_API tavu_imgb_t *tavu_imgb_create(int32_t w, int32_t h, int32_t cs, int32_t opt,
                                       const uint32_t *align, const uint32_t *pad,
                                       tavu_imgb_alloc_fn mem_alloc, tavu_imgb_free_fn mem_free,
                                       int32_t *status);

/**
 * Changes the layout of a buffer within its payload, which is never reallocated. Needs exclusive
 * use of the buffer. `x` and `y` become 0; `size`, the callbacks and the count are kept. The
 * arguments are those of tavu_imgb_create().
 * @return #TAVU_OK; #TAVU_ERR_OUT_OF_MEMORY if the payload is too small; #TAVU_ERR_INVALID_ARGUMENT
 *         for a null buffer and for the reasons given at tavu_imgb_create();
 *         #TAVU_ERR_UNSUPPORTED_CS. On failure the buffer is unchanged.
 */
TAVU_API int32_t tavu_imgb_rebirth(tavu_imgb_t *imgb, int32_t w, int32_t h, int32_t cs, int32_t opt,
                                   const uint32_t *align, const uint32_t *pad);

/**
 * Applies clearing options to a laid-out buffer. tavu_imgb_create() and tavu_imgb_rebirth() do the
 * same if `opt` is not 0.
 *
 * #TAVU_IMGB_OPT_CLEAR_ALIGN zeroes the bytes after the visible pixels of each row, up to the
 * aligned width, then the first `aw[p]` *bytes* of each row between `h[p]` and `ah[p]`, whatever
 * the size of a pixel. #TAVU_IMGB_OPT_CLEAR_PAD zeroes the padding rows, then `pad[p] >> 16`
 * *bytes* at the start of every other row and as many from byte `(pad[p] >> 16) + aw[p]` on.
 *
 * Only the buffer is checked; the arrays are trusted.
 *
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
 * Fills the padding of a planar 8-bit picture by repeating its edges, corners included.
 *
 * The edges are those of the *aligned* picture, `aw` x `ah`: pixels that alignment adds are
 * repeated, not replaced. Planes 1 and 2 are treated as half as wide and high (rounded up) in every
 * layout; for codes 12, 13 and 18 they are larger, and the strips are written inside them. If a
 * picture of code 11 is aligned, give planes 1 and 2 half the alignment of plane 0.
 *
 * @param pad one entry per plane, as given at creation: bytes on each side << 16 | rows above and
 *        below. The left strip begins as many *bytes* left of the picture as there are *rows*
 *        above, so the padding is filled only if both numbers are equal. Entries larger than those
 *        given at creation write outside the payload
 * @return #TAVU_OK; #TAVU_ERR_UNSUPPORTED for codes other than 10, 11, 12, 13 and 18;
 *         #TAVU_ERR_INVALID_ARGUMENT for null
 */
TAVU_API int32_t tavu_imgb_expand(tavu_imgb_t *imgb, const uint32_t *pad);

/**
 * Writes `width` copies of the byte at `src` to `dst` and advances both by `stride` bytes, `rows`
 * times. Unchecked; a width or row count below 1 writes nothing.
 */
TAVU_API void tavu_imgb_expand_ver(const uint8_t *src, uint8_t *dst, int32_t rows, int32_t stride,
                                   int32_t width);

/**
 * Copies the `len` bytes at `src` to `rows` consecutive rows at `dst`, `len` bytes apart.
 * Unchecked; a length or row count below 1 writes nothing. If `len` is a multiple of 4 but not of
 * 16, the row count is rounded up to a multiple of 8: 9 rows write 16.
 */
TAVU_API void tavu_imgb_expand_hor(const uint8_t *src, uint8_t *dst, int32_t len, int32_t rows);

/** @} */

/* ---- Audio, bitstream and frame-list buffers, variable data ---------------------------------- */

/**
 * @defgroup buffers Other buffers
 * Audio, bitstream and frame-list buffers with a reference count like pictures, and a copy of
 * arbitrary bytes.
 *
 * The buffers begin with the same header as tavu_imgb_t; their methods return
 * #TAVU_ERR_INVALID_ARGUMENT for null. A null allocator selects the default pair. With an allocator
 * and a null free function the payload is never freed.
 *
 * Threads: as for pictures, only the count is atomic, and `release` orders accesses in the same
 * way. A tavu_vdata_t must not be used by two threads at once.
 * @{
 */

/** A reference-counted buffer of audio samples. Callers may write `value` and the blocks only. */
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
    int32_t interleaved;               /**< 1: one block; 0: a block per channel */
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
 * @param format 1..99: one block with interleaved channels; any other code: a block per channel
 * @param unused ignored
 * @param mem_alloc,mem_free payload callbacks; both null for the default
 * @param status null, or where to store #TAVU_OK, #TAVU_ERR_INVALID_ARGUMENT (negative counts, more
 *        than 8 blocks, or a block of more than INT32_MAX bytes), #TAVU_ERR_OUT_OF_MEMORY or
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
 * @param size payload bytes; the default allocator refuses a negative size, a custom one is called
 *        with it
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

/** Arbitrary bytes; the caller owns the record, which must be zero before its first use. */
typedef struct {
    int32_t type;  /**< for the caller's use */
    int32_t len;   /**< bytes, not counting the two zero bytes that follow them */
    uint8_t *data; /**< heap copy of the bytes */
} tavu_vdata_t;

/**
 * Stores a copy of `len` bytes followed by two zero bytes. A copy that the record already holds is
 * not freed: call tavu_vdata_free() first. `type` is stored for the caller.
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
 * Unchecked: the record must be initialised, and bit counts must be 0..32. Hostile data is safe all
 * the same: whatever the bytes are, nothing beyond the `size` bytes of the buffer is read. The
 * position of the next bit is (cur - beg) bytes minus `leftbits` bits.
 *
 * **Was a header cut short?** Bits that are missing from a field read as 0 and leave `leftbits`
 * negative, but a refill that fails leaves it 0, as a field that ends with the data does: the
 * record does not show it afterwards. tavu_bsr_read() of up to 31 bits, tavu_bsr_read1() and
 * tavu_bsr_read_ue() show it at once, by a negative result or a negative `leftbits`;
 * tavu_bsr_skip() and tavu_bsr_read_se() may not. To test a whole header at its end, note the
 * failed refills:
 * @code
 * struct reader { tavu_bsr_t bits; int ended; };
 * static int32_t refill(tavu_bsr_t *bits, int32_t bytes) {
 *     const int32_t status = tavu_bsr_flush(bits, bytes);
 *     if (status != 0) ((struct reader *)bits)->ended = 1;
 *     return status;
 * }
 * @endcode
 * The header was cut short if and only if `ended` is set or `leftbits` < 0 after its last field.
 * This holds for fixed-length fields, skips, Exp-Golomb codes of up to 31 bits and alignment; peeks
 * past the last byte and unary codes may set either in a complete header.
 *
 * **Owed bits.** While `leftbits` is negative, `code` is 0 and -`leftbits` bits of the next refill
 * count as consumed. That happens at the end of the data and, in the middle of it, when a unary
 * code ends with the cache, see tavu_bsr_read_un(). Settle these bits with tavu_bsr_skip(bs, 0)
 * before you go on. Otherwise, with k owed bits:
 * - tavu_bsr_skip() and tavu_bsr_skip_peek() drop them first.
 * - tavu_bsr_skip_align8() and tavu_bsr_read_align8() find the right boundary and owe the bits up
 *   to it too; the value that is read is 0.
 * - tavu_bsr_read() consumes them and returns them above the `size` bits asked for; 0 if `size` + k
 *   exceeds 32.
 * - tavu_bsr_read1() returns 0 and owes another bit; tavu_bsr_read_te() of range 1 returns 1.
 * - tavu_bsr_peek() loads (32 + k) / 8 bytes, 4 or more, as zeros. The position stays, but the data
 *   is lost.
 * - tavu_bsr_read_ue() is right if k is 1 and the owed bit and the next one are 0. If the next one
 *   is 1, it returns 0 and consumes the owed bit only; if the owed bit is 1, it returns -1
 *   (tavu_bsr_read_se() 0) and consumes nothing.
 * - tavu_bsr_read_un() and tavu_bsr_read_tu() are right if k is 1 and the owed bit is 1, except
 *   that the latter consumes a bit too few of more than `max` ones. If the owed bit is 0, they
 *   consume only that and return -1.
 *
 * With more owed bits the values of codes may be wrong, and `leftbits` may exceed 32.
 *
 * Threads: two threads must not use the same record at once.
 * @{
 */

/** Bit reader; the caller allocates it. */
typedef struct tavu_bsr_t tavu_bsr_t;

/**
 * Refills the cache of a reader. A custom one must replace the cache by 1 to `bytes` bytes
 * (big-endian from bit 31 down, zeros below), set `leftbits` to 8 times their number, advance
 * `cur`, and return 0. With nothing left it must set `code` and `leftbits` to 0 and return
 * non-zero.
 *
 * If it loads fewer bytes than a field needs, the missing bits read as 0 and are owed, as at the
 * end of the data.
 *
 * @param bytes 4, or the (32 - leftbits) >> 3 bytes that a peek tops the cache up with: 1 to 4, but
 *        more while bits are owed, whose bytes are then included. tavu_bsr_skip_peek() asks for up
 *        to 7 when it skips past the last byte. A peek after an Exp-Golomb code of only zeros asks
 *        for 8, and each 12 hostile bytes may raise that by 4: there is no upper bound. Load no
 *        more than 4, all that the cache holds; the position then stays right
 */
typedef int32_t (*tavu_bsr_flush_fn)(tavu_bsr_t *bs, int32_t bytes);

struct tavu_bsr_t {
    uint32_t code;           /**< cache: the next bits, left-justified, zeros below */
    int32_t leftbits;        /**< valid bits in `code`; if negative, the number of owed bits */
    const uint8_t *cur;      /**< next byte to load */
    const uint8_t *end;      /**< last byte of the buffer */
    const uint8_t *beg;      /**< first byte of the buffer */
    int32_t size;            /**< buffer size in bytes */
    tavu_bsr_flush_fn flush; /**< refill function */
};

/**
 * Starts a reader on `size` bytes, which must stay valid while it is used. Nothing is loaded yet,
 * and nothing needs to be freed.
 * @param buf first byte; may be null if `size` is 0
 * @param size bytes, 0 or more
 * @param flush refill function, or null for tavu_bsr_flush()
 */
TAVU_API void tavu_bsr_init(tavu_bsr_t *bs, const void *buf, int32_t size, tavu_bsr_flush_fn flush);

/**
 * The default refill: replaces the cache by the next `bytes` bytes of the data, or as many as are
 * left.
 * @param bytes see #tavu_bsr_flush_fn. Of more than 4, `code` holds the first 4; `leftbits` and
 *        `cur` count all
 * @return 0, or -1 with an empty cache if no byte is left
 */
TAVU_API int32_t tavu_bsr_flush(tavu_bsr_t *bs, int32_t bytes);

/**
 * Reads `size` bits, 0..32. Bits missing at the end of the data read as 0 and leave `leftbits`
 * negative; the next read that needs a refill then fails.
 * @return the bits (all 32 bits for a size of 32), or -1 if a required refill fails. A 32-bit value
 *         of all ones is -1, too
 */
TAVU_API int32_t tavu_bsr_read(tavu_bsr_t *bs, int32_t size);

/** Reads one bit; -1 if a required refill fails. While bits are owed it returns 0. */
TAVU_API int32_t tavu_bsr_read1(tavu_bsr_t *bs);

/**
 * Drops `size` bits, 0..32. If a required refill fails, the cache is left empty; no error is
 * reported. If bits are missing, `leftbits` becomes negative. A size of 0 drops the owed bits.
 */
TAVU_API void tavu_bsr_skip(tavu_bsr_t *bs, int32_t size);

/**
 * Returns the next `size` bits, 0..32, without consuming them; bits past the end are 0. May load
 * whole bytes into the cache, which does not change the position.
 */
TAVU_API uint32_t tavu_bsr_peek(tavu_bsr_t *bs, int32_t size);

/** Drops `skip` bits, then peeks at `size` bits; 0 if the refill for the skip fails. */
TAVU_API uint32_t tavu_bsr_skip_peek(tavu_bsr_t *bs, int32_t skip, int32_t size);

/** Skips the 0..7 bits up to the next byte boundary. */
TAVU_API void tavu_bsr_skip_align8(tavu_bsr_t *bs);

/**
 * Reads the bits up to the next byte boundary.
 * @param bits null, or where to store their number, 0..7
 * @return their value, 0..127; 0 when there are none
 */
TAVU_API int32_t tavu_bsr_read_align8(tavu_bsr_t *bs, int32_t *bits);

/**
 * Reads an unsigned Exp-Golomb code (ITU-T H.264, 9.1): n zeros, a 1 and n bits of value i encode
 * 2^n - 1 + i. Codes of up to 31 bits, values 0..65534, are always decoded. A longer one may give
 * any value, and owe bits in the middle of the data.
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
 * Reads a truncated Exp-Golomb code (ITU-T H.264, 9.1) of values 0..range. With a range of 1 it
 * returns the next bit inverted, 2 if none is left; with a larger one the result of
 * tavu_bsr_read_ue(); below 1 it returns 0 and reads nothing. The value is not checked against
 * `range`.
 */
TAVU_API int32_t tavu_bsr_read_te(tavu_bsr_t *bs, int32_t range);

/**
 * Reads a unary code: the number of 1 bits before a 0 bit, which is consumed too.
 *
 * A run of ones that reaches the last valid bit of the cache ends there. Its 0 is taken from the
 * position after the cache: a bit is owed, `leftbits` is -1, although data may be left and the run
 * may go on. Call tavu_bsr_skip(bs, 0) before anything else if `leftbits` is negative. A full cache
 * of 32 bits is skipped and counted as 32 ones; the cache is full after tavu_bsr_peek() or
 * tavu_bsr_skip_peek() at a byte boundary.
 */
TAVU_API int32_t tavu_bsr_read_un(tavu_bsr_t *bs);

/**
 * Reads a truncated unary code of at most `max` ones. A 0 that follows exactly `max` ones is
 * consumed, too; of more than `max` ones exactly `max` are consumed. A `max` of 0 reads nothing.
 *
 * As with tavu_bsr_read_un(), a run ends with the cache and may owe a bit. If the cache is full, 32
 * bits, the next `max` of them are dropped without a look and `max` is returned; if `max` is
 * larger, all 32 count as ones. If ones were counted in a cache that was then refilled and more
 * than `max` are found in all, `max` bits of the new cache are dropped.
 */
TAVU_API int32_t tavu_bsr_read_tu(tavu_bsr_t *bs, int32_t max);

/** Number of leading zero bits of a word; 32 for 0. */
TAVU_API int32_t tavu_bsr_clz_in_code(uint32_t code);

/** @} */

/* ---- Bitstream writer ------------------------------------------------------------------------ */

/**
 * @defgroup bsw Bitstream writer
 * Writes a byte buffer, most significant bit first, through a 32-bit cache word.
 *
 * Unchecked, except for space in the buffer. After tavu_bsw_sink() `cur` - `beg` bytes are written.
 * A stream fits if the buffer is one byte larger. A longer one is refused, at the latest by
 * tavu_bsw_sink(); by then tavu_bsw_write1() may have written 3 bytes past the end.
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
 * Spills the cache of a writer. A custom one must write the (39 - leftbits) >> 3 bytes of the cache
 * that hold bits, from bit 31 down, and advance `cur`; the writer then empties the cache. These are
 * at most 4, except in tavu_bsw_deinit() after refused bits. Only tavu_bsw_deinit() looks at the
 * result.
 */
typedef int32_t (*tavu_bsw_flush_fn)(tavu_bsw_t *bs);

struct tavu_bsw_t {
    uint32_t code;           /**< cache: bits not yet spilled, left-justified, zeros below */
    int32_t leftbits;        /**< free bits in `code`: 32 if empty, 0 if full; if negative, the
                                  number of single bits that a full buffer dropped */
    uint8_t *cur;            /**< next byte to write */
    uint8_t *end;            /**< last byte of the buffer */
    uint8_t *beg;            /**< first byte of the buffer */
    int32_t size;            /**< buffer size in bytes */
    tavu_bsw_flush_fn flush; /**< spill function */
};

/**
 * Starts a writer on a buffer of `size` bytes, which must stay valid while it is used. Nothing
 * needs to be freed.
 * @param buf first byte; may be null if `size` is 0
 * @param size bytes, 0 or more
 * @param flush spill function, or null for the default
 */
TAVU_API void tavu_bsw_init(tavu_bsw_t *bs, void *buf, int32_t size, tavu_bsw_flush_fn flush);

/**
 * Writes the low bit of `bit`. A full cache is spilled if one byte of the buffer is left: that
 * writes up to 3 bytes past the end, which must be writable.
 * @return 0; -1 if the buffer is full. The bit is then in the cache, but later calls drop their
 *         bits and return 0
 */
TAVU_API int32_t tavu_bsw_write1(tavu_bsw_t *bs, int32_t bit);

/**
 * Writes the low `len` bits of `value`; the other bits are ignored.
 * @param len number of bits, 0..32
 * @return 0; -1 if the cache is full and the buffer has less than 5 bytes left, one more than
 *         needed. The cache then holds the bits that fitted, but does not count them
 */
TAVU_API int32_t tavu_bsw_write(tavu_bsw_t *bs, uint32_t value, int32_t len);

/**
 * Writes an unsigned Exp-Golomb code (ITU-T H.264, 9.1) of 0..65534; larger values give no valid
 * code. Returns the result of tavu_bsw_write().
 */
TAVU_API int32_t tavu_bsw_write_ue(tavu_bsw_t *bs, uint32_t value);

/**
 * Writes a signed Exp-Golomb code (ITU-T H.264, 9.1.1) of -32767..32767. Returns the result of
 * tavu_bsw_write().
 */
TAVU_API int32_t tavu_bsw_write_se(tavu_bsw_t *bs, int32_t value);

/**
 * Writes a truncated Exp-Golomb code of values 0..range: with a range of 1 the inverted bit, by
 * tavu_bsw_write1(); with a larger one an unsigned code, by tavu_bsw_write_ue(); below 1 it writes
 * nothing. Returns the result of that function, or 0.
 */
TAVU_API int32_t tavu_bsw_write_te(tavu_bsw_t *bs, int32_t value, int32_t range);

/**
 * Spills the cache, with the last byte padded with 0 bits.
 * @return 0; -1, with nothing changed, unless the buffer has one byte more left than needed
 */
TAVU_API int32_t tavu_bsw_sink(tavu_bsw_t *bs);

/**
 * Calls the spill function without checking for space or emptying the cache; returns its result.
 * The default one writes (39 - leftbits) >> 3 bytes, up to 4, which may reach 7 bytes past the end
 * even if no call was refused. After tavu_bsw_write1() was refused it writes 4, and one more for
 * every 8 bits dropped since, without bound: 100,000 of them write 12,504 bytes past the end. Use
 * tavu_bsw_sink(), which refuses instead, and do not call this after a -1.
 */
TAVU_API int32_t tavu_bsw_deinit(tavu_bsw_t *bs);

/** Bits of the unsigned Exp-Golomb code of 0..65534: 1..31. */
TAVU_API int32_t tavu_bsw_size_ue(uint32_t value);

/** Bits of the signed Exp-Golomb code of -32767..32767: 1..31. */
TAVU_API int32_t tavu_bsw_size_se(int32_t value);

/** @} */

/* ---- Media types, key frames, digests -------------------------------------------------------- */

/**
 * @defgroup media Media types, key frames, digests
 * Which codec a FourCC names, whether decoding can start at an access unit, and MD5 digests of
 * bytes and pictures.
 *
 * Threads: two threads must not use the same MD5 context at once; everything else is reentrant.
 * @{
 */

/**
 * Media-type codes: video 100..299, audio 300..499, DRM 1100..1299, subtitle 3000..3199. The last
 * code of each family means "not in this family". Callers store and exchange the values. Each code
 * is listed with the FourCCs and numeric wave-format tags that map to it.
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
    TAVU_MT_VID_UNKNOWN = 299, /**< no video code */

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
    TAVU_MT_AUD_UNKNOWN = 499, /**< no audio code */

    TAVU_MT_DRM_DIVX = 1100,    /**< DIVX, divx */
    TAVU_MT_DRM_UNKNOWN = 1299, /**< no DRM code */

    TAVU_MT_SUB_SRT = 3000,    /**< SubRip: SSRT */
    TAVU_MT_SUB_TX3G = 3006,   /**< 3GPP timed text: TX3G, tx3g, SBTL, sbtl */
    TAVU_MT_SUB_ASS = 3007,    /**< Advanced SubStation Alpha: SASS */
    TAVU_MT_SUB_SSA = 3008,    /**< SubStation Alpha: SSSA */
    TAVU_MT_SUB_UNKNOWN = 3199 /**< no subtitle code */
};

/**
 * Maps a FourCC or a numeric wave-format tag to a media-type code; searches audio, video, subtitle
 * and DRM in this order. The first character of a FourCC is in its lowest byte. Matching is exact
 * and case-sensitive.
 * @return the code, or #TAVU_MT_NONE
 */
TAVU_API int32_t tavu_fcc2mt(uint32_t fcc);

/** The audio code of a FourCC or wave-format tag, or #TAVU_MT_AUD_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_aud(uint32_t fcc);

/** The video code of a FourCC, or #TAVU_MT_VID_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_vid(uint32_t fcc);

/** The subtitle code of a FourCC, or #TAVU_MT_SUB_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_sub(uint32_t fcc);

/** The DRM code of a FourCC, or #TAVU_MT_DRM_UNKNOWN; for tavu_fcc2mt() "DIVX" is video. */
TAVU_API int32_t tavu_fcc2mt_drm(uint32_t fcc);

/**
 * Determines whether a coded video access unit is a key frame, from its start codes and first
 * header bits alone (ISO/IEC 14496-2; ITU-T H.263, 5.1; H.264 and H.265, table 7-1).
 *
 * The unit is a key frame if: MPEG-4 Visual: the first VOP (or short-header picture) is intra.
 * H.263: the first picture is intra. H.264: an IDR slice comes before any other slice. HEVC: the
 * first NAL unit is an IDR slice; a unit that begins with a parameter set gives 0. WMV1, WMV2,
 * DIV3: the picture type is intra. HuffYUV: always. Any other codec: never. H.264 and HEVC units
 * need start codes, not length fields. A start code is recognised if at least 5 bytes (MPEG-4
 * Visual), 7 (H.263) or 4 (H.264, HEVC) are left, including itself.
 *
 * @param codec video media-type code
 * @param data  the unit. For WMV1, WMV2 and DIV3 the first byte is read whatever `size` is; of an
 *        H.263 unit with extended picture type one byte past `size` may be read
 * @param size  bytes; below 1 nothing is scanned
 * @return 1 for a key frame, 0 otherwise
 */
TAVU_API int32_t tavu_is_vkeyfrm(int32_t codec, const void *data, int32_t size);

/** MD5 context (RFC 1321); the caller allocates it. */
typedef struct tavu_md5_t {
    uint32_t state[4]; /**< chaining state A, B, C, D */
    uint8_t msg[64];   /**< partial input block */
    uint32_t bits[2];  /**< message length in bits, low word first */
} tavu_md5_t;

/** Starts a digest. A finished context can be used again after this. */
TAVU_API void tavu_md5_init(tavu_md5_t *md5);

/** Adds `size` bytes, up to 2^61 - 1 in total; null is allowed if `size` is 0. */
TAVU_API void tavu_md5_update(tavu_md5_t *md5, const void *data, uint32_t size);

/** Writes the 16 bytes of the digest in the order of RFC 1321 and zeroes the context. */
TAVU_API void tavu_md5_finish(tavu_md5_t *md5, uint8_t digest[16]);

/**
 * Digest of the visible picture of a planar image buffer, whatever its strides and padding.
 *
 * Luma rows `y` to `h` - 1 contribute their first `w - x` bytes. Unless `cs` is 10, rows `y >> 1`
 * to `(h + 1) / 2 - 1` of planes 1 and 2 follow with `(w + 1 - x) / 2` bytes each. Chroma is always
 * treated as halved both ways, so other layouts are covered in part, and alpha is left out.
 * Pictures of equal codes, sizes and samples have equal digests.
 *
 * @param imgb the picture; if `x` or `y` is negative, its padding must hold the longer rows on the
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
 * have any alignment, except those of tavu_sad_eskip().
 *
 * Readable slack: tavu_sad4x4(), tavu_sad4x8(), tavu_diff4x4() and tavu_ssd() with 4 columns may
 * read 8 bytes of every row of both blocks, so the 4 bytes after each row must be readable. They
 * never change the result.
 *
 * Results are never negative, with these exceptions:
 *
 * - tavu_satd8x8() returns -8192..32640: large residuals may wrap its 16-bit sums.
 * - tavu_satd2() adds up these values, and may be negative for any area.
 * - tavu_ssd() returns the sum modulo 2^32 as a signed number: above 33,025 samples, which is 8
 *   times 64x64, it may be negative.
 * - tavu_satd(), tavu_satd1() and tavu_satd2() add up in 32 bits that wrap: above 4,210,752
 *   samples, which is more than 2048x2048, the sum may be wrong or negative.
 * - tavu_sad_eskip() must not be given more than 8,421,504 samples: its sum would overflow.
 *
 * Every function may be called from any number of threads at once.
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
 * A metric of two blocks of `width` columns and `height` rows, otherwise as #tavu_metric_block_t.
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
 * Sum of absolute differences of 8 columns if `width` is 8, and of 16 columns for every other
 * width. The height is a positive multiple of 4 for 8 columns and of 8 for 16 columns, at most 256.
 */
TAVU_API tavu_metric_area_t tavu_sad;

/**
 * Sum of absolute differences that stops after the first row at which it exceeds `threshold`.
 * At least one row is summed, whatever the threshold. A sum equal to the threshold does not stop.
 * @param width columns, a positive multiple of 4
 * @param height rows, at least 1; width * height is at most 8,421,504
 * @param a first block; the address and the stride are multiples of 4
 * @param b second block, of any alignment; every aligned 4-byte word that a row touches must be
 *   readable as a whole
 * @param stride_a,stride_b bytes from one row to the next; may be negative
 * @param threshold largest sum after which the next row is added
 * @return the sum of all rows, or of the rows up to the first that makes it exceed the threshold
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
 * Residual of blocks of any size, otherwise as #tavu_diff_block_t. A width or height below 1 writes
 * nothing. Nothing outside the blocks is read.
 */
TAVU_API void tavu_diff(int32_t width, int32_t height, const uint8_t *a, const uint8_t *b,
                        int32_t stride_a, int32_t stride_b, int32_t stride_diff, int16_t *diff);

/**
 * Sum of squared differences of 4, 8, 16 or 32 columns; every other width is taken as 64. The
 * height is a positive multiple of 4 for 4, 8 and 16 columns and of 2 for 32 columns; 64 columns
 * take any positive height. 4 columns need the slack.
 *
 * The sum wraps in 32 bits. It fits an int32_t up to 33,025 samples: 516 rows of 64 columns, 1032
 * of 32, 2064 of 16, 4128 of 8, 8256 of 4. Above, 64x520 samples that differ by 255 give
 * -2130935296. Converted to uint32_t, the result is exact up to 66,051 samples.
 */
TAVU_API tavu_metric_area_t tavu_ssd;

/**
 * Half the sum of the magnitudes of the two-dimensional 4x4 Hadamard transform, rounded down. The
 * transform is not normalised: its basis functions are products of +1 and -1.
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
 * taken as signed. The result is exact if no such sum exceeds 32767, which holds for all residuals
 * of -204..204. At most one of the eight sums exceeds it; the result is then 16384 less than the
 * exact one. For example, one row of residuals of -255 above seven rows of 255 gives -6184.
 */
TAVU_API tavu_metric_block_t tavu_satd8x8;

/**
 * Sum of tavu_satd4x4() over all 4x4 tiles. Width and height are positive multiples of 4. The sum
 * fits an int32_t up to 4,210,752 samples and wraps above.
 */
TAVU_API tavu_metric_area_t tavu_satd;

/**
 * Sum of tavu_satd4x4() over the 4x4 tiles that cover the block. The last tiles may extend up to 3
 * samples past its right and lower edges; these samples must be readable, and count. The result is
 * 0 for a width or height below 1. The sum fits an int32_t up to 4,210,752 samples of whole tiles
 * and wraps above.
 */
TAVU_API tavu_metric_area_t tavu_satd1;

/**
 * Sum of tavu_satd8x8() over the 8x8 tiles that cover the block. The last tiles may extend up to 7
 * samples past its right and lower edges; these samples must be readable, and count. The result is
 * 0 for a width or height below 1. It may be negative, as low as -8192 a tile; an 8x8 block can
 * give -8192..32640. The sum fits an int32_t up to 4,210,752 samples of whole tiles and wraps
 * above.
 */
TAVU_API tavu_metric_area_t tavu_satd2;

/** @} */

/* ---- Image resizing -------------------------------------------------------------------------- */

/**
 * @defgroup irsz Image resizing
 * Bilinear resizing of packed images, whole or in bands of rows.
 *
 * Positions have 18 fraction bits, of which the upper three select one of 8 x 8 groups of four
 * weights that sum to 64. The weighted sum is shifted right by 6 and truncated. Shrinking by 3 or
 * more uses only every 2nd, 4th, 8th or 16th source pixel. Target pixel i is at source position
 * i (source - 1) / target, so a resize to the same size is not a copy.
 *
 * With q = source / target, rounded down, an axis has
 *
 * - the decimation shift: 0 for q up to 2, 1 up to 4, 2 up to 8, 3 up to 16, else 4
 * - the step: (((source - 1) >> shift) << 18) / target, in units of 1 << shift source pixels
 *
 * The right-hand and lower neighbours of a sample are 1 << shift pixels away, inside the source. A
 * source of one pixel has step 0 and no neighbour: with step 0 the neighbours on that axis are read
 * only if one of them has a weight other than 0, and the standard weights give them none.
 *
 * Largest source: (size - 1) >> shift must be below 8192. The limit is 8192 pixels, 16384 if the
 * target is smaller by a factor of 3 or more, and so on up to 131072; see docs/limits.md.
 *
 * Threads: an object belongs to one thread at a time. Kernels and drivers of different objects may
 * run concurrently as long as no thread writes tavu_irsz_tbl_rsz_weight.
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

/** A driver: one call of tavu_irsz() for one pixel format. */
typedef int32_t (*tavu_irsz_fn)(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);

/**
 * A resizer; read-only for callers. Line sizes and offsets are in bytes, for 5-6-5 to 5-6-5 in
 * pixels.
 */
struct tavu_irsz_t {
    int32_t fmt;           /**< pixel format */
    int32_t mode;          /**< mode */
    int32_t step_x;        /**< column step per target pixel, 18 fraction bits, in units of
                                1 << shift_x source pixels */
    int32_t step_y;        /**< row step per target row, in units of 1 << shift_y rows */
    int32_t pos_y;         /**< band mode: position of the next target row */
    int32_t next_x;        /**< pixels to the right-hand neighbour: 1 << shift_x */
    int32_t line_size;     /**< source stride */
    int32_t dst_w,         /**< target width in pixels */
        dst_h;             /**< target height in pixels */
    int32_t dst_line;      /**< target stride */
    int32_t shift_x,       /**< decimation shift of columns, 0..4 */
        shift_y;           /**< decimation shift of rows, 0..4 */
    int32_t next_row;      /**< distance to the lower neighbour row */
    int32_t carry_next;    /**< band mode: offset of the carried row's lower neighbour in the
                                next band */
    int32_t pending;       /**< band mode: 1 while target row out_row - 1 is not written yet and
                                waits for its lower source row */
    int32_t band_size;     /**< band_h * line_size */
    int32_t out_row;       /**< band mode: next target row */
    int32_t upscale;       /**< 1 if either axis grows */
    int32_t reuse;         /**< band mode: 1 while the next upper row is the carried one */
    tavu_irsz_fn rsz_func; /**< driver of the pixel format */
    uint8_t *carry_buf;    /**< band mode: the carried source row */
    uint8_t *dst;          /**< target pixels */
};

/**
 * Creates a resizer for one combination of sizes, pixel format and mode.
 *
 * Delete it with tavu_irsz_delete(). There is no reset: in band mode each image needs a new
 * resizer. Creation succeeds even if there is no memory for the carried row of band mode; callers
 * that must survive this check `carry_buf` for null.
 *
 * @param param must not be null. Strides are not compared with widths, and `dst` is not checked
 * @param err null, or where to store 0, #TAVU_IRSZ_ERR_ALLOC, #TAVU_IRSZ_ERR_MODE (checked before
 *        the format), #TAVU_IRSZ_ERR_FORMAT, or #TAVU_ERR: a size below 1, a source too large (see
 *        above), 16 source lines or one target line that do not fit in 32 signed bits (counted in
 *        bytes, for 5-6-5 to 5-6-5 in pixels), or in band mode a band height that is not a power of
 *        two, a stride below 1, or band_h + 16 source lines of more than INT32_MAX
 * @return the resizer or null
 */
TAVU_API tavu_irsz_t *tavu_irsz_create(const tavu_irsz_param *param, int32_t *err);

/**
 * Resizes by calling the driver of the pixel format. Unchecked. Source and target must not overlap.
 *
 * Mode FULL: `src` is the source image; `first_row` and `rows` are ignored.
 *
 * Mode LINE: `src` is a band of source rows that starts with row `first_row`. `rows` is always
 * band_h, even if the image ends inside the last band, and `first_row` is a multiple of it. Pass
 * bands in order until `out_row` reaches `dst_h` and `pending` is 0. A target row whose lower
 * source row is in the next band is pending; it is written by the next call.
 *
 * @code
 * for (int32_t row = 0; row < src_h; row += band_h) {
 *     if (rsz->out_row == rsz->dst_h && !rsz->pending) break;
 *     tavu_irsz(rsz, band_at(row), row, band_h); // band_at(): band_h source rows from `row` on
 * }
 * @endcode
 *
 * Every row of a band needs `line_size` readable bytes, the last row too: that many bytes of a row
 * are copied to `carry_buf` if its lower neighbour is in the next band, including the bytes between
 * the width and the stride.
 *
 * The target is the same as in mode FULL if band_h >= 2 * n, where n is src_h / dst_h rounded up;
 * the rows of the last band below the image are not read then. Two formats still differ: of a
 * carried row of #TAVU_IRSZ_5B6B5B only the first `line_size` bytes, half a stride, are kept and
 * the rest reads as 0, and #TAVU_IRSZ_8B8B8B_5B6B5B packs as its line kernel does.
 *
 * Shorter bands may leave out target rows, use wrong source rows, and read all rows of the last
 * band. If band_h is less than 1 << shift_y, no row is ever written, `pending` stays 1, and only
 * the number of source rows ends the loop. With bands of one row the last target row may be pending
 * when the source ends.
 * @return 0
 */
TAVU_API int32_t tavu_irsz(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);

/** Frees a resizer, never its target; null is ignored. */
TAVU_API void tavu_irsz_delete(tavu_irsz_t *rsz);

/** Driver of #TAVU_IRSZ_8B; arguments and result as tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B; arguments and result as tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b8b8b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                 int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B_5B6B5B; arguments and result as tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b8b8b_5b6b5b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                        int32_t rows);
/** Driver of #TAVU_IRSZ_5B6B5B; arguments and result as tavu_irsz(). */
TAVU_API int32_t tavu_irsz5b6b5b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                 int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B8B; arguments and result as tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b8b8b8b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                   int32_t rows);

/**
 * Computes the packed steps, (step << 3) | shift, that the whole-image kernels take. Unchecked. A
 * target size of 0 raises SIGFPE. A packed step has 29 bits, sign included: a source of more than
 * 16384 pixels per target pixel loses the upper bits, and a whole-image kernel then reads outside
 * the source. tavu_irsz() and the combined conversions do not pack and do not have this limit.
 * @param src_w,src_h source size in pixels
 * @param dst_w,dst_h target size in pixels
 * @param step_x,step_y where to store the packed steps
 * @return a value without meaning, not a status
 */
TAVU_API int32_t bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h,
                                        int32_t *step_x, int32_t *step_y);

/**
 * Bilinear weights: four bytes at 32 * a + 4 * b for the horizontal fraction a and the vertical
 * fraction b in eighths: upper-left (8 - a)(8 - b), upper-right a(8 - b), lower-left (8 - a)b,
 * lower-right ab. The resizer reads this table, which is writable: groups may hold other weights
 * with a sum of at most 64. The same formula then applies, at a lower speed.
 */
TAVU_API extern uint8_t tavu_irsz_tbl_rsz_weight[256];

/** A read-only copy of the weights for callers' own kernels. */
TAVU_API extern const uint8_t tavu_tbl_bilinear_rszw[256];

/**
 * Line kernel: computes one target row from two source rows. Unchecked. Reads no byte beyond the
 * right-hand neighbour of the last pixel. A `dst_w` below 1 writes nothing.
 * @param rows   upper and lower source row
 * @param wrow   tavu_irsz_tbl_rsz_weight + 4 * b, or a table of the caller: eight groups of four
 *        weights for the eight horizontal fractions, 32 bytes apart. All groups may be read,
 *        whichever the row uses, so 228 bytes must be readable; 4 bytes, the first group, if
 *        `step_x` is 0 or `dst_w` is 1
 * @param dst_w  target pixels
 * @param shift_x,next_x decimation shift, and pixels to the right-hand neighbour
 * @param step_x step with 18 fraction bits
 * @param out    target row
 */
typedef void tavu_irsz_line_t(const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w,
                              int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out);

/**
 * Whole-image kernel. Unchecked. A `dst_w` or `dst_h` below 1 writes nothing. Reads no byte beyond
 * the lower right-hand neighbour of the last pixel.
 * @param src,src_line source and its stride in bytes (5-6-5 to 5-6-5: pixels)
 * @param dst_w,dst_h  target size in pixels
 * @param dst_line,dst target stride in bytes (5-6-5 to 5-6-5: pixels) and target
 * @param packed_x,packed_y steps of bilinear_rsz_step_size()
 */
typedef void tavu_irsz_full_t(const uint8_t *src, int32_t src_line, int32_t dst_w, int32_t dst_h,
                              int32_t dst_line, uint8_t *dst, int32_t packed_x, int32_t packed_y);

TAVU_API tavu_irsz_line_t tavu_irsz8b_line;       /**< 1 byte a pixel */
TAVU_API tavu_irsz_full_t tavu_irsz8b_full;       /**< 1 byte a pixel */
TAVU_API tavu_irsz_line_t tavu_irsz8b8b8b_line;   /**< 3 bytes a pixel */
TAVU_API tavu_irsz_full_t tavu_irsz8b8b8b_full;   /**< 3 bytes a pixel */
TAVU_API tavu_irsz_line_t tavu_irsz8b8b8b8b_line; /**< 4 bytes a pixel */
TAVU_API tavu_irsz_full_t tavu_irsz8b8b8b8b_full; /**< 4 bytes a pixel */

/**
 * 3 bytes c0, c1, c2 to two bytes: (c0 & 0x8F) | (c1 >> 5), then (c1 & 0xE0) | (c2 >> 3). This is
 * not a 5-6-5 unit of either byte order; callers rely on it.
 */
TAVU_API tavu_irsz_line_t tavu_irsz8b8b8b_5b6b5b_line;
/**
 * 3 bytes c0, c1, c2 to two bytes: (c1 & 0xE0) | (c2 >> 3), then (c0 & 0xF8) | (c1 >> 5): a
 * little-endian unit with the upper three bits of c1 twice and without the next three.
 */
TAVU_API tavu_irsz_full_t tavu_irsz8b8b8b_5b6b5b_full;

/** 5-6-5 units. Channels are widened with zero low bits, weighted, and cut to 5, 6 and 5 bits. */
TAVU_API tavu_irsz_line_t tavu_irsz5b6b5b_line;
/** 5-6-5 units, strides in pixels. */
TAVU_API tavu_irsz_full_t tavu_irsz5b6b5b_full;

/** @} */

/* ---- Colour-space conversion ----------------------------------------------------------------- */

/**
 * @defgroup csc Colour-space conversion
 * From planes to packed RGB and back, at the same size or with resizing.
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
 * A conversion routine. Unchecked: planes must have the sizes given, and source and target must not
 * overlap. No alignment and no readable bytes after a row are needed. Same-size routines ignore the
 * target size; a width or height below 1 writes nothing. Strides may be negative. Array entries of
 * planes that the routine does not have are not read.
 *
 * @param src        source planes in the order of the layout's name
 * @param src_w,src_h source size in pixels
 * @param src_stride bytes per row of each source plane. Same-size routines with packed 8-bit RGB
 *        targets use the first for all planes
 * @param src_cs     source code; ignored
 * @param dst        target planes
 * @param dst_w,dst_h target size in pixels
 * @param dst_stride bytes per row of each target plane; a packed target uses the first. Rows of
 *        5-6-5 units start 2 * stride - 2 * width bytes apart: the stride is the distance only if
 *        rows have no padding
 * @param dst_cs     target code. Same-size routines with packed 8-bit targets: 401 and 501 give
 *        B, G, R order through the *third* target pointer, with the first stride. Other routines
 *        ignore it, except tavu_csc_yuv444x_to_yuv444x()
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
 * 13 to 400, 500, 200, 650, 13; 43 to 500, 430, 650, 13, 43. Other size: 600 and 13 to 400, 500;
 * 700 and 43 to 500.
 * @param err null, or where to store #TAVU_ERR_UNSUPPORTED_CS on failure; not written on success
 * @return the routine or null
 */
TAVU_API tavu_fn_csc_t tavu_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs,
                                            int32_t dst_w, int32_t dst_h, int32_t dst_cs,
                                            int32_t *err);

/**
 * Routines to RGB at 5 * row + column + 20 if resizing; rows: 600, 700, 13, 43; columns: 400, 500,
 * 200, 430, 650. Empty slots are null.
 */
TAVU_API extern const tavu_fn_csc_t tavu_tbl_fn_csc_to_rgb[40];

/**
 * Routines to planar YUV at 2 * (row + 4 if resizing) + column; rows as above; columns: 13, 43.
 * tavu_imgp_get_fn_csc() does not use the first two rows.
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
 * Y, U, V, A planes to 5-6-5 units through the first target pointer, 2 bytes a pixel, and alpha
 * bytes through the second, 3 bytes a pixel with the second stride. If the two overlap, a pixel's
 * alpha is written after its unit.
 */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444a8_to_rgba5658;
/** R, G, B planes to 5-6-5 units, truncating. */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8_to_rgb565;
/** Three planes to 5-6-5 units, truncating, and an alpha plane of 255. */
TAVU_API tavu_csc_routine_t tavu_csc_x8y8z8_to_xyz565a8;
/** Three planes and alpha to 5-6-5 units, truncating, and an alpha plane. */
TAVU_API tavu_csc_routine_t tavu_csc_x8y8z8a8_to_xyz565a8;
/**
 * Plane 0 as grey and plane 3 as alpha to the two streams of tavu_csc_yuv444a8_to_rgba5658();
 * planes 1 and 2 are not read. Not in the tables.
 */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8a8_to_rgba5658;

/**
 * Packed pixels of 3 bytes to Y, U, V planes. Source pointers point at the first R, G and B, each
 * with its own stride; for B, G, R order swap the first and the third pointer.
 */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8_to_yuv444;
/**
 * Packed pixels of 4 bytes to Y, U, V, A planes; source pointers point at the first R, G, B and A.
 * Otherwise as tavu_csc_r8g8b8_to_yuv444().
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
 * ignored. Each source plane has its own stride. A target size of 0 raises SIGFPE, one below 0
 * writes nothing. The source limits of the resizer apply, but are not checked. Steps are not
 * packed, so the 29-bit limit of bilinear_rsz_step_size() does not apply. Weights are the standard
 * ones, whatever tavu_irsz_tbl_rsz_weight holds.
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
 * Keeps copies of elements of one size. An element is reached by position, by handle or by the
 * cursor. Positions count from 0. Pointers to elements and handles are valid until the element is
 * removed. Elements are aligned to two pointers. Only tavu_list_delete() accepts a null list.
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
 * @return the list; null when memory is short
 */
TAVU_API tavu_list_t *tavu_list_create(uint32_t elem_size, tavu_list_release_fn release);

/** Removes all elements from first to last and frees the list; null is ignored. */
TAVU_API void tavu_list_delete(tavu_list_t *list);

/**
 * Appends a copy of the `elem_size` bytes at `elem`. Adding and inserting never move the cursor.
 * @return the copy; null when memory is short
 */
TAVU_API void *tavu_list_add(tavu_list_t *list, const void *elem);

/** Prepends a copy of an element; otherwise like tavu_list_add(). */
TAVU_API void *tavu_list_add_first(tavu_list_t *list, const void *elem);

/**
 * Appends a copy if `index` equals the count, prepends one if it is negative, and inserts nothing
 * for any other index.
 * @return the copy, or null
 */
TAVU_API void *tavu_list_insert_at(tavu_list_t *list, const void *elem, int32_t index);

/**
 * Returns the element at a position; a negative position means the first. Walks from the nearer
 * end.
 * @return the element; null when the index is not below the count or the list is empty
 */
TAVU_API void *tavu_list_get_at(tavu_list_t *list, int32_t index);

/** Handle of the element at a position; null when the index is negative or not below the count. */
TAVU_API void *tavu_list_get_id(tavu_list_t *list, int32_t index);

/** The element with a handle of this list; null for null. */
TAVU_API void *tavu_list_get_atid(tavu_list_t *list, const void *id);

/** The first element, or null. */
TAVU_API void *tavu_list_get_first(tavu_list_t *list);
/** The last element, or null. */
TAVU_API void *tavu_list_get_last(tavu_list_t *list);
/** The number of elements. */
TAVU_API int32_t tavu_list_get_cnt(tavu_list_t *list);

/**
 * Removes the element at a position, if there is one. Walks from the first element. Whenever the
 * current element is removed, the next element becomes the current one; after the last there is
 * none.
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

/** The current element; null when there is none. */
TAVU_API void *tavu_list_get_cur(tavu_list_t *list);

/** Makes the first element the current one and returns it, or null. */
TAVU_API void *tavu_list_move_first(tavu_list_t *list);
/** Makes the last element the current one and returns it, or null. */
TAVU_API void *tavu_list_move_last(tavu_list_t *list);

/**
 * Moves the cursor to the next element and returns it. After the last element there is no current
 * element: this step and every further one, in either direction, return null.
 */
TAVU_API void *tavu_list_move_next(tavu_list_t *list);
/** Moves the cursor to the previous element; otherwise like tavu_list_move_next(). */
TAVU_API void *tavu_list_move_prev(tavu_list_t *list);

/** Removes the current element, if any. */
TAVU_API void tavu_list_rem_cur(tavu_list_t *list);
/** Removes the element before the current one; without a current one, the last of the list. */
TAVU_API void tavu_list_rem_prev(tavu_list_t *list);
/** Removes the element after the current one; without a current one, nothing. */
TAVU_API void tavu_list_rem_next(tavu_list_t *list);

/** @} */

/* ---- Ring buffer ----------------------------------------------------------------------------- */

/**
 * @defgroup rbuf Ring buffer
 * A byte queue in a ring that also delivers text lines.
 *
 * `head` is the index of the next byte to write, `tail` that of the next byte to read. The ring is
 * empty when they are equal. One byte of the storage stays free: the ring is full when head is one
 * before tail on the circle. While head is below tail the data *wraps*: it continues from the end
 * of the storage to its start.
 *
 * Positions advance by plain addition and can leave the storage:
 * - tavu_rbuf_put() can leave the head at `size`, as it says.
 * - tavu_rbuf_get_one_line() moves the tail one byte too far after a line that was stored without
 *   CR. The tail can pass the head, so that the ring looks nearly full of old bytes, and it can
 *   reach `size` + 1. With the head at 0 the ring then looks full and delivers no line.
 * - Negative counts of the skip functions move a position back, even below 0.
 *
 * The formulas of all functions hold in these states too; lengths, results and positions that are
 * handed out can then be negative or outside the storage. No function accesses a byte outside the
 * storage or before the start of a caller's buffer: tavu_rbuf_put() and tavu_rbuf_get() count such
 * a byte without copying it, and tavu_rbuf_get_one_line() takes it for a zero byte.
 * tavu_rbuf_empty() leaves every such state, unless the head is below 0.
 *
 * Only tavu_rbuf_delete() accepts null.
 *
 * Threads: two threads must not use the same ring buffer at once, not even one that only writes and
 * one that only reads.
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
 * @return the ring buffer; null when memory is short or `size` is below 1
 */
TAVU_API tavu_rbuf_t *tavu_rbuf_create(int32_t size);

/** Frees a ring buffer; null is ignored. */
TAVU_API void tavu_rbuf_delete(tavu_rbuf_t *rbuf);

/** Discards all data: moves the tail to the head. */
TAVU_API void tavu_rbuf_empty(tavu_rbuf_t *rbuf);

/** 1 if nothing is stored, else 0. */
TAVU_API int32_t tavu_rbuf_is_empty(tavu_rbuf_t *rbuf);
/** 1 if head = (tail + size - 1) mod size, else 0. */
TAVU_API int32_t tavu_rbuf_is_full(tavu_rbuf_t *rbuf);

/** The capacity in bytes: size - 1. */
TAVU_API int32_t tavu_rbuf_get_tot_len(tavu_rbuf_t *rbuf);
/** Stored bytes: head - tail; while the data wraps head + size - 1 - tail, which is one too few. */
TAVU_API int32_t tavu_rbuf_get_fill_len(tavu_rbuf_t *rbuf);
/** Stored bytes in one piece from the tail on: head - tail; while the data wraps size - tail. */
TAVU_API int32_t tavu_rbuf_get_fillc_len(tavu_rbuf_t *rbuf);
/**
 * Free bytes: tail - 1 - head while the data wraps. Otherwise tail + size + 1 - head, which is two
 * more than can be put: size + 1 when empty.
 */
TAVU_API int32_t tavu_rbuf_get_free_len(tavu_rbuf_t *rbuf);
/**
 * Free bytes in one piece from the head on: tail - 1 - head while the data wraps. Otherwise
 * size - head, one less with the tail at index 0.
 */
TAVU_API int32_t tavu_rbuf_get_freec_len(tavu_rbuf_t *rbuf);

/**
 * Where to write in place; follow with tavu_rbuf_skip_head().
 * @param pos write position; null when full
 * @param len tavu_rbuf_get_freec_len(), the bytes that can be written there; 0 when full. It is -1
 *        with the head at `size` and the tail at 0
 * @return 0
 */
TAVU_API int32_t tavu_rbuf_get_head(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len);

/**
 * Where to read in place; follow with tavu_rbuf_skip_tail().
 * @param pos read position; null when empty
 * @param len tavu_rbuf_get_fillc_len(), the bytes that can be read there; 0 when empty. It is -1
 *        with the tail at `size` + 1
 * @return 0
 */
TAVU_API int32_t tavu_rbuf_get_tail(tavu_rbuf_t *rbuf, uint8_t **pos, int32_t *len);

/**
 * Commits bytes written in place, also across the end of the storage. A negative count moves the
 * head back. A full ring stays as it is.
 * @return bytes committed, at most those free. With the tail at index 0, a count that reaches the
 *         end of the storage commits nothing, although the lesser of it and size - head - 1 is
 *         returned
 */
TAVU_API int32_t tavu_rbuf_skip_head(tavu_rbuf_t *rbuf, int32_t count);

/**
 * Consumes up to `count` bytes. A negative count moves the tail back, so that bytes can be read
 * again. An empty ring stays as it is.
 * @return bytes consumed
 */
TAVU_API int32_t tavu_rbuf_skip_tail(tavu_rbuf_t *rbuf, int32_t count);

/**
 * Stores all bytes or none; a negative count stores none. With its tail at index 0, a ring that is
 * not full takes as many bytes as fit before the end of the storage, one more than its capacity.
 * @return `count` or 0
 */
TAVU_API int32_t tavu_rbuf_put(tavu_rbuf_t *rbuf, const void *src, int32_t count);

/**
 * Takes out up to `count` bytes; none for a negative count.
 * @param dst space for `count` bytes
 * @return number of bytes; with the tail at `size` + 1 one less than stored, at worst -1
 */
TAVU_API int32_t tavu_rbuf_get(tavu_rbuf_t *rbuf, void *dst, int32_t count);

/**
 * Takes out one line that ends in a line feed (LF) and writes it with CR LF and a zero byte.
 *
 * Store lines that end in CR LF and hold no zero byte, each CR LF with one call of tavu_rbuf_put().
 * examples/lines.c turns any input into such lines. Then only the split line end below matters.
 *
 * - Split line end: if the data wraps and CR is the last byte of the storage and LF the first, the
 *   line end counts as three bytes. The third one, before the zero byte, is not written. An old LF
 *   at the start of the storage is taken for the line's when its own is not stored yet.
 * - LF without CR: the missing CR is delivered and counted, and the tail moves by the length
 *   delivered, one byte too far. The next line loses its first byte; after the last line see the
 *   introduction of this section.
 * - Zero byte: the line does not end, and stays until the caller removes it. However, if the data
 *   wraps and the zero byte is before the end of the storage, the search goes on at the start of
 *   the storage. A line end there completes the line: all bytes up to the end of the storage are
 *   counted, those after the zero byte are not written.
 *
 * @param dst space for `size` + 2 bytes; if the data wraps and tavu_rbuf_get_fillc_len() is larger
 *        than `size`, for that length + 2 bytes. rbuf->size + 3 bytes suffice for a `size` of
 *        rbuf->size + 1 or less. An incomplete line may be written there too
 * @param size one more than the longest line, with its stored line end, to look for; longer lines
 *        count as incomplete. If the data wraps, `size` does not limit a line that ends before the
 *        end of the storage, and one that ends after it may have `size` bytes. rbuf->size + 1 finds
 *        every line
 * @return length with CR LF, without the zero byte; 0 when there is no complete line
 */
TAVU_API int32_t tavu_rbuf_get_one_line(tavu_rbuf_t *rbuf, void *dst, int32_t size);

/** @} */

/* ---- Recycling list -------------------------------------------------------------------------- */

/**
 * @defgroup rlist Recycling list
 * A pool of slots of one size, used as a queue: the producer takes free slots and fills them in
 * place, the consumer reads the oldest one and gives it back. Every call takes constant time,
 * except creating, deleting and tavu_rlist_rem_all(). Slots are aligned like list elements. Only
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
    int32_t capacity;         /**< slots asked for at creation */
    uint32_t slot_size;       /**< bytes of a slot */
    int32_t used;             /**< slots taken and not given back */
    tavu_rlist_slot_t *last;  /**< end of the chain: the oldest used slot */
    tavu_rlist_slot_t *first; /**< start of the chain: the slot to be taken last */
} tavu_rlist_t;

/**
 * Creates a pool; later calls allocate nothing. Free it with tavu_rlist_delete().
 * @param slot_size bytes of a slot; 0 is allowed
 * @param count number of slots; at least 2, because a single slot can be taken but not given back
 * @return the pool; null, with nothing kept, when memory is short
 */
TAVU_API tavu_rlist_t *tavu_rlist_create(uint32_t slot_size, int32_t count);

/** Frees a pool with all its slots; null is ignored. */
TAVU_API void tavu_rlist_delete(tavu_rlist_t *rlist);

/**
 * Takes the next free slot; null when all are used. The slot holds the bytes that it held when it
 * was given back; before its first use they are undefined.
 */
TAVU_API void *tavu_rlist_get_buf(tavu_rlist_t *rlist);

/** The oldest used slot, or null. */
TAVU_API void *tavu_rlist_get_data(tavu_rlist_t *rlist);

/**
 * Gives the oldest used slot back, if any. Its bytes stay, and it is taken again after every slot
 * that is free now.
 */
TAVU_API void tavu_rlist_rem_data(tavu_rlist_t *rlist);

/** Gives every used slot back, except the only slot of a pool. */
TAVU_API void tavu_rlist_rem_all(tavu_rlist_t *rlist);

/** Number of used slots. */
TAVU_API int32_t tavu_rlist_get_used_cnt(tavu_rlist_t *rlist);
/** Number of free slots: capacity minus used ones, negative for a negative capacity. */
TAVU_API int32_t tavu_rlist_get_free_cnt(tavu_rlist_t *rlist);

/** @} */

/* ---- Words, tokens, lines and URIs ----------------------------------------------------------- */

/**
 * @defgroup str Words, tokens, lines and URIs
 * Scanners over strings that end in a zero byte. They never change the string; results point into
 * it. White space is tab, line feed, carriage return and space, whatever the locale. A line ends at
 * a line feed, or at a carriage return followed by a line feed. A null string counts as empty.
 * Lengths are in bytes, and strings have less than 2^31 of them. Output is not bounded: the caller
 * provides the space stated.
 *
 * Threads: all functions are reentrant.
 * @{
 */

/** The first byte that is not white, or null. */
TAVU_API const char *tavu_str_move_to_validw(const char *str);

/**
 * The last byte of the first word. Leading white space is skipped. Null when no white space follows
 * the word before the string's last byte, which is not examined. However, a string of one byte, or
 * one byte after leading white space, is returned as it is.
 */
TAVU_API const char *tavu_str_move_to_eow(const char *str);

/** The first byte that is not white, if it is before the string's last byte; else null. */
TAVU_API const char *tavu_str_move_to_nextw(const char *str);

/**
 * The last byte of the first line end, if it is before the string's last byte; else null. Here a
 * carriage return alone ends a line too. The next line begins one byte after the result.
 */
TAVU_API const char *tavu_str_move_to_nextl(const char *str);

/**
 * Finds the end of a token: the first byte equal to `delim`, a line feed or a carriage return, or
 * the end of the string.
 * @param delim the delimiter, of which the low 8 bits count
 * @param len bytes before it
 * @param next null, or where to store the byte after it; null when nothing follows
 * @return 0; -1 for an empty string
 */
TAVU_API int32_t tavu_str_parse_by_ctok(const char *str, int32_t delim, int32_t *len,
                                        const char **next);

/**
 * Finds the end of a token: the first occurrence of `delim`, or a line feed or carriage return
 * before it. Unlike with tavu_str_parse_by_ctok(), the end of the string does not end a token.
 * @param delim the delimiter; an empty one is found at once
 * @param len bytes before it
 * @param next null, or where to store the byte after it; null when nothing follows
 * @return 0; -1, with a length of 0, when there is none
 */
TAVU_API int32_t tavu_str_parse_by_stok(const char *str, const char *delim, int32_t *len,
                                        const char **next);

/**
 * Measures the first line.
 * @param str the string
 * @param len its bytes without the line end
 * @param next null, or where to store the next line; null when nothing follows
 * @return 0; -1 when there is no line end (`len` is then the length of the string) or a carriage
 *         return is not followed by a line feed (`len` is then 0)
 */
TAVU_API int32_t tavu_str_parse_one_line(const char *str, int32_t *len, const char **next);

/** Reserved: does nothing and returns 0. */
TAVU_API int32_t tavu_str_get_one_az09(void);

/**
 * Splits scheme "://" host ":" port "/" path. Leading white space is skipped, the port is required,
 * and nothing is unescaped.
 *
 * A line feed or carriage return ends scheme, host and port like their delimiter, and the next part
 * begins with the byte after it. A line feed directly after the port is therefore taken for the
 * "/": the text after it is the path. Of CR LF the line feed begins the next part, so the path is
 * empty.
 *
 * The path is meant for a URI inside a request: when another line follows the URI's line, the path
 * is copied from *that* line, as many bytes as the URI's own path has (fewer if the string ends).
 * It begins with "/". It is empty when nothing or a line end follows the "/" of the URI, or its
 * line holds a carriage return that no line feed follows.
 *
 * @param scheme,host,port,path space for each part and a zero byte; the length of the whole string
 *        plus 2 is always enough
 * @param rest the line after the URI's line; null when there is none
 * @return 0; -1 for a null or blank string, when neither "://" nor a line end is found or nothing
 *         follows it, and without a port. Parts found before the failure stay written
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
 * Copies a string and replaces each "%" and the two bytes after it by one byte: 16 times the first
 * plus the second *decimal* digit. Any other byte, A to F included, counts as 0.
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
