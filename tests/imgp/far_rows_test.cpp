// Rows so far apart that products of rows and strides do not fit in 32 bits. Only the rows are memory;
// the addresses between them are unreadable. For processors with 64-bit addresses.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <map>

#include "memory.h"
#include "resize_kernels.h"

namespace {

constexpr int ROWS = 3, ROW_BYTES = 4096;
constexpr int32_t FAR = INT32_MAX - 63, NEAR = ROW_BYTES;

// ROWS rows of ROW_BYTES, `distance` bytes apart, upwards or downwards.
class Rows {
  public:
    explicit Rows(int64_t distance, int rows = ROWS) : distance_(distance), rows_(rows) {
        const auto page = static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
        const int64_t span = std::abs(distance) * (rows - 1);
        size_ = (static_cast<uint64_t>(span) + ROW_BYTES + page - 1) / page * page;
        void *map =
            mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (map == MAP_FAILED) throw std::bad_alloc();
        map_ = static_cast<uint8_t *>(map);
        first_ = map_ + (distance < 0 ? span : 0);
        for (int i = 0; i < rows; i++) {
            const auto at = static_cast<uint64_t>(row(i) - map_), from = at / page * page;
            if (mprotect(map_ + from, at + ROW_BYTES - from, PROT_READ | PROT_WRITE) != 0) {
                throw std::bad_alloc();
            }
        }
    }
    Rows(const Rows &) = delete;
    Rows &operator=(const Rows &) = delete;
    ~Rows() { munmap(map_, size_); }

    uint8_t *row(int i) const { return first_ + i * distance_; }
    void fill(const Bytes &content) const {
        for (int i = 0; i < rows_; i++) memcpy(row(i), content.data() + ROW_BYTES * i, ROW_BYTES);
    }
    Bytes bytes() const {
        Bytes all;
        for (int i = 0; i < rows_; i++) all.insert(all.end(), row(i), row(i) + ROW_BYTES);
        return all;
    }

  private:
    int64_t distance_;
    int rows_;
    uint64_t size_;
    uint8_t *map_, *first_;
};

// The rows of a plane, which are kept: mapping gigabytes takes its time.
const Rows &plane(int number, int64_t distance, bool random) {
    static std::map<std::pair<int, int64_t>, Rows> planes;
    const Rows &rows = planes.try_emplace({number, distance}, distance).first->second;
    rows.fill(random ? random_bytes(ROWS * ROW_BYTES, static_cast<unsigned>(number))
                     : Bytes(ROWS * ROW_BYTES));
    return rows;
}

struct Size {
    int32_t w, h;
};

// Runs a conversion on rows of these strides; its targets.
Bytes convert(const CscKernel &kernel, tavu_fn_csc_t routine, Size size, int32_t code,
              int32_t src_stride, int32_t dst_stride) {
    constexpr int32_t W = 300;
    uint8_t *src[4] = {}, *dst[4] = {};
    for (int p = 0; p < kernel.src_planes; p++) {
        const bool packed = kernel.src_step > 1;
        src[p] = plane(packed ? 0 : p, src_stride, true).row(0) + (packed ? p : 0);
    }
    std::vector<const Rows *> targets;
    for (size_t p = 0; p < kernel.dst_bytes.size(); p++) {
        const bool units = p == 0 && kernel.dst_bytes[0] == 2;
        const int64_t distance = units ? 2 * (int64_t{dst_stride} - W) : dst_stride;
        targets.push_back(&plane(4 + static_cast<int>(p), distance, false));
        dst[code == 401 || code == 501 ? 2 : p] = targets.back()->row(0);
    }
    const int32_t src_strides[4] = {src_stride, src_stride, src_stride, src_stride},
                  dst_strides[4] = {dst_stride, dst_stride, dst_stride, dst_stride};
    routine(src, W, ROWS, src_strides, 13, dst, size.w, size.h, dst_strides, code);
    Bytes all;
    for (const Rows *target : targets) {
        const Bytes bytes = target->bytes();
        all.insert(all.end(), bytes.begin(), bytes.end());
    }
    return all;
}

void expect_same_far(const CscKernel &kernel, Size size) {
    for (const CscVariant &variant : kernel.variants) {
        for (const int32_t code : kernel.codes) {
            const auto run = [&](int32_t src_stride, int32_t dst_stride) {
                return convert(kernel, variant.run, size, code, src_stride, dst_stride);
            };
            const Bytes near = run(NEAR, NEAR);
            EXPECT_NE(near, Bytes(near.size()));
            EXPECT_EQ(run(FAR, -FAR), near) << kernel.name << ' ' << variant.level << ' ' << code;
            EXPECT_EQ(run(-FAR, FAR), near) << kernel.name << ' ' << variant.level << ' ' << code;
        }
    }
}

TEST(FarRows, Conversions) {
    auto kernels = csc_kernels();
    const auto add = [&](const char *name, tavu_fn_csc_t routine, int planes,
                         const std::vector<int> &bytes, int32_t code) {
        kernels.push_back({name, routine, {{"exported", routine}}, planes, 1, bytes, {code}});
    };
    add("copy", tavu_csc_yuv444x_to_yuv444x, 4, {1, 1, 1, 1}, 43);
    add("streams", tavu_csc_yuv444a8_to_rgba5658, 4, {2, 3}, 430);
    add("grey streams", tavu_csc_r8g8b8a8_to_rgba5658, 4, {2, 3}, 430);
    for (const CscKernel &kernel : kernels) expect_same_far(kernel, {0, 0});
    // Growing, halving, columns of several windows, and too narrow for vectors.
    for (const CscKernel &kernel : csc_rsz_kernels()) {
        for (const Size size : {Size{400, 3}, {150, 2}, {40, 3}, {5, 3}}) {
            expect_same_far(kernel, size);
        }
    }
}

TEST(FarRows, ResizedImages) {
    for (const ResizeKernel &kernel : resize_kernels()) {
        for (const Size size : {Size{400, 3}, {150, 2}, {40, 3}, {5, 3}}) {
            for (const ResizeVariant &variant : kernel.variants) {
                const auto run = [&](int32_t src_line, int32_t dst_line) {
                    const int64_t unit = kernel.line_unit;
                    int32_t x, y;
                    bilinear_rsz_step_size(300, ROWS, size.w, size.h, &x, &y);
                    const Rows &dst = plane(4, dst_line * unit, false);
                    variant.full(plane(0, src_line * unit, true).row(0), src_line, size.w, size.h,
                                 dst_line, dst.row(0), x, y);
                    return dst.bytes();
                };
                const Bytes near = run(NEAR, NEAR);
                EXPECT_EQ(run(FAR, -FAR), near) << kernel.name << ' ' << variant.level;
                EXPECT_EQ(run(-FAR, FAR), near) << kernel.name << ' ' << variant.level;
            }
        }
    }
}

// In bands, where the target may be as large, and a band of 5-6-5 pixels is up to 4 GiB.
TEST(FarRows, ResizedBands) {
    constexpr int32_t BAND_H = 64, SRC_S = INT32_MAX / (BAND_H + 16);
    const Rows band(2 * int64_t{SRC_S}, BAND_H);
    const Bytes content = random_bytes(BAND_H * ROW_BYTES, 1);
    band.fill(content);
    const auto run = [](int32_t src_s, const uint8_t *src, int32_t dst_s) {
        const Rows &dst = plane(4, 2 * int64_t{dst_s}, false);
        const tavu_irsz_param param = {
            TAVU_IRSZ_5B6B5B, TAVU_IRSZ_MODE_LINE, 300, BAND_H, src_s, BAND_H, 70, ROWS, dst_s,
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
    for (const int32_t stride : {FAR, -FAR}) {
        const Rows &src = plane(0, stride, true), &dst = plane(4, -stride, false);
        tavu_mcpy_pic(dst.row(0), src.row(0), -stride, stride, ROW_BYTES, ROWS);
        EXPECT_EQ(dst.bytes(), src.bytes());
    }
}

// `size` bytes of addresses at which the same memory repeats.
class Repeated {
  public:
    static constexpr size_t PIECE = 1 << 20;
    explicit Repeated(size_t size) : size_(size) {
        void *map =
            mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        const int file = memfd_create("repeated", 0);
        if (map == MAP_FAILED || ftruncate(file, PIECE) != 0) throw std::bad_alloc();
        data = static_cast<uint8_t *>(map);
        for (size_t at = 0; at < size; at += PIECE) {
            if (mmap(data + at, PIECE, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) ==
                MAP_FAILED) {
                throw std::bad_alloc();
            }
        }
        close(file);
    }
    Repeated(const Repeated &) = delete;
    Repeated &operator=(const Repeated &) = delete;
    ~Repeated() { munmap(data, size_); }
    uint8_t *data;

  private:
    size_t size_;
};

TEST(FarRows, CopiedRunsOfMoreThan2GiB) {
    constexpr int32_t WIDTH = 1 << 20, HEIGHT = 2049;
    const Repeated src(size_t{WIDTH} * HEIGHT), dst(size_t{WIDTH} * HEIGHT);
    const Bytes content = random_bytes(Repeated::PIECE, 1);
    memcpy(src.data, content.data(), content.size());
    tavu_mcpy_pic(dst.data, src.data, WIDTH, WIDTH, WIDTH, HEIGHT);
    EXPECT_EQ(memcmp(dst.data, content.data(), content.size()), 0);
}

}  // namespace
