// Compares block metrics with those of video encoders, on blocks at varying places in two noisy
// planes.
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <vector>

#include "kernels.h"
#include "require.h"
#include "rows.h"

namespace {

constexpr int32_t STRIDE = 192;

struct Planes {
    Planes() {
        for (size_t i = 0; i < sizeof a; i++) {
            a[i] = static_cast<uint8_t>(i * 2654435761U >> 13);
            b[i] = static_cast<uint8_t>(i * 2246822519U >> 11);
        }
    }
    // Positions that an encoder would try: one block, slightly displaced in the other plane.
    const uint8_t *next_a() { return a + (turn & 3) * 32; }
    const uint8_t *next_b() {
        turn++;
        return b + (turn & 3) * STRIDE + (turn * 7 & 15);
    }
    // The encoders' SSD needs aligned blocks.
    const uint8_t *next_aligned_b() {
        turn++;
        return b + (turn & 3) * STRIDE + (turn & 1) * 32;
    }

    alignas(64) uint8_t a[STRIDE * 80], b[STRIDE * 80];
    alignas(64) int16_t diff[64 * 64];
    uint32_t turn = 0;
} planes;

// The library's result for two blocks, by row.
std::map<std::string, std::function<int32_t(const uint8_t *, const uint8_t *)>> ours;

// The mean difference of another metric from the library's, as a part of the side's name.
template <class Metric>
std::string difference(const std::string &row, Metric theirs) {
    constexpr int TURNS = 64;
    double sum = 0;
    for (int i = 0; i < TURNS; i++) {
        const uint8_t *a = planes.next_a(), *b = planes.next_aligned_b();
        sum += std::abs(ours[row](a, b) - theirs(a, b));
    }
    if (sum == 0) return "";
    return " (mean difference " + std::to_string(sum / TURNS).substr(0, 4) + ")";
}

void add_block(const std::string &row, const std::string &who, tavu_metric_block_t *metric) {
    ours[row] = [metric](const uint8_t *a, const uint8_t *b) {
        return metric(a, b, STRIDE, STRIDE);
    };
    add_side(row, who, [metric] {
        const uint8_t *a = planes.next_a();
        return metric(a, planes.next_b(), STRIDE, STRIDE);
    });
}

void add_area(const std::string &row, tavu_metric_area_t *metric, int32_t size) {
    ours[row] = [metric, size](const uint8_t *a, const uint8_t *b) {
        return metric(size, size, a, b, STRIDE, STRIDE);
    };
    add_side(row, "tavu", [metric, size] {
        const uint8_t *a = planes.next_a();
        return metric(size, size, a, planes.next_b(), STRIDE, STRIDE);
    });
}

void add_ssd(int32_t size) {
    const std::string row = "ssd/" + std::to_string(size);
    ours[row] = [size](const uint8_t *a, const uint8_t *b) {
        return tavu_ssd(size, size, a, b, STRIDE, STRIDE);
    };
    add_side(row, "tavu", [size] {
        const uint8_t *a = planes.next_a();
        return tavu_ssd(size, size, a, planes.next_aligned_b(), STRIDE, STRIDE);
    });
}

void add_diff(const std::string &row, tavu_diff_block_t *diff, int32_t size) {
    add_side(row, "tavu", [diff, size] {
        const uint8_t *a = planes.next_a();
        diff(a, planes.next_b(), STRIDE, STRIDE, size, planes.diff);
    });
}

// Stops after a given row at every position: each threshold is the sum of these rows minus 1.
class EarlySkip {
  public:
    EarlySkip(int32_t size, int32_t stop) : size_(size) {
        for (uint32_t i = 0; i < PLACES; i++) {
            const uint8_t *a = planes.next_a(), *b = planes.next_b();
            thresholds_[planes.turn % PLACES] =
                tavu_sad_eskip(size, stop, a, b, STRIDE, STRIDE, INT32_MAX) - 1;
        }
    }
    int32_t operator()() const {
        const uint8_t *a = planes.next_a(), *b = planes.next_b();
        return tavu_sad_eskip(size_, size_, a, b, STRIDE, STRIDE,
                              thresholds_[planes.turn % PLACES]);
    }

  private:
    static constexpr uint32_t PLACES = 16;
    int32_t size_, thresholds_[PLACES];
};

void add_early_skips() {
    for (const int32_t size : {16, 64}) {
        const std::string row = "sad_eskip/" + std::to_string(size) + 'x' + std::to_string(size);
        add_side(row + " whole", "tavu", [size] {
            const uint8_t *a = planes.next_a();
            return tavu_sad_eskip(size, size, a, planes.next_b(), STRIDE, STRIDE, INT32_MAX);
        });
        for (const int32_t stop : {size / 4, size / 2}) {
            const std::string part = row + " to row " + std::to_string(stop);
            ours[part] = [size, stop](const uint8_t *a, const uint8_t *b) {
                return tavu_sad_eskip(size, stop, a, b, STRIDE, STRIDE, INT32_MAX);
            };
            add_side(part, "tavu", EarlySkip(size, stop));
        }
    }
    add_block("sad_eskip/16x16 whole", "plain SAD of these rows", tavu_sad16x16);
    add_block("sad_eskip/64x64 whole", "plain SAD of these rows", tavu_sad64x64);
    add_block("sad_eskip/16x16 to row 8", "plain SAD of these rows", tavu_sad16x8);
    add_block("sad_eskip/64x64 to row 32", "plain SAD of these rows", tavu_sad64x32);
}

}  // namespace

#if TAVU_HAVE_X264

extern "C" {
using EncoderMetric = int(const uint8_t *, intptr_t, const uint8_t *, intptr_t);
using EncoderDiff = void(int16_t *, intptr_t, const uint8_t *, const uint8_t *, intptr_t, intptr_t);
EncoderMetric x264_8_pixel_sad_4x4_mmx2, x264_8_pixel_sad_8x8_mmx2, x264_8_pixel_sad_16x16_sse2,
    x264_8_pixel_sad_4x4_avx512, x264_8_pixel_sad_8x8_avx512, x264_8_pixel_sad_16x16_avx512,
    x265_pixel_sad_32x32_avx2, x265_pixel_sad_64x64_avx2, x265_pixel_sad_64x64_avx512,
    x265_pixel_sad_16x4_sse2, x265_pixel_sad_64x16_avx2, x265_pixel_sad_64x16_avx512,
    x264_8_pixel_ssd_8x8_avx, x264_8_pixel_ssd_16x16_avx2, x265_pixel_ssd_64x64_avx2,
    x265_pixel_satd_4x4_avx, x265_pixel_satd_4x4_avx512, x265_pixel_sa8d_8x8_avx2,
    x265_pixel_sa8d_8x8_avx512, x265_pixel_satd_16x16_avx2, x265_pixel_satd_16x16_avx512,
    x265_pixel_satd_64x64_avx2, x265_pixel_satd_64x64_avx512, x265_pixel_sa8d_16x16_avx2,
    x265_pixel_sa8d_64x64_avx;
EncoderDiff x265_pixel_sub_ps_8x8_sse4, x265_pixel_sub_ps_16x16_avx2, x265_pixel_sub_ps_64x64_avx2,
    x265_pixel_sub_ps_64x64_avx512;
}

namespace {

bool runs(const char *level) {
    if (strcmp(level, "avx512") == 0) return __builtin_cpu_supports("avx512bw");
    return strcmp(level, "sse4") == 0 || __builtin_cpu_supports("avx2");
}

void add_peer(const std::string &row, const char *who, const char *level, EncoderMetric *metric) {
    if (!runs(level)) return;
    const auto theirs = [metric](const uint8_t *a, const uint8_t *b) {
        return metric(a, STRIDE, b, STRIDE);
    };
    add_side(row, std::string(who) + ' ' + level + difference(row, theirs), [metric] {
        const uint8_t *a = planes.next_a();
        return metric(a, STRIDE, planes.next_b(), STRIDE);
    });
}

void add_ssd_peer(int32_t size, const std::string &who, EncoderMetric *ssd) {
    if (!runs("avx2")) return;
    const std::string row = "ssd/" + std::to_string(size);
    const auto theirs = [ssd](const uint8_t *a, const uint8_t *b) {
        return ssd(a, STRIDE, b, STRIDE);
    };
    add_side(row, who + difference(row, theirs), [ssd] {
        const uint8_t *a = planes.next_a();
        return ssd(a, STRIDE, planes.next_aligned_b(), STRIDE);
    });
}

void require_equal(const std::string &row, EncoderDiff *diff, int32_t size) {
    std::vector<int16_t> expected(static_cast<size_t>(size * size));
    const uint8_t *a = planes.next_a(), *b = planes.next_b();
    tavu_diff(size, size, a, b, STRIDE, STRIDE, size, expected.data());
    diff(planes.diff, size, a, b, STRIDE, STRIDE);
    require(memcmp(expected.data(), planes.diff, expected.size() * 2) == 0, row);
}

void add_peer(const std::string &row, const char *level, EncoderDiff *diff, int32_t size) {
    if (!runs(level)) return;
    require_equal(row, diff, size);
    add_side(row, std::string("x265 ") + level, [diff, size] {
        const uint8_t *a = planes.next_a();
        diff(planes.diff, size, a, planes.next_b(), STRIDE, STRIDE);
    });
}

void add_peers() {
    add_peer("sad/4x4", "x264", "sse4", x264_8_pixel_sad_4x4_mmx2);
    add_peer("sad/4x4", "x264", "avx512", x264_8_pixel_sad_4x4_avx512);
    add_peer("sad/8x8", "x264", "sse4", x264_8_pixel_sad_8x8_mmx2);
    add_peer("sad/8x8", "x264", "avx512", x264_8_pixel_sad_8x8_avx512);
    add_peer("sad/16x16", "x264", "sse4", x264_8_pixel_sad_16x16_sse2);
    add_peer("sad/16x16", "x264", "avx512", x264_8_pixel_sad_16x16_avx512);
    add_peer("sad/32x32", "x265", "avx2", x265_pixel_sad_32x32_avx2);
    add_peer("sad/64x64", "x265", "avx2", x265_pixel_sad_64x64_avx2);
    add_peer("sad/64x64", "x265", "avx512", x265_pixel_sad_64x64_avx512);
    add_peer("sad_eskip/16x16 to row 4", "x265", "sse4", x265_pixel_sad_16x4_sse2);
    add_peer("sad_eskip/64x64 to row 16", "x265", "avx2", x265_pixel_sad_64x16_avx2);
    add_peer("sad_eskip/64x64 to row 16", "x265", "avx512", x265_pixel_sad_64x16_avx512);
    add_ssd_peer(8, "x264 avx", x264_8_pixel_ssd_8x8_avx);
    add_ssd_peer(16, "x264 avx2", x264_8_pixel_ssd_16x16_avx2);
    add_ssd_peer(64, "x265 avx2", x265_pixel_ssd_64x64_avx2);
    add_peer("satd/4x4", "x265", "avx2", x265_pixel_satd_4x4_avx);
    add_peer("satd/4x4", "x265", "avx512", x265_pixel_satd_4x4_avx512);
    add_peer("satd/8x8", "x265", "avx2", x265_pixel_sa8d_8x8_avx2);
    add_peer("satd/8x8", "x265", "avx512", x265_pixel_sa8d_8x8_avx512);
    add_peer("satd/16x16 of 4x4", "x265", "avx2", x265_pixel_satd_16x16_avx2);
    add_peer("satd/16x16 of 4x4", "x265", "avx512", x265_pixel_satd_16x16_avx512);
    add_peer("satd/64x64 of 4x4", "x265", "avx2", x265_pixel_satd_64x64_avx2);
    add_peer("satd/64x64 of 4x4", "x265", "avx512", x265_pixel_satd_64x64_avx512);
    add_peer("satd/16x16 of 8x8", "x265", "avx2", x265_pixel_sa8d_16x16_avx2);
    add_peer("satd/64x64 of 8x8", "x265", "avx2", x265_pixel_sa8d_64x64_avx);
    add_peer("diff/8x8", "sse4", x265_pixel_sub_ps_8x8_sse4, 8);
    add_peer("diff/16x16", "avx2", x265_pixel_sub_ps_16x16_avx2, 16);
    add_peer("diff/64x64", "avx2", x265_pixel_sub_ps_64x64_avx2, 64);
    add_peer("diff/64x64", "avx512", x265_pixel_sub_ps_64x64_avx512, 64);
}

}  // namespace

#else

static void add_peers() {}

#endif

void add_metric_rows() {
    for (const auto &kernel : block_kernels()) {
        if (kernel.width != kernel.height || kernel.width == 2) continue;
        std::string row = kernel.name;  // "sad4x4" as "sad/4x4"
        row.insert(row.find_first_of("0123456789"), "/");
        add_block(row, "tavu", kernel.variants[0].run);
    }
    add_early_skips();
    add_diff("diff/8x8", tavu_diff8x8, 8);
    add_diff("diff/16x16", tavu_diff16x16, 16);
    add_diff("diff/64x64", tavu_diff64x64, 64);
    for (const int size : {8, 16, 64}) add_ssd(size);
    for (const int size : {16, 64}) {
        const std::string shape = std::to_string(size) + 'x' + std::to_string(size);
        add_area("satd/" + shape + " of 4x4", tavu_satd, size);
        add_area("satd/" + shape + " of 8x8", tavu_satd2, size);
    }
    add_peers();
}
