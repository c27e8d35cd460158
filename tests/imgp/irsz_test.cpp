#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <random>

#include "imgp/resize_reference.h"

namespace {

// Resizes with every level of the driver and with the kernel; all results must be equal.
Bytes resize(const Reference &r, bool *complete = nullptr) {
    Bytes target = resize_by(r.f.variants[0].driver, r, complete);
    for (size_t i = 1; i < r.f.variants.size(); i++) {
        const ResizeVariant &v = r.f.variants[i];
        EXPECT_EQ(resize_by(v.driver, r, complete), target) << v.level << r;
    }
    if (r.band_h == 0) {
        EXPECT_EQ(resize_by(r.f.variants[0].full, r), target) << r;
    }
    return target;
}

// The number of geometries is TAVU_GEOMETRIES, or as many as fit in a few seconds.
bool enough(int geometries) {
    static const clock_t start = clock();
    const char *count = getenv("TAVU_GEOMETRIES");
    return count != nullptr ? geometries >= strtol(count, nullptr, 10)
                            : clock() - start > 4 * CLOCKS_PER_SEC;
}

TEST(Irsz, TheLoopOfTheHeaderGivesTheWholeImageIfBandsSuffice) {
    std::mt19937 random(3);
    const auto pick = [&random](unsigned n) { return 1 + static_cast<int>(random() % n); };
    int sufficed = 0, differ = 0;
    while (!enough(sufficed)) {
        const int steep = sufficed % 16 == 0 ? 10 : 1;
        const Size src{pick(40) * steep, pick(200), pick(4) - 1};
        const Size dst{pick(60), pick(300), pick(4) - 1};
        Reference r(FORMATS[static_cast<size_t>(sufficed % 5)], src, dst, 2 << random() % 7,
                    static_cast<unsigned>(random()));
        bool complete = false;
        const Bytes target = resize(r, &complete);
        if (!r.bands_suffice()) {
            // Either no row is written or all of them, from any source rows.
            ASSERT_EQ(complete, r.band_h >= 1 << r.rows().shift) << r;
            const Bytes nothing(target.size(), GuardedBytes::CANARY);
            ASSERT_EQ(target == nothing, !complete) << r;
            differ += target != r.run();
            continue;
        }
        sufficed++;
        ASSERT_TRUE(complete) << r;
        ASSERT_EQ(target, r.run()) << r;
        r.band_h = 0;
        const bool alike = r.f.format != TAVU_IRSZ_5B6B5B && r.f.format != TAVU_IRSZ_8B8B8B_5B6B5B;
        ASSERT_EQ(resize(r), alike ? target : r.run()) << r;
    }
    EXPECT_GT(differ, sufficed / 50);
}

// Includes steps of 0, where a neighbour is read only if it has weight.
TEST(Irsz, AnyWeights) {
    std::mt19937 random(4);
    const auto pick = [&random](unsigned n) { return static_cast<int>(random() % n); };
    const Bytes standard(tavu_irsz_tbl_rsz_weight, tavu_irsz_tbl_rsz_weight + 256);
    EXPECT_EQ(standard, bilinear_weights());
    for (int round = 0; round < 1000 && !HasFailure(); round++) {
        Bytes weights = standard;
        for (int n = 1 + pick(4) * 20; n > 0; n--) {  // of the first groups, or of all groups
            const auto group = static_cast<size_t>(4 * pick(n > 9 ? 64 : 9));
            for (size_t k = 0; k < 4; k++) {
                weights[group + k] = static_cast<uint8_t>(pick(2) * pick(17));
            }
        }
        memcpy(tavu_irsz_tbl_rsz_weight, weights.data(), 256);
        const Reference r(FORMATS[static_cast<size_t>(round % 5)],
                          {1 + pick(3) * pick(9), 1 + pick(2) * pick(9), pick(3)},
                          {1 + pick(40), 1 + pick(5), pick(2)}, round % 2 == 0 ? 0 : 32,
                          static_cast<unsigned>(round), weights);
        EXPECT_EQ(resize(r), r.run()) << r;
    }
    memcpy(tavu_irsz_tbl_rsz_weight, standard.data(), 256);
}

TEST(Irsz, RecordHoldsTheGeometry) {
    uint8_t dst[7 * 20 * 3];
    const tavu_irsz_param p = {21, 11, 10, 80, 12, 4, 5, 20, 7, dst};
    const Resizer rsz(tavu_irsz_create(&p, nullptr));
    ASSERT_NE(rsz, nullptr);
    const int32_t fields[] = {rsz->fmt,        rsz->mode,      rsz->step_x,    rsz->step_y,
                              rsz->pos_y,      rsz->next_x,    rsz->line_size, rsz->dst_w,
                              rsz->dst_h,      rsz->dst_line,  rsz->shift_x,   rsz->shift_y,
                              rsz->next_row,   rsz->band_size, rsz->out_row,   rsz->upscale,
                              rsz->carry_next, rsz->pending,   rsz->reuse};
    const int32_t expected[] = {
        21, 11, (9 << 18) / 5, (39 << 18) / 20, 0, 1, 36, 5, 20, 21, 0, 1, 72, 144, 0, 0, 0, 0, 0};
    EXPECT_EQ(memcmp(fields, expected, sizeof expected), 0);
    EXPECT_EQ(rsz->dst, dst);
}

TEST(Irsz, CreationRefusesInvalidParameters) {
    uint8_t dst[4];
    using P = tavu_irsz_param;
    const P good = {20, 11, 4, 4, 4, 4, 2, 2, 2, dst};
    const auto status = [](P p, std::initializer_list<std::pair<int32_t P::*, int32_t>> changes) {
        for (const auto &[field, value] : changes) p.*field = value;
        int32_t err = 1;
        const Resizer rsz(tavu_irsz_create(&p, &err));
        EXPECT_EQ(rsz != nullptr, err == 0);
        return err;
    };
    EXPECT_EQ(status(good, {}), 0);
    EXPECT_EQ(status(good, {{&P::mode, 9}, {&P::fmt, 22}}), TAVU_IRSZ_ERR_MODE);
    for (int fmt : {19, 22, 24, 28, 30}) {
        EXPECT_EQ(status(good, {{&P::fmt, fmt}}), TAVU_IRSZ_ERR_FORMAT);
    }
    for (auto field : {&P::src_w, &P::src_h, &P::dst_w, &P::dst_h, &P::band_h, &P::src_s}) {
        EXPECT_EQ(status(good, {{field, 0}}), TAVU_ERR);
        EXPECT_EQ(status(good, {{field, INT32_MIN}}), TAVU_ERR);
    }
    EXPECT_EQ(status(good, {{&P::band_h, 3}}), TAVU_ERR);

    // A position has 13 integer bits, in units of the decimation.
    P full = good;
    full.mode = TAVU_IRSZ_MODE_FULL;
    EXPECT_EQ(status(full, {{&P::src_w, 8192}, {&P::dst_w, 8192}}), 0);
    EXPECT_EQ(status(full, {{&P::src_w, 8193}, {&P::dst_w, 8192}}), TAVU_ERR);
    EXPECT_EQ(status(full, {{&P::src_w, 16384}, {&P::dst_w, 2000}}), 0);
    EXPECT_EQ(status(full, {{&P::src_s, -8192}}), 0);  // an image stored bottom up
}

TEST(Irsz, StepCalculator) {
    int32_t x = 0, y = 0;
    bilinear_rsz_step_size(17, 640, 17, 100, &x, &y);
    EXPECT_EQ(x, (16 << 18) / 17 << 3);
    EXPECT_EQ(y, ((639 >> 2) << 18) / 100 << 3 | 2);
    // Decimation by ratio: 2 keeps every pixel, 3 and 4 every second one, and so on up to 16.
    const int shifts[] = {0, 0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3, 4};
    for (int ratio = 0; ratio < 40; ratio++) {
        bilinear_rsz_step_size(ratio * 20 + 19, 1, 20, 1, &x, &y);
        EXPECT_EQ(x & 7, shifts[std::min(ratio, 17)]) << ratio;
        EXPECT_EQ(y, 0);
    }
    // A packed step has 29 bits: up to 16384 source pixels per target pixel.
    for (int dst = 1; dst <= 7; dst++) {
        bilinear_rsz_step_size(16384 * dst, 16384 * dst + 1, dst, dst, &x, &y);
        EXPECT_EQ(x >> 3, Axis(16384 * dst, dst).step);
        EXPECT_NE(y >> 3, Axis(16384 * dst + 1, dst).step);
    }
    bilinear_rsz_step_size(9, 9, -1, -4, &x, &y);
    EXPECT_EQ(x, -(8 << 18) * 8);
    EXPECT_EQ(y, -(2 << 18) * 8);
}

TEST(Irsz, ZeroTargetRaisesTheArithmeticSignal) {
    static volatile int raised;
    const auto before = signal(SIGFPE, [](int) { raised = 1; });
    int32_t x = 0, y = 0;
    uint8_t *planes[4] = {};
    const int32_t stride[4] = {};
    const std::function<void()> calls[] = {
        [&] { bilinear_rsz_step_size(4, 4, 0, 4, &x, &y); },
        [&] { bilinear_rsz_step_size(4, 4, 4, 0, &x, &y); },
        [&] { tavu_csc_rsz_r8g8b8_to_rgb888(planes, 4, 4, stride, 0, planes, 4, 0, stride, 0); }};
    for (const auto &call : calls) {
        raised = 0;
        call();
        EXPECT_EQ(raised, 1) << &call - calls;
    }
    signal(SIGFPE, before);
}

TEST(Irsz, WeightTables) {
    const uint8_t first[] = {64, 0, 0, 0, 56, 0, 8, 0}, second[] = {56, 8, 0, 0, 49, 7, 7, 1};
    EXPECT_EQ(memcmp(tavu_irsz_tbl_rsz_weight, first, 8), 0);
    EXPECT_EQ(memcmp(tavu_irsz_tbl_rsz_weight + 32, second, 8), 0);
    EXPECT_EQ(memcmp(tavu_tbl_bilinear_rszw, tavu_irsz_tbl_rsz_weight, 256), 0);

    // The resizer reads the writable table; the combined routines read neither.
    const uint8_t lower_right[4] = {0, 0, 0, 64}, in[4] = {10, 20, 30, 40};
    uint8_t plane[4], out = 0, rgb[3] = {}, *src[4] = {plane, plane, plane}, *dst[4] = {rgb};
    const int32_t stride[4] = {2, 2, 2};
    memcpy(plane, in, 4);
    memcpy(tavu_irsz_tbl_rsz_weight, lower_right, 4);
    tavu_irsz8b_full(in, 2, 1, 1, 1, &out, 1 << 21, 1 << 21);
    tavu_csc_rsz_r8g8b8_to_rgb888(src, 2, 2, stride, 600, dst, 1, 1, stride, 400);
    memcpy(tavu_irsz_tbl_rsz_weight, first, 4);
    EXPECT_EQ(out, 40);
    EXPECT_EQ(rgb[0], 10);
}

TEST(IrszKernels, KeepExtremesAndWriteNothingForEmptyTargets) {
    const Bytes white(64, 255);
    const uint8_t *rows[] = {white.data(), white.data()};
    const uint8_t *weights = tavu_irsz_tbl_rsz_weight + 4 * 3;
    Bytes out(10, 7);
    tavu_irsz8b_line(rows, weights, 1, 0, 1, 100000, &out[0]);
    tavu_irsz8b8b8b_5b6b5b_line(rows, weights, 1, 0, 1, 0, &out[1]);
    tavu_irsz8b8b8b_5b6b5b_full(white.data(), 6, 1, 1, 2, &out[3], 0, 0);
    tavu_irsz5b6b5b_line(rows, weights, 1, 0, 1, 0, &out[5]);
    tavu_irsz8b_line(rows, weights, 0, 0, 1, 0, &out[7]);
    tavu_irsz8b_full(white.data(), 1, 1, 0, 1, &out[8], 0, 0);
    tavu_irsz8b_full(white.data(), 1, -1, 1, 1, &out[9], 0, 0);
    EXPECT_EQ(out, (Bytes{255, 0x8F, 255, 255, 255, 255, 255, 7, 7, 7}));
}

// The caller of a line kernel chooses the neighbour's distance.
TEST(IrszKernels, LineKernelsStepByDecimationAndNeighbour) {
    const std::pair<tavu_irsz_line_t *, size_t> kernels[] = {
        {tavu_irsz8b_line, 1}, {tavu_irsz8b8b8b_line, 3}, {tavu_irsz8b8b8b8b_line, 4}};
    const Bytes top = random_bytes(4 * 32, 1), bottom = random_bytes(4 * 32, 2);
    const uint8_t *rows[] = {top.data(), bottom.data()};
    for (const auto &[kernel, bytes] : kernels) {
        uint8_t out[4 * 5];
        kernel(rows, tavu_irsz_tbl_rsz_weight + 4 * 5, 5, 2, 3, 11 << 15, out);  // 11 eighths
        for (size_t i = 0; i < 5 * bytes; i++) {
            const size_t position = i / bytes * 11;
            const size_t left = position / 8 * 4 * bytes + i % bytes, right = left + 3 * bytes;
            const auto mix = [&](const uint8_t *row) {
                return (8 - position % 8) * row[left] + position % 8 * row[right];
            };
            EXPECT_EQ(out[i], (3 * mix(rows[0]) + 5 * mix(rows[1])) >> 6);
        }
    }
}

}  // namespace
