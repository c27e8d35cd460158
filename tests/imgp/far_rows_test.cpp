// Rows so far apart that products of rows and strides do not fit in 32 bits. Only the rows have
// memory; the addresses between them are unreadable. For processors with 64-bit addresses.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <map>
#include <string>

#include "memory.h"
#include "picture.h"

namespace {

constexpr int ROWS = 3, ROW_BYTES = 4096;
constexpr int32_t FAR = INT32_MAX - 63, NEAR = ROW_BYTES;

// Reserves addresses without memory; they are never released.
uint8_t *reserve(uint64_t size) {
    constexpr int FLAGS = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    void *map = mmap(nullptr, size, PROT_NONE, FLAGS, -1, 0);
    if (map == MAP_FAILED) throw std::bad_alloc();
    return static_cast<uint8_t *>(map);
}

// Rows of ROW_BYTES, `distance` bytes apart, upwards or downwards.
struct Rows {
    explicit Rows(int64_t distance_of_rows, int count = ROWS)
        : distance(distance_of_rows), rows(count) {
        const int64_t span = std::abs(distance) * (rows - 1), page = sysconf(_SC_PAGESIZE);
        first = reserve(static_cast<uint64_t>(span + ROW_BYTES)) + (distance < 0 ? span : 0);
        for (int i = 0; i < rows; i++) {
            const auto before = reinterpret_cast<intptr_t>(row(i)) % page;
            const auto size = static_cast<size_t>(before + ROW_BYTES);
            if (mprotect(row(i) - before, size, PROT_READ | PROT_WRITE) != 0)
                throw std::bad_alloc();
        }
    }
    uint8_t *row(int i) const { return first + i * distance; }
    void fill(const Bytes &content) const {
        for (int i = 0; i < rows; i++) memcpy(row(i), content.data() + ROW_BYTES * i, ROW_BYTES);
    }
    Bytes bytes() const {
        Bytes all;
        for (int i = 0; i < rows; i++) all.insert(all.end(), row(i), row(i) + ROW_BYTES);
        return all;
    }

    int64_t distance;
    int rows;
    uint8_t *first;
};

// The rows of a plane; cached, because mapping gigabytes is slow.
const Rows &plane(int number, int64_t distance, bool random) {
    static std::map<std::pair<int, int64_t>, Rows> planes;
    const Rows &rows = planes.try_emplace({number, distance}, distance).first->second;
    rows.fill(random ? random_bytes(ROWS * ROW_BYTES, static_cast<unsigned>(number))
                     : Bytes(ROWS * ROW_BYTES));
    return rows;
}

// run(src_stride, dst_stride) returns the bytes that it wrote.
template <class Run>
void expect_same_far(const std::string &name, Run run) {
    const Bytes near = run(NEAR, NEAR);
    EXPECT_NE(near, Bytes(near.size())) << name;
    EXPECT_EQ(run(FAR, -FAR), near) << name;
    EXPECT_EQ(run(-FAR, FAR), near) << name;
}

constexpr int32_t SRC_W = 300;
struct Size {
    int32_t w, h;
};
// Enlarging, halving, columns of several windows, and too narrow for vectors.
constexpr Size SIZES[] = {{400, 3}, {150, 2}, {40, 3}, {5, 3}};

// Runs a conversion on rows of these strides; returns its targets.
Bytes convert(const CscKernel &kernel, tavu_fn_csc_t routine, Size size, int32_t code,
              int32_t src_stride, int32_t dst_stride) {
    PicturePlanes planes(kernel, code, SRC_W, ROWS, size.w, size.h);
    for (int p = 0; p < kernel.src_planes; p++) {
        const bool packed = kernel.src_step > 1;
        planes.src[p] = plane(packed ? 0 : p, src_stride, true).row(0) + (packed ? p : 0);
        planes.src_stride[p] = src_stride;
    }
    std::vector<const Rows *> targets;
    for (size_t p = 0; p < kernel.dst_bytes.size(); p++) {
        const int64_t distance = planes.row_distance(p, dst_stride);
        targets.push_back(&plane(4 + static_cast<int>(p), distance, false));
        planes.dst_pointer(p) = targets.back()->row(0);
        planes.dst_stride[p] = dst_stride;
    }
    planes.convert(routine);
    Bytes all;
    for (const Rows *target : targets) {
        const Bytes bytes = target->bytes();
        all.insert(all.end(), bytes.begin(), bytes.end());
    }
    return all;
}

void convert_far(const CscKernel &kernel, Size size) {
    for (const CscVariant &variant : kernel.variants) {
        for (const int32_t code : kernel.codes) {
            expect_same_far(std::string(kernel.name) + ' ' + variant.level,
                            [&](int32_t s, int32_t d) {
                                return convert(kernel, variant.run, size, code, s, d);
                            });
        }
    }
}

TEST(FarRows, Conversions) {
    auto kernels = csc_kernels();
    const auto add = [&](const char *name, tavu_fn_csc_t routine, const std::vector<int> &bytes,
                         int32_t code) {
        kernels.push_back({name, routine, {{"exported", routine}}, 4, 1, bytes, {code}});
    };
    add("copy", tavu_csc_yuv444x_to_yuv444x, {1, 1, 1, 1}, 43);
    add("streams", tavu_csc_yuv444a8_to_rgba5658, {2, 3}, 430);
    add("grey streams", tavu_csc_r8g8b8a8_to_rgba5658, {2, 3}, 430);
    for (const CscKernel &kernel : kernels) convert_far(kernel, {0, 0});
    for (const CscKernel &kernel : csc_rsz_kernels()) {
        for (const Size size : SIZES) convert_far(kernel, size);
    }
}

TEST(FarRows, ResizedImages) {
    for (const ResizeKernel &kernel : resize_kernels()) {
        for (const auto &[w, h] : SIZES) {
            int32_t x, y;
            bilinear_rsz_step_size(SRC_W, ROWS, w, h, &x, &y);
            for (const ResizeVariant &variant : kernel.variants) {
                const auto run = [&, w = w, h = h](int32_t src_line, int32_t dst_line) {
                    const int64_t unit = kernel.line_unit;
                    const Rows &dst = plane(4, dst_line * unit, false);
                    variant.full(plane(0, src_line * unit, true).row(0), src_line, w, h, dst_line,
                                 dst.row(0), x, y);
                    return dst.bytes();
                };
                expect_same_far(std::string(kernel.name) + ' ' + variant.level, run);
            }
        }
    }
}

// In band mode the target may be as large, and a band of 5-6-5 pixels up to 4 GiB.
TEST(FarRows, ResizedBands) {
    constexpr int32_t BAND_H = 64, SRC_S = INT32_MAX / (BAND_H + 16);
    const Rows band(2 * int64_t{SRC_S}, BAND_H);
    const Bytes content = random_bytes(BAND_H * ROW_BYTES, 1);
    band.fill(content);
    const auto run = [](int32_t src_s, const uint8_t *src, int32_t dst_s) {
        const Rows &dst = plane(4, 2 * int64_t{dst_s}, false);
        const tavu_irsz_param param = {
            TAVU_IRSZ_5B6B5B, TAVU_IRSZ_MODE_LINE, SRC_W, BAND_H, src_s, BAND_H, 70, ROWS, dst_s,
            dst.row(0)};
        tavu_irsz_t *rsz = tavu_irsz_create(&param, nullptr);
        tavu_irsz(rsz, src, 0, BAND_H);
        EXPECT_EQ(rsz->out_row, ROWS);
        tavu_irsz_delete(rsz);
        return dst.bytes();
    };
    const Bytes near = run(ROW_BYTES / 2, content.data(), NEAR);
    EXPECT_EQ(run(SRC_S, band.row(0), FAR), near);
    EXPECT_EQ(run(SRC_S, band.row(0), -FAR), near);
}

TEST(FarRows, CopiedPictures) {
    expect_same_far("mcpy_pic", [](int32_t src_stride, int32_t dst_stride) {
        const Rows &src = plane(0, src_stride, true), &dst = plane(4, dst_stride, false);
        tavu_mcpy_pic(dst.row(0), src.row(0), dst_stride, src_stride, ROW_BYTES, ROWS);
        EXPECT_EQ(dst.bytes(), src.bytes());
        return dst.bytes();
    });
}

TEST(FarRows, CopiedRunsOfMoreThan2GiB) {
    constexpr int32_t WIDTH = 1 << 20, HEIGHT = 2049;
    uint8_t *pictures[2];
    for (uint8_t *&picture : pictures) {  // the same memory in every row
        picture = reserve(uint64_t{WIDTH} * HEIGHT);
        const int file = memfd_create("row", 0);
        ASSERT_EQ(ftruncate(file, WIDTH), 0);
        for (size_t y = 0; y < HEIGHT; y++) {
            ASSERT_NE(mmap(picture + y * WIDTH, WIDTH, PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_FIXED, file, 0),
                      MAP_FAILED);
        }
        close(file);
    }
    const Bytes content = random_bytes(WIDTH, 1);
    memcpy(pictures[0], content.data(), content.size());
    tavu_mcpy_pic(pictures[1], pictures[0], WIDTH, WIDTH, WIDTH, HEIGHT);
    EXPECT_EQ(memcmp(pictures[1], content.data(), content.size()), 0);
    for (uint8_t *picture : pictures) munmap(picture, size_t{WIDTH} * HEIGHT);
}

}  // namespace
