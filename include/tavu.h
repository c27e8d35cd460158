/**
 * @file tavu.h
 * libtavu: building blocks for codecs and players.
 *
 * The library keeps no state, starts no threads and needs only the C library. Failures are told by
 * return values; nothing is printed and the process is never aborted. Unless a function says
 * otherwise it may be called from any number of threads at once, as long as no two of them work on
 * the same object or write the same memory.
 *
 * Units: sizes and strides are bytes, widths and heights pixels, unless the text says samples,
 * pixels or bits. A stride is the distance between the starts of two rows.
 *
 * Functions that are called "unchecked" test none of their arguments: pixel kernels and the bit
 * reader trust their caller and state what they demand.
 */
#ifndef TAVU_H
#define TAVU_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define TAVU_API __attribute__((visibility("default")))
#else
#define TAVU_API
#endif

/* ------------------------------------------------------------------------------------------------
 * Core: status codes, aligned memory, version, integer logarithms, atomic counters
 * --------------------------------------------------------------------------------------------- */

/** Status codes: 0 is success, every failure is negative. */
enum {
    TAVU_OK = 0,
    /** Generic failure. */
    TAVU_ERR = -1,
    /** No memory for an object record; or an image payload too small for a rebirth. */
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
 * @return the block, or null when memory is short or `size` leaves no room for the header.
 *         Give it back with tavu_mfree_align32() or tavu_mfree_fast_align32(), never with free().
 */
TAVU_API void *tavu_malloc_align32(uint32_t size);

/** Frees a block of either aligned allocator; null is ignored. Unchecked. */
TAVU_API void tavu_mfree_align32(void *block);

/** The same as tavu_malloc_align32(); blocks of the two are interchangeable. */
TAVU_API void *tavu_malloc_fast_align32(uint32_t size);

/** The same as tavu_mfree_align32(). */
TAVU_API void tavu_mfree_fast_align32(void *block);

/**
 * The build stamp "Dec 27 2013 13:23:55" followed by a line feed.
 * @return a static buffer of the library that each call writes again: not thread-safe
 */
TAVU_API const char *tavu_version(void);

/** Rounded-down base-2 logarithm of an unsigned value; -1 for 0. */
TAVU_API int32_t tavu_floor_log2(uint32_t value);

/** Rounded-up base-2 logarithm of an unsigned value; -1 for 0, 32 above 0x80000000. */
TAVU_API int32_t tavu_ceil_log2(uint32_t value);

/**
 * Adds 1 to a word atomically (relaxed: no ordering of other accesses); wraps at INT32_MAX.
 * Unchecked; safe from any number of threads on the same word, also beside tavu_atomic_dec().
 * @return the value after the addition
 */
TAVU_API int32_t tavu_atomic_inc(int32_t *word);

/** Subtracts 1 atomically, otherwise like tavu_atomic_inc(); wraps at INT32_MIN. */
TAVU_API int32_t tavu_atomic_dec(int32_t *word);

/**
 * Waits until a word shared with another thread equals `value`; never times out. On ARM the core
 * sleeps between events, elsewhere it spins politely.
 *
 * No acquire barrier follows the final load: a caller that goes on to read data published by the
 * waker issues its own.
 * @return 0 when the word equals `value`; #TAVU_ERR as soon as the word holds -1, the agreed sign
 *         to give up, even when -1 is the value waited for
 */
TAVU_API int32_t tavu_sync_wait(int32_t *word, int32_t value);

/**
 * Stores `value` into a word and wakes every waiter. All earlier writes of the caller are visible
 * before the word changes.
 * @return 0
 */
TAVU_API int32_t tavu_sync_wake(int32_t *word, int32_t value);

/* ------------------------------------------------------------------------------------------------
 * Image buffer
 * --------------------------------------------------------------------------------------------- */

/**
 * Colour-space codes. An image buffer takes 10, 11, 12, 13, 18, 43 (planar, 8 bits a sample) and
 * the packed families 100..299 (2 bytes a pixel), 300..399 (4 bytes), 400..499 (3 bytes) and
 * 500..599 (4 bytes); the codes from 600 on exist for conversions only.
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
    TAVU_CS_YUV444A8 = 43,  /**< the same as 13 and an alpha plane of full size */
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

/** Clearing options of image buffers, to be or-ed. */
enum {
    TAVU_IMGB_OPT_CLEAR_ALIGN = 1, /**< zero what alignment adds beyond the visible picture */
    TAVU_IMGB_OPT_CLEAR_PAD = 2    /**< zero the padding */
};

/**
 * Payload allocator of a buffer object.
 * @param size bytes wanted
 * @param second where to store the payload's address in a second address space, for example a
 *        device's; 0 means none
 * @return the payload or null
 */
typedef void *(*tavu_imgb_alloc_fn)(int32_t size, uint32_t *second);

/** Frees what the matching tavu_imgb_alloc_fn returned. */
typedef void (*tavu_imgb_free_fn)(void *payload, uint32_t second);

/**
 * A reference-counted picture: up to four planes in one payload. Planes that `cs` does not have
 * are zero in every array. Callers may write `x` and `y`; all else is read-only for them.
 */
typedef struct tavu_imgb_t tavu_imgb_t;
struct tavu_imgb_t {
    int32_t refcnt;                    /**< reference count; changed by the methods only */
    int32_t (*addref)(tavu_imgb_t *);  /**< adds a reference; returns the new count */
    int32_t (*getref)(tavu_imgb_t *);  /**< returns the count */
    int32_t (*release)(tavu_imgb_t *); /**< drops a reference; at 0 frees payload and record */
    int32_t w, h;                      /**< visible size in pixels */
    int32_t x, y;                      /**< start of the region of interest, see tavu_md5_imgb() */
    int32_t cs;                        /**< colour-space code */
    int32_t stride[4];                 /**< bytes per row, alignment and both paddings included */
    int32_t rows[4];                   /**< rows, alignment and both paddings included */
    uint8_t *addr[4];                  /**< first visible pixel */
    uint32_t paddr[4];                 /**< the same in the second address space */
    uint32_t reserved0[8];             /**< zero */
    int32_t aw, ah;                    /**< aligned size of plane 0 in pixels, without padding */
    tavu_imgb_alloc_fn mem_alloc;      /**< payload allocator used at creation */
    tavu_imgb_free_fn mem_free;        /**< payload free function */
    uint8_t *base[4];                  /**< start of the plane's storage, padding included */
    uint32_t pbase[4];                 /**< the same in the second address space */
    int32_t size;                      /**< payload capacity in bytes, fixed at creation */
    uint32_t reserved1[3];             /**< zero */
};

/**
 * Creates an image buffer with reference count 1. Give it back with its `release` method; all three
 * methods return #TAVU_ERR_INVALID_ARGUMENT for null.
 *
 * Planes lie back to back in one payload. Each is its visible size, rounded up to the alignment,
 * with the padding around it. The default payload is aligned to 32 bytes and not initialised.
 *
 * The second addresses of later planes advance from that of the payload even when it is 0: with the
 * default allocator `pbase[p]` is the plane's byte offset in the payload.
 *
 * @param w,h visible size in pixels
 * @param cs  colour-space code
 * @param opt 0, or TAVU_IMGB_OPT_ flags
 * @param align null, or one entry per plane: width alignment in pixels << 16 | height alignment in
 *        rows, each a power of two, at least 1
 * @param pad null, or one entry per plane: pixels added on the left and on the right << 16 | rows
 *        added above and below
 * @param mem_alloc,mem_free payload callbacks; both null for the default
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
 * Lays an existing buffer out anew over its payload, which is never allocated again. Needs
 * exclusive use of the buffer. `x` and `y` become 0; `size`, callbacks and count stay.
 * @return #TAVU_OK; #TAVU_ERR_OUT_OF_MEMORY when the payload is too small; otherwise as
 *         tavu_imgb_create(). On failure the buffer is unchanged.
 */
TAVU_API int32_t tavu_imgb_rebirth(tavu_imgb_t *imgb, int32_t w, int32_t h, int32_t cs, int32_t opt,
                                   const uint32_t *align, const uint32_t *pad);

/**
 * Applies clearing options to a laid-out buffer; creation and rebirth call it when `opt` is not 0.
 *
 * #TAVU_IMGB_OPT_CLEAR_ALIGN zeroes what follows the visible pixels of each row up to the aligned
 * width, then the first `aw[p]` *bytes* of each row between `h[p]` and `ah[p]`, whatever the size
 * of a pixel. #TAVU_IMGB_OPT_CLEAR_PAD zeroes the padding rows, then `pad[p] >> 16` *bytes* at the
 * start of each other row and as many from byte `(pad[p] >> 16) + aw[p]` on.
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

/* ------------------------------------------------------------------------------------------------
 * Bitstream reader
 *
 * Reads a byte buffer most significant bit first through a 32-bit cache word. Unchecked: the record
 * must have been initialised and bit counts must be 0..32. A record must not be shared by threads.
 * The position of the next bit is (cur - beg) bytes less `leftbits` bits.
 * --------------------------------------------------------------------------------------------- */

/** Bit reader; the caller allocates it. */
typedef struct tavu_bsr_t tavu_bsr_t;

/**
 * Refills the cache of a reader. A custom one must replace the cache by up to `bytes` bytes
 * (big-endian from bit 31 down, zeros below), set `leftbits` to 8 times their number, advance
 * `cur`, and return 0; with nothing left it empties the cache and returns non-zero.
 */
typedef int32_t (*tavu_bsr_flush_fn)(tavu_bsr_t *bs, int32_t bytes);

struct tavu_bsr_t {
    uint32_t code;           /**< cache: the next bits, left-justified, zeros below */
    int32_t leftbits;        /**< valid bits in `code`; negative after reading past the end: that
                                  many bits of the next refill count as consumed */
    const uint8_t *cur;      /**< next byte to load */
    const uint8_t *end;      /**< last byte of the buffer */
    const uint8_t *beg;      /**< first byte of the buffer */
    int32_t size;            /**< buffer size in bytes */
    tavu_bsr_flush_fn flush; /**< refill function */
};

/**
 * Starts a reader over `size` bytes, which must stay valid while it is used. Loads nothing yet.
 * @param flush refill function, or null for tavu_bsr_flush()
 */
TAVU_API void tavu_bsr_init(tavu_bsr_t *bs, const void *buf, int32_t size, tavu_bsr_flush_fn flush);

/**
 * The default refill: replaces the cache by up to `bytes` (at most 4) bytes.
 * @return 0, or -1 with an empty cache when no byte remains
 */
TAVU_API int32_t tavu_bsr_flush(tavu_bsr_t *bs, int32_t bytes);

/**
 * Reads `size` bits, 0..32. Bits missing at the end of the data read as 0 and leave `leftbits`
 * negative; the next read that needs a refill then fails.
 * @return the bits (all 32 bits for a size of 32), or -1 when a needed refill fails, which a 32-bit
 *         value of all ones cannot be told from
 */
TAVU_API int32_t tavu_bsr_read(tavu_bsr_t *bs, int32_t size);

/** Reads one bit; -1 when a needed refill fails. With a negative `leftbits` it returns 0. */
TAVU_API int32_t tavu_bsr_read1(tavu_bsr_t *bs);

/** Drops `size` bits, 0..32. */
TAVU_API void tavu_bsr_skip(tavu_bsr_t *bs, int32_t size);

/** The next `size` bits, 0..32, without consuming them; bits beyond the end are 0. */
TAVU_API uint32_t tavu_bsr_peek(tavu_bsr_t *bs, int32_t size);

/** Drops `skip` bits, then peeks `size`; 0 when the refill for the skip fails. */
TAVU_API uint32_t tavu_bsr_skip_peek(tavu_bsr_t *bs, int32_t skip, int32_t size);

/** Drops the bits up to the next byte boundary. */
TAVU_API void tavu_bsr_skip_align8(tavu_bsr_t *bs);

/**
 * Reads the bits up to the next byte boundary.
 * @param bits null, or where to store their number, 0..7
 * @return their value
 */
TAVU_API int32_t tavu_bsr_read_align8(tavu_bsr_t *bs, int32_t *bits);

/**
 * Reads an unsigned Exp-Golomb code (ITU-T H.264, 9.1). Codes of up to 31 bits, values 0..65534,
 * always decode.
 * @return the value, or -2 at the end of the data
 */
TAVU_API int32_t tavu_bsr_read_ue(tavu_bsr_t *bs);

/** Reads a signed Exp-Golomb code (0, 1, -1, 2, -2, ...); +1 at the end of the data. */
TAVU_API int32_t tavu_bsr_read_se(tavu_bsr_t *bs);

/**
 * Reads a truncated Exp-Golomb code of values 0..range: the inverted next bit for a range of 1
 * (2 when no bit is left), tavu_bsr_read_ue() above; below 1 it returns 0 and reads nothing.
 */
TAVU_API int32_t tavu_bsr_read_te(tavu_bsr_t *bs, int32_t range);

/**
 * Reads a unary code: the number of 1 bits before a 0 bit, which is consumed too.
 *
 * A run that fills the cache to its last valid bit ends there: its 0 is taken from beyond, and
 * `leftbits` becomes -1. A full cache of 32 bits is skipped and counted as 32 ones.
 */
TAVU_API int32_t tavu_bsr_read_un(tavu_bsr_t *bs);

/**
 * Reads a truncated unary code of at most `max` ones. After exactly `max` ones a 0 that follows is
 * consumed too; of more than `max` ones exactly `max` are consumed.
 */
TAVU_API int32_t tavu_bsr_read_tu(tavu_bsr_t *bs, int32_t max);

/** Number of leading zero bits of a word; 32 for 0. */
TAVU_API int32_t tavu_bsr_clz_in_code(uint32_t code);

/* ------------------------------------------------------------------------------------------------
 * Media types, key frames, digests
 * --------------------------------------------------------------------------------------------- */

/**
 * Media-type codes: video 100..299, audio 300..499, DRM 1100..1299, subtitle 3000..3199. The last
 * code of each family means "not in this family". The values are stored and exchanged by callers.
 */
enum {
    TAVU_MT_NONE = 0,

    TAVU_MT_VID_MPEG4 = 102,
    TAVU_MT_VID_H263 = 103,
    TAVU_MT_VID_H264 = 104,
    TAVU_MT_VID_WMV1 = 105,
    TAVU_MT_VID_WMV2 = 106,
    TAVU_MT_VID_WMV3 = 107,
    TAVU_MT_VID_DIV3 = 110,
    TAVU_MT_VID_H263X = 111, /**< a second H.263 code; no FourCC maps to it */
    TAVU_MT_VID_RV10 = 113,
    TAVU_MT_VID_RV20 = 114,
    TAVU_MT_VID_RV30 = 115,
    TAVU_MT_VID_RV40 = 116,
    TAVU_MT_VID_MP43 = 117,
    TAVU_MT_VID_VC1 = 118,
    TAVU_MT_VID_VP8 = 119,
    TAVU_MT_VID_HEVC = 120,
    TAVU_MT_VID_HFYU = 122,
    TAVU_MT_VID_UNKNOWN = 299,

    TAVU_MT_AUD_PCM = 300,
    TAVU_MT_AUD_ALAW = 301,
    TAVU_MT_AUD_MULAW = 302,
    TAVU_MT_AUD_MPEG = 304,
    TAVU_MT_AUD_MP3 = 305,
    TAVU_MT_AUD_AAC = 306,
    TAVU_MT_AUD_AC3 = 307,
    TAVU_MT_AUD_DTS = 308,
    TAVU_MT_AUD_AMR = 309,
    TAVU_MT_AUD_AMRWB = 310,
    TAVU_MT_AUD_QCELP = 311,
    TAVU_MT_AUD_WMA = 312,
    TAVU_MT_AUD_WMAPRO = 313,
    TAVU_MT_AUD_WMALSL = 314,
    TAVU_MT_AUD_EVRC = 321,
    TAVU_MT_AUD_SIPR = 331,
    TAVU_MT_AUD_COOK = 332,
    TAVU_MT_AUD_UNKNOWN = 499,

    TAVU_MT_DRM_DIVX = 1100,
    TAVU_MT_DRM_UNKNOWN = 1299,

    TAVU_MT_SUB_SRT = 3000,
    TAVU_MT_SUB_TX3G = 3006,
    TAVU_MT_SUB_ASS = 3007,
    TAVU_MT_SUB_SSA = 3008,
    TAVU_MT_SUB_UNKNOWN = 3199
};

/**
 * Maps a FourCC or a numeric wave-format tag to a media-type code, asking audio, video, subtitle
 * and DRM in this order. A FourCC holds its first character in the lowest byte; matching is exact
 * and case-sensitive.
 * @return the code, or #TAVU_MT_NONE
 */
TAVU_API int32_t tavu_fcc2mt(uint32_t fcc);

/** Audio code of a FourCC or wave-format tag, or #TAVU_MT_AUD_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_aud(uint32_t fcc);

/** Video code of a FourCC, or #TAVU_MT_VID_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_vid(uint32_t fcc);

/** Subtitle code of a FourCC, or #TAVU_MT_SUB_UNKNOWN. */
TAVU_API int32_t tavu_fcc2mt_sub(uint32_t fcc);

/** DRM code of a FourCC, or #TAVU_MT_DRM_UNKNOWN; tavu_fcc2mt() names "DIVX" as video instead. */
TAVU_API int32_t tavu_fcc2mt_drm(uint32_t fcc);

/**
 * Tells whether a coded video access unit is a key frame, from its start codes and first header
 * bits alone.
 *
 * MPEG-4 Visual: the first VOP (or short-header picture) is intra. H.263: the first picture is
 * intra. H.264: an IDR slice comes before any other slice. HEVC: the first NAL unit is an IDR
 * slice; a unit that begins with a parameter set gives 0. WMV1, WMV2, DIV3: the picture type.
 * HuffYUV: always 1. Every other codec: 0. H.264 and HEVC units need start codes, not length
 * fields.
 *
 * @param codec video media-type code
 * @param data  the unit. WMV1, WMV2 and DIV3 read the first byte whatever `size` is; an H.263 unit
 *        with extended picture type reads up to one byte beyond `size`
 * @param size  bytes; below 1 there is nothing to scan
 * @return 1 for a key frame, 0 otherwise
 */
TAVU_API int32_t tavu_is_vkeyfrm(int32_t codec, const void *data, int32_t size);

/** MD5 context (RFC 1321); the caller allocates it. */
typedef struct tavu_md5_t {
    uint32_t state[4]; /**< chaining state A, B, C, D */
    uint8_t msg[64];   /**< partial input block */
    uint32_t bits[2];  /**< message length in bits, low word first */
} tavu_md5_t;

/** Starts a digest. */
TAVU_API void tavu_md5_init(tavu_md5_t *md5);

/** Adds `size` bytes, which need no alignment; null is allowed with size 0. */
TAVU_API void tavu_md5_update(tavu_md5_t *md5, const void *data, uint32_t size);

/** Writes the 16-byte digest and zeroes the context. */
TAVU_API void tavu_md5_finish(tavu_md5_t *md5, uint8_t digest[16]);

/**
 * Digest of the visible picture of a planar image buffer, whatever its strides and padding.
 *
 * Luma rows `y` to `h` - 1 contribute their first `w - x` bytes. Then planes 1 and 2, unless `cs`
 * is 10, contribute rows `y / 2` to `(h + 1) / 2 - 1` with `(w + 1 - x) / 2` bytes each: always as
 * if chroma were halved both ways, so that other layouts are covered in part and alpha is left out.
 * @return 0, or with nothing written #TAVU_ERR_UNSUPPORTED_CS when `cs` is above 99 or negative,
 *         #TAVU_ERR_INVALID_ARGUMENT for a null buffer
 */
TAVU_API int32_t tavu_md5_imgb(const tavu_imgb_t *imgb, uint8_t digest[16]);

/* ------------------------------------------------------------------------------------------------
 * Image resizing
 *
 * Bilinear with 3-bit fractions: positions carry 18 fraction bits, of which the upper three choose
 * one of 8 x 8 groups of four weights that sum to 64; sums are shifted right by 6, truncating.
 * Shrinking by 3 or more takes every 2nd, 4th, 8th or 16th source pixel as its grid. A target pixel
 * i lies at i * (source - 1) / target, so that a resize to the same size is no copy.
 *
 * Largest source: (size - 1) >> decimation shift must stay below 8192.
 * --------------------------------------------------------------------------------------------- */

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
    TAVU_IRSZ_MODE_LINE = 11  /**< the source comes in bands of a fixed number of rows */
};

/** Errors of tavu_irsz_create(), besides #TAVU_ERR. */
enum { TAVU_IRSZ_ERR_MODE = -2, TAVU_IRSZ_ERR_ALLOC = -3, TAVU_IRSZ_ERR_FORMAT = -4 };

/** What a resizer is to do. */
typedef struct tavu_irsz_param {
    int32_t fmt;          /**< TAVU_IRSZ_ pixel format */
    int32_t mode;         /**< TAVU_IRSZ_MODE_ */
    int32_t src_w, src_h; /**< source size in pixels */
    int32_t src_s;        /**< source stride in pixels */
    int32_t band_h;       /**< band mode: rows per band, a power of two */
    int32_t dst_w, dst_h; /**< target size in pixels */
    int32_t dst_s;        /**< target stride in pixels */
    void *dst;            /**< target pixels; must outlive the resizer */
} tavu_irsz_param;

typedef struct tavu_irsz_t tavu_irsz_t;

/** A driver: one call of tavu_irsz() for one pixel format. */
typedef int32_t (*tavu_irsz_fn)(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);

/**
 * A resizer; read-only for callers. Lengths named in lines are bytes, in 5-6-5 to 5-6-5 pixels.
 * An object must not be used by two threads at once.
 */
struct tavu_irsz_t {
    int32_t fmt;              /**< pixel format */
    int32_t mode;             /**< mode */
    int32_t step_x;           /**< column step per target pixel, 18 fraction bits, in units of
                                   1 << shift_x source pixels */
    int32_t step_y;           /**< row step per target row, in units of 1 << shift_y rows */
    int32_t pos_y;            /**< band mode: position of the next target row */
    int32_t next_x;           /**< pixels to the right-hand neighbour: 1 << shift_x */
    int32_t line_size;        /**< source line */
    int32_t dst_w, dst_h;     /**< target size in pixels */
    int32_t dst_line;         /**< target line */
    int32_t shift_x, shift_y; /**< decimation shifts, 0..4 */
    int32_t next_row;         /**< distance to the lower neighbour row */
    int32_t carry_next;       /**< band mode: offset of the carried row's lower neighbour in the
                                   next band */
    int32_t pending;          /**< band mode: 1 while a target row waits for its lower row */
    int32_t band_size;        /**< band_h lines */
    int32_t out_row;          /**< band mode: next target row */
    int32_t upscale;          /**< 1 if either axis grows */
    int32_t reuse;            /**< band mode: 1 while the next upper row is the carried one */
    tavu_irsz_fn rsz_func;    /**< driver of the pixel format */
    uint8_t *carry_buf;       /**< band mode: the carried source row */
    uint8_t *dst;             /**< target pixels */
};

/**
 * Creates a resizer for one combination of sizes, pixel format and mode.
 *
 * Delete it with tavu_irsz_delete(); there is no reset, so each image of band mode takes a new one.
 * Creation does not check the memory for the carried row of band mode: callers that must survive
 * its lack test `carry_buf` for null.
 *
 * @param err null, or where to store 0, #TAVU_IRSZ_ERR_ALLOC, #TAVU_IRSZ_ERR_MODE (checked first),
 *        #TAVU_IRSZ_ERR_FORMAT, or #TAVU_ERR: a size below 1, a source too large (see above), lines
 *        or bands of more than INT32_MAX bytes, or in band mode a band height that is no power of
 *        two or a stride below 1
 * @return the resizer or null
 */
TAVU_API tavu_irsz_t *tavu_irsz_create(const tavu_irsz_param *param, int32_t *err);

/**
 * Resizes. Calls the driver of the pixel format; unchecked.
 *
 * Mode FULL: `src` is the source image, the other arguments are ignored. Mode LINE: `src` is a band
 * of `rows` source rows, of which the first has index `first_row`, a multiple of `rows`; `rows`
 * equals band_h. Pass bands in order until `out_row` reaches `dst_h`. A target row whose lower
 * source row lies in the next band is written by the next call.
 *
 * Band mode gives the same target as FULL when a band has at least two rows and twice as many rows
 * as a target row stands for (band_h >= 2 * src_h / dst_h, rounded up before doubling); shorter
 * bands may leave rows out or take a wrong upper row. Two formats differ all the same: of a carried
 * row of #TAVU_IRSZ_5B6B5B only the left half is kept and the rest reads as 0, and
 * #TAVU_IRSZ_8B8B8B_5B6B5B packs as its line kernel does.
 * @return 0
 */
TAVU_API int32_t tavu_irsz(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);

/** Frees a resizer, never its target; null is ignored. */
TAVU_API void tavu_irsz_delete(tavu_irsz_t *rsz);

/** Driver of #TAVU_IRSZ_8B; arguments and result as tavu_irsz(). */
TAVU_API int32_t tavu_irsz8b(tavu_irsz_t *rsz, const void *src, int32_t first_row, int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B. */
TAVU_API int32_t tavu_irsz8b8b8b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                 int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B_5B6B5B. */
TAVU_API int32_t tavu_irsz8b8b8b_5b6b5b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                        int32_t rows);
/** Driver of #TAVU_IRSZ_5B6B5B. */
TAVU_API int32_t tavu_irsz5b6b5b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                 int32_t rows);
/** Driver of #TAVU_IRSZ_8B8B8B8B. */
TAVU_API int32_t tavu_irsz8b8b8b8b(tavu_irsz_t *rsz, const void *src, int32_t first_row,
                                   int32_t rows);

/**
 * Computes the packed steps, (step << 3) | shift, that the whole-image kernels take. A target size
 * of 0 raises SIGFPE. The result is no status and means nothing.
 */
TAVU_API int32_t bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h,
                                        int32_t *step_x, int32_t *step_y);

/**
 * Bilinear weights: four bytes at 32 * a + 4 * b for the horizontal fraction a and the vertical
 * fraction b in eighths, upper-left, upper-right, lower-left, lower-right. The resizer reads this
 * table, which is writable.
 */
TAVU_API extern uint8_t tavu_irsz_tbl_rsz_weight[256];

/** A read-only copy of the weights for callers' own kernels. */
TAVU_API extern const uint8_t tavu_tbl_bilinear_rszw[256];

/**
 * Line kernel: makes one target row of two source rows. Unchecked; reads no byte beyond the
 * right-hand neighbour of the last pixel. A `dst_w` below 1 writes nothing.
 * @param rows   upper and lower source row
 * @param wrow   tavu_irsz_tbl_rsz_weight + 4 * b
 * @param dst_w  target pixels
 * @param shift_x,next_x decimation shift, and pixels to the right-hand neighbour
 * @param step_x step with 18 fraction bits
 * @param out    target row
 */
typedef void tavu_irsz_line_t(const uint8_t *const rows[2], const uint8_t *wrow, int32_t dst_w,
                              int32_t shift_x, int32_t next_x, int32_t step_x, uint8_t *out);

/**
 * Whole-image kernel. Unchecked. A `dst_w` or `dst_h` below 1 writes nothing.
 * @param src,src_line source and its line size in bytes (5-6-5 to 5-6-5: pixels)
 * @param dst_w,dst_h  target size in pixels
 * @param dst_line,dst target line size in bytes (5-6-5 to 5-6-5: pixels) and target
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
 * no 5-6-5 unit of either byte order; callers rely on it as it is.
 */
TAVU_API tavu_irsz_line_t tavu_irsz8b8b8b_5b6b5b_line;
/**
 * 3 bytes c0, c1, c2 to two bytes: (c1 & 0xE0) | (c2 >> 3), then (c0 & 0xF8) | (c1 >> 5): a
 * little-endian unit that carries the upper three bits of c1 twice and none of the next three.
 */
TAVU_API tavu_irsz_full_t tavu_irsz8b8b8b_5b6b5b_full;

/** 5-6-5 units; channels are widened with zero low bits, weighed, and cut to 5, 6 and 5 bits. */
TAVU_API tavu_irsz_line_t tavu_irsz5b6b5b_line;
/** 5-6-5 units, line sizes in pixels. */
TAVU_API tavu_irsz_full_t tavu_irsz5b6b5b_full;

/* ------------------------------------------------------------------------------------------------
 * Colour-space conversion
 *
 * YUV to RGB (ITU-R BT.601 matrix, full range as in JPEG, 8 fraction bits), u = U - 128, v = V -
 * 128: R = Y + ((359 v + 128) >> 8),  G = Y - ((183 v + 88 u + 128) >> 8),  B = Y + ((454 u + 128)
 * >> 8) each clamped to 0..255; shifts round toward minus infinity.
 *
 * RGB to YUV:
 *   Y = (77 R + 150 G + 29 B + 128) >> 8
 *   U = 128 + ((-43 R - 85 G + 128 B + 128) >> 8),  V = 128 + ((128 R - 107 G - 21 B + 128) >> 8)
 * where a U or V outside 0..255 becomes 255.
 * --------------------------------------------------------------------------------------------- */

/**
 * A conversion routine. Unchecked: planes must hold the sizes given, and source and target must not
 * overlap. Needs no alignment and no readable slack. Same-size routines ignore the target size; a
 * width or height below 1 writes nothing.
 *
 * @param src        source planes in the order of the layout's name
 * @param src_w,src_h source size in pixels
 * @param src_stride bytes per row of each source plane. Same-size routines with packed 8-bit RGB
 *        targets use the first for all planes
 * @param src_cs     source code; ignored
 * @param dst        target planes
 * @param dst_w,dst_h target size in pixels
 * @param dst_stride bytes per row of each target plane; a packed target uses the first. A plane of
 *        5-6-5 units moves by 2 * stride - 2 * width bytes a row: only rows without padding land
 *        where their stride says
 * @param dst_cs     target code. Same-size routines with packed 8-bit targets: 401 and 501 give
 *        B, G, R order through the *third* target pointer, with the first stride
 */
typedef void tavu_csc_routine_t(uint8_t *const src[4], int32_t src_w, int32_t src_h,
                                const int32_t src_stride[4], int32_t src_cs, uint8_t *const dst[4],
                                int32_t dst_w, int32_t dst_h, const int32_t dst_stride[4],
                                int32_t dst_cs);

/** Pointer to a conversion routine. */
typedef tavu_csc_routine_t *tavu_fn_csc_t;

/**
 * Finds the routine that converts between two colour-space codes, with resizing when the sizes
 * differ.
 *
 * Same size: 600 to 400, 500, 200, 650; 700 to 500, 650 (and 430, which gives the routine for 500);
 * 13 to 400, 500, 200, 650, 13; 43 to 500, 430, 650, 13, 43. Other size: 600 and 13 to 400, 500;
 * 700 and 43 to 500.
 * @param err null, or where to store #TAVU_ERR_UNSUPPORTED_CS on failure; else it is not written
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
 * Routines to planar YUV at 2 * (row + 4 if resizing) + column; rows as above; columns: 13, 43. The
 * first two rows are not reached through tavu_imgp_get_fn_csc().
 */
TAVU_API extern const tavu_fn_csc_t tavu_tbl_fn_csc_to_yuvplanar[16];

/** Y, U, V planes to R, G, B; B, G, R for target code 401. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444_to_rgb888;
/** Y, U, V planes to R, G, B, 255; B, G, R, 255 for target code 501. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444_to_rgba8888;
/** Y, U, V, A planes to R, G, B, A; B, G, R, A for target code 501. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444a8_to_rgba8888;
/** R, G, B planes to R, G, B for target code 400, B, G, R for every other. */
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
 * bytes through the second, 3 bytes a pixel with the second stride.
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

/** Packed pixels of 3 bytes to Y, U, V planes; source pointers point at the first R, G and B. */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8_to_yuv444;
/** Packed pixels of 4 bytes to Y, U, V, A planes; source pointers point at the first R, G, B, A. */
TAVU_API tavu_csc_routine_t tavu_csc_r8g8b8a8_to_yuv444a8;
/** Copies three planes, and the fourth if the source has one and the target code is 43. */
TAVU_API tavu_csc_routine_t tavu_csc_yuv444x_to_yuv444x;

/*
 * Combined conversion and resizing, bilinear as in the resizer, to R, G, B(, A) through the first
 * target pointer. Each source plane has its own stride. A target size of 0 raises SIGFPE.
 *
 * YUV sources: the pixels of full groups of eight in a row are converted in 16-bit arithmetic whose
 * products wrap before the rounding shift, so that strong chroma (|v| of 92 and more in red) comes
 * out far from the formula above; the last dst_w % 8 pixels are exact. Callers rely on these bytes.
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

#ifdef __cplusplus
}
#endif

#endif /* TAVU_H */
