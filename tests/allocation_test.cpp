// The sizes that creating and growing functions request at and around every limit, and their
// results when allocation fails: on 32 and on 64 bits.
#include <gtest/gtest.h>

#include "buf/geometry_model.h"
#include "container/list_model.h"
#include "memory.h"

namespace {

constexpr int32_t BIG = INT32_MAX;

// Sizes where sums and products wrap, with their neighbours.
std::vector<int32_t> limits() {
    std::vector<int32_t> list;
    for (const int64_t at : {0x0LL, 0x100LL, 0x7FFFLL, 0x8000LL, 0xFFFFLL, 0x10000LL, 0x15555555LL,
                             0x1FFFFFFFLL, 0x20000000LL, 0x2AAAAAAALL, 0x3FFFFFFFLL, 0x55555555LL,
                             0x7FFF7FFFLL, 0x7FFFFFFFLL, 0x80000000LL, 0xFFFFFFFFLL}) {
        for (int64_t d = -2; d <= 2; d++) list.push_back(static_cast<int32_t>(at + d));
    }
    return list;
}

// A payload allocator that always fails.
int64_t requested;
void *refuse(int32_t size, uint32_t *) {
    requested = size;
    return nullptr;
}
void unused(void *, uint32_t) {}

// Checks creation, and rebirth in the payload of `image`.
void expect_exact(tavu_imgb_t *image, const PictureRequest &r) {
    const PictureSize size = picture_size(r);
    const bool fits = size.status == TAVU_OK;
    int32_t status = 1;
    requested = -1;
    tavu_imgb_create(r.w, r.h, r.cs, 3, r.align, r.pad, refuse, unused, &status);
    EXPECT_EQ(status, fits ? TAVU_ERR_BUFFER_ALLOC : size.status) << r.w << 'x' << r.h;
    EXPECT_EQ(requested, fits ? size.bytes : -1) << r.w << 'x' << r.h << ' ' << r.cs;
    EXPECT_EQ(tavu_imgb_rebirth(image, r.w, r.h, r.cs, 3, r.align, r.pad),
              size.bytes <= image->size ? size.status : TAVU_ERR_OUT_OF_MEMORY)
        << r.w << 'x' << r.h << ' ' << r.cs;
}

TEST(Sizes, PicturesRequestExactlyTheirPlanesOrAreRefused) {
    tavu_imgb_t *image =
        tavu_imgb_create(64, 64, 500, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(image->base[0]) % 32, 0U);
    const uint32_t entries[] = {0x10001,    0x20001,    0x80008000, 0x7FFF0001,
                                0xFFFFFFFF, 0x00010000, 0x80000001, 0x18000};
    for (const int32_t cs : {-1, 0,  9,  10,  11,  12,  13,  14,  17,  18,  19, 42,
                             43, 44, 99, 100, 299, 300, 400, 500, 599, 600, BIG}) {
        for (const int32_t n : limits()) {
            for (const int32_t h : limits()) expect_exact(image, {n, h, cs, nullptr, nullptr});
            for (const uint32_t align : entries) {
                for (const uint32_t pad : entries) {
                    // The later planes differ from the first.
                    const uint32_t aligns[] = {align, 0x10001, align, 0x80001};
                    const uint32_t pads[] = {pad, pad, 0, 0xFFFF0000};
                    for (const int32_t m : {0, 1, 3, 0x8001, BIG}) {
                        expect_exact(image, {n, m, cs, aligns, pads});
                        expect_exact(image, {m, n, cs, nullptr, pads});
                    }
                }
            }
            if (HasFailure()) return;
        }
    }
    image->release(image);
}

// For sides of INT32_MAX, rounding up halves and computing rows must not overflow.
TEST(Sizes, TheLongestEmptyPicturesHaveBordersAndDigests) {
    const uint32_t pads[4] = {};
    const int32_t sizes[][2] = {{BIG, 0}, {0, BIG}};
    for (const auto &[w, h] : sizes) {
        tavu_imgb_t *image =
            tavu_imgb_create(w, h, 11, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(image, nullptr);
        uint8_t digest[16];
        EXPECT_EQ(tavu_imgb_expand(image, pads), TAVU_OK);
        EXPECT_EQ(tavu_md5_imgb(image, digest), TAVU_OK);
        EXPECT_EQ(digest[0], 0xD4);  // the digest of no bytes
        image->release(image);
    }
}

TEST(Sizes, AudioBlocksRequestExactlyTheirSamplesOrAreRefused) {
    const auto expect_blocks = [](int32_t samples, int32_t channels, int32_t bits, int32_t format) {
        const int64_t each = samples * ((int64_t{bits} + 7) / 8);
        const double bytes = static_cast<double>(each) * (format == 1 ? channels : 1);
        const bool fits = std::min({samples, channels, bits}) >= 0 &&
                          (format == 1 || channels <= 8) && each <= BIG && bytes <= BIG;
        const bool asks = fits && (format == 1 || channels > 0);
        int32_t status = 1;
        requested = -1;
        tavu_audb_t *audio =
            tavu_audb_create(samples, channels, bits, 0, format, 0, refuse, unused, &status);
        ASSERT_EQ(static_cast<double>(requested), asks ? bytes : -1) << samples << ' ' << channels;
        ASSERT_EQ(status, asks   ? TAVU_ERR_BUFFER_ALLOC
                          : fits ? TAVU_OK
                                 : TAVU_ERR_INVALID_ARGUMENT);
        if (audio != nullptr) audio->release(audio);
    };
    for (const int32_t samples : limits()) {
        for (const int32_t channels : {0, 1, 2, 3, 8, 9, 0x8000, 0x10000, BIG, -1}) {
            for (const int32_t bits : {0, 1, 8, 9, 17, 64, BIG, -1}) {
                for (const int32_t format : {0, 1}) expect_blocks(samples, channels, bits, format);
            }
        }
    }
}

// Calls make() with allocation `before` + 1 failing; returns its size, 0 if there was none.
template <class Make>
uint64_t bytes_of_last(int before, Make make) {
    FailingAllocations failing(before);
    make();
    return failing.count == before + 1 ? failing.bytes : 0;
}

// No sum of a size and a header wraps to a smaller allocation.
TEST(Sizes, HeadersAreAddedWithoutWrapping) {
    constexpr uint64_t LINKS = 2 * sizeof(void *), HEADER = 32 + sizeof(void *);
    const uint8_t byte = 0;
    for (const int32_t n : limits()) {
        const auto size = static_cast<uint32_t>(n);
        const uint64_t aligned = size + HEADER <= UINT32_MAX ? size + HEADER : 0;
        EXPECT_EQ(bytes_of_last(0, [&] { tavu_malloc_align32(size); }), aligned) << size;
        EXPECT_EQ(bytes_of_last(0, [&] { tavu_malloc_fast_align32(size); }), aligned) << size;

        const uint64_t linked = size + LINKS <= SIZE_MAX ? size + LINKS : 0;
        EXPECT_EQ(bytes_of_last(1, [&] { tavu_rlist_create(size, 3); }), linked) << size;
        tavu_list_t *list = tavu_list_create(size, nullptr);
        EXPECT_EQ(bytes_of_last(0, [&] { tavu_list_add(list, &byte); }), linked) << size;
        EXPECT_EQ(tavu_list_get_cnt(list), 0);
        tavu_list_delete(list);

        const uint64_t positive = n > 0 ? size : 0;
        tavu_vdata_t vd{};
        EXPECT_EQ(bytes_of_last(0, [&] { tavu_vdata_set(&vd, &byte, n, 0); }),
                  n > 0 ? positive + 2 : 0);
        EXPECT_EQ(bytes_of_last(1, [&] { tavu_rbuf_create(n); }), positive) << n;
        EXPECT_EQ(bytes_of_last(1, [&] { tavu_bitb_create(n, 0, 0, nullptr, nullptr, nullptr); }),
                  positive)
            << n;
    }
}

struct IrszFormat {
    int32_t fmt;
    int64_t src_unit, dst_unit, src_bytes;
};

// The record contains exact products; the carried row's memory is large enough for a line.
void expect_exact(const tavu_irsz_param &p, const IrszFormat &f) {
    int32_t err = 1;
    tavu_irsz_t *rsz = nullptr;
    const uint64_t row = bytes_of_last(1, [&] { rsz = tavu_irsz_create(&p, &err); });
    ASSERT_EQ(rsz != nullptr, err == TAVU_OK);
    if (rsz == nullptr) return;
    const int64_t line = p.src_s * f.src_unit;
    EXPECT_EQ(rsz->line_size, line);
    EXPECT_EQ(rsz->next_row, line * (1 << rsz->shift_y));
    EXPECT_EQ(rsz->dst_line, p.dst_s * f.dst_unit);
    EXPECT_LE((p.dst_w - 1) * int64_t{rsz->step_x}, BIG);
    EXPECT_LE((p.dst_h - 1) * int64_t{rsz->step_y}, BIG);
    if (p.mode == TAVU_IRSZ_MODE_LINE) {
        EXPECT_EQ(rsz->band_size, line * p.band_h);
        EXPECT_EQ(static_cast<int64_t>(row), std::max(p.src_s, p.src_w) * f.src_bytes);
    }
    tavu_irsz_delete(rsz);
}

const IrszFormat IRSZ_FORMATS[] = {{TAVU_IRSZ_8B, 1, 1, 1},
                                   {TAVU_IRSZ_8B8B8B, 3, 3, 3},
                                   {TAVU_IRSZ_8B8B8B_5B6B5B, 3, 2, 3},
                                   {TAVU_IRSZ_5B6B5B, 1, 1, 2},
                                   {TAVU_IRSZ_8B8B8B8B, 4, 4, 4}};

TEST(Sizes, ResizersHaveExactLengthsOrAreRefused) {
    for (const IrszFormat &f : IRSZ_FORMATS) {
        for (const int32_t mode : {TAVU_IRSZ_MODE_FULL, TAVU_IRSZ_MODE_LINE}) {
            for (const int32_t n : limits()) {
                for (const int32_t m : {1, 2, 255, 8192, 0x10000, BIG}) {
                    const tavu_irsz_param cases[] = {{f.fmt, mode, n, m, 9, 4, m, n, 9, nullptr},
                                                     {f.fmt, mode, m, n, m, 4, n, m, n, nullptr},
                                                     {f.fmt, mode, 4, 9, n, m, 9, 4, m, nullptr},
                                                     {f.fmt, mode, 9, 4, m, n, 4, 9, n, nullptr}};
                    for (const auto &p : cases) expect_exact(p, f);
                    if (HasFailure()) return;
                }
            }
        }
    }
}

int32_t irsz_status(const IrszFormat &f, int32_t band_h, int64_t src_stride, int64_t dst_stride) {
    const int32_t mode = band_h > 0 ? TAVU_IRSZ_MODE_LINE : TAVU_IRSZ_MODE_FULL;
    const auto src_s = static_cast<int32_t>(src_stride), dst_s = static_cast<int32_t>(dst_stride);
    const tavu_irsz_param p = {f.fmt, mode, 4, 4, src_s, band_h, 4, 4, dst_s, nullptr};
    int32_t err = 1;
    tavu_irsz_delete(tavu_irsz_create(&p, &err));
    return err;
}

// Limits of strides: 16 source lines, in band mode band_h + 16, and one target line fit in 31 bits.
TEST(Sizes, ResizersTakeEveryStrideThatFits) {
    const auto expect_last = [](const IrszFormat &f, int32_t band_h, int64_t src_s, int64_t dst_s) {
        const int64_t away = src_s < 0 ? -1 : 1;
        SCOPED_TRACE(testing::Message() << f.fmt << ' ' << band_h << ' ' << src_s);
        EXPECT_EQ(irsz_status(f, band_h, src_s, dst_s), TAVU_OK);
        EXPECT_EQ(irsz_status(f, band_h, src_s + away, 4), TAVU_ERR);
        EXPECT_EQ(irsz_status(f, band_h, 4, dst_s + away), f.dst_unit > 1 ? TAVU_ERR : TAVU_OK);
    };
    constexpr int64_t SMALL = INT32_MIN;
    for (const IrszFormat &f : IRSZ_FORMATS) {
        expect_last(f, 0, BIG / (16 * f.src_unit), BIG / f.dst_unit);
        expect_last(f, 0, SMALL / (16 * f.src_unit), SMALL / f.dst_unit);
        for (const int32_t band_h : {1, 2, 16, 1024, 1 << 20, 1 << 28}) {
            expect_last(f, band_h, BIG / (f.src_unit * (band_h + 16)), BIG / f.dst_unit);
        }
    }
}

template <class Object>
bool drop(Object *object) {
    if (object == nullptr) return false;
    EXPECT_EQ(object->addref(object), 2);
    EXPECT_EQ(object->getref(object), 2);
    EXPECT_EQ(object->release(object), 1);
    for (const auto method : {object->addref, object->getref, object->release}) {
        EXPECT_EQ(method(nullptr), TAVU_ERR_INVALID_ARGUMENT);
    }
    return object->release(object) == 0;
}

template <class Object>
bool drop(Object *object, void (*free_object)(Object *)) {
    const bool made = object != nullptr;
    free_object(object);
    return made;
}

// Calls make() with each of its allocations failing in turn, then with none. It creates and frees
// an object and returns whether that succeeded. `statuses` has the status after each failure,
// TAVU_OK for functions without a status.
void expect_failures(const char *name, const std::vector<int32_t> &statuses,
                     bool (*make)(int32_t *status)) {
    SCOPED_TRACE(name);
    const auto allocations = static_cast<int>(statuses.size());
    for (int i = 0; i <= allocations; i++) {
        int32_t status = TAVU_OK;
        FailingAllocations failing(i);
        EXPECT_EQ(make(&status), i == allocations);
        EXPECT_GE(failing.count, std::min(i + 1, allocations));
        EXPECT_LE(failing.count, allocations);
        EXPECT_EQ(failing.kept, 0);
        EXPECT_EQ(status, i == allocations ? TAVU_OK : statuses[static_cast<size_t>(i)]);
    }
}

TEST(FailedAllocation, ReturnsTheDocumentedStatusAndLeaksNothing) {
    constexpr int32_t RECORD = TAVU_ERR_OUT_OF_MEMORY, PAYLOAD = TAVU_ERR_BUFFER_ALLOC;
    expect_failures("malloc_align32", {TAVU_OK},
                    [](int32_t *) { return drop(tavu_malloc_align32(9), tavu_mfree_align32); });
    expect_failures("malloc_fast_align32", {TAVU_OK}, [](int32_t *) {
        return drop(tavu_malloc_fast_align32(9), tavu_mfree_fast_align32);
    });
    expect_failures("imgb", {RECORD, PAYLOAD}, [](int32_t *status) {
        return drop(tavu_imgb_create(8, 8, 11, 3, nullptr, nullptr, nullptr, nullptr, status));
    });
    expect_failures("audb", {RECORD, PAYLOAD, PAYLOAD, PAYLOAD}, [](int32_t *status) {
        return drop(tavu_audb_create(10, 3, 16, 0, 0, 0, nullptr, nullptr, status));
    });
    expect_failures("bitb", {RECORD, TAVU_ERR_BITB_ALLOC}, [](int32_t *status) {
        return drop(tavu_bitb_create(10, 0, 0, nullptr, nullptr, status));
    });
    expect_failures("mfal", {RECORD},
                    [](int32_t *status) { return drop(tavu_mfal_create(0, status)); });
    expect_failures("vdata", {RECORD}, [](int32_t *status) {
        uint8_t bytes[] = {1, 2, 3, 4};
        tavu_vdata_t vd{};
        *status = tavu_vdata_set(&vd, bytes, 4, 7);
        tavu_vdata_free(&vd);
        return *status == TAVU_OK;
    });
    expect_failures("copied vdata", {RECORD}, [](int32_t *status) {
        uint8_t bytes[] = {1, 2, 3, 4};
        const tavu_vdata_t source = {7, 4, bytes};
        tavu_vdata_t vd{};
        *status = tavu_vdata_cpy(&vd, &source);
        tavu_vdata_free(&vd);
        return *status == TAVU_OK;
    });
    expect_failures("list", {TAVU_OK, TAVU_OK, TAVU_OK},
                    [](int32_t *) { return drop(tavu_list_create(4, nullptr), tavu_list_delete); });
    expect_failures("rlist", {TAVU_OK, TAVU_OK, TAVU_OK, TAVU_OK},
                    [](int32_t *) { return drop(tavu_rlist_create(5, 3), tavu_rlist_delete); });
    expect_failures("rbuf", {TAVU_OK, TAVU_OK},
                    [](int32_t *) { return drop(tavu_rbuf_create(9), tavu_rbuf_delete); });
    expect_failures("irsz", {TAVU_IRSZ_ERR_ALLOC}, [](int32_t *status) {
        const tavu_irsz_param p = {20, 10, 4, 4, 4, 4, 2, 2, 2, nullptr};
        return drop(tavu_irsz_create(&p, status), tavu_irsz_delete);
    });
}

TEST(FailedAllocation, LeavesAGrowingListUnchanged) {
    const uint32_t element = 1;
    std::vector<uint32_t> elements = {element};
    tavu_list_t *list = tavu_list_create(4, nullptr);
    tavu_list_add(list, &element);
    const void *const cursor = tavu_list_move_first(list);
    const auto insert = [&](int32_t way) {
        if (way == 0) return tavu_list_add(list, &element);
        if (way == 1) return tavu_list_add_first(list, &element);
        return tavu_list_insert_at(list, &element, way == 2 ? -1 : tavu_list_get_cnt(list));
    };
    for (const int32_t way : {0, 1, 2, 3}) {
        {
            FailingAllocations failing(0);
            EXPECT_EQ(insert(way), nullptr);
            EXPECT_EQ(failing.kept, 0);
        }
        EXPECT_TRUE(has_links(list, elements));
        EXPECT_EQ(tavu_list_get_cur(list), cursor);
        ASSERT_NE(insert(way), nullptr);
        elements.push_back(element);
        EXPECT_EQ(tavu_list_get_cnt(list), static_cast<int32_t>(elements.size()));
    }
    tavu_list_delete(list);
}

// Creation does not check the allocation of the carried row; only band mode has one.
TEST(FailedAllocation, ResizerWithoutACarriedRowIsStillDeleted) {
    const tavu_irsz_param p = {20, 11, 4, 4, 4, 4, 2, 2, 2, nullptr};
    FailingAllocations failing(1);
    int32_t err = 1;
    tavu_irsz_t *rsz = tavu_irsz_create(&p, &err);
    ASSERT_NE(rsz, nullptr);
    EXPECT_EQ(err, TAVU_OK);
    EXPECT_EQ(rsz->carry_buf, nullptr);
    tavu_irsz_delete(rsz);
    EXPECT_EQ(failing.kept, 0);
}

}  // namespace
