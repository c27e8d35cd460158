#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <ostream>
#include <random>

#include "memory.h"
#include "tavu.h"
#include "variants.h"

namespace {

struct Delete {
    void operator()(tavu_irsz_t *rsz) const { tavu_irsz_delete(rsz); }
};
using Resizer = std::unique_ptr<tavu_irsz_t, Delete>;

struct Format {
    int fmt, src_bytes, dst_bytes;
    tavu_irsz_full_t *full;
    std::vector<Variant<tavu_irsz_fn>> drivers;  // first the exported one
};
const Format FORMATS[] = {
    {TAVU_IRSZ_8B, 1, 1, tavu_irsz8b_full, variants<tavu_irsz8b>()},
    {TAVU_IRSZ_8B8B8B, 3, 3, tavu_irsz8b8b8b_full, variants<tavu_irsz8b8b8b>()},
    {TAVU_IRSZ_8B8B8B_5B6B5B,
     3,
     2,
     tavu_irsz8b8b8b_5b6b5b_full,
     {{"exported", tavu_irsz8b8b8b_5b6b5b}}},
    {TAVU_IRSZ_5B6B5B, 2, 2, tavu_irsz5b6b5b_full, {{"exported", tavu_irsz5b6b5b}}},
    {TAVU_IRSZ_8B8B8B8B, 4, 4, tavu_irsz8b8b8b8b_full, variants<tavu_irsz8b8b8b8b>()}};

struct Axis {
    int64_t step, shift;
    Axis(int src, int dst) {
        const int ratio = src / dst;
        shift = ratio <= 2 ? 0 : ratio <= 4 ? 1 : ratio <= 8 ? 2 : ratio <= 16 ? 3 : 4;
        step = (static_cast<int64_t>((src - 1) >> shift) << 18) / dst;
    }
    int64_t upper(int i) const { return (i * step >> 18) << shift; }
    int64_t lower(int i) const { return upper(i) + (step == 0 ? 0 : 1 << shift); }
    int64_t eighths(int i) const { return i * step >> 15 & 7; }
};

// The whole operation pixel by pixel, from products of positions, without state.
struct Reference {
    Format f;
    int src_w, src_h, dst_w, dst_h, band_h;  // band_h 0: whole image
    Bytes src;

    Reference(const Format &format, int sw, int sh, int dw, int dh, int band, unsigned seed = 1)
        : f(format),
          src_w(sw),
          src_h(sh),
          dst_w(dw),
          dst_h(dh),
          band_h(band),
          src(random_bytes(static_cast<size_t>(sw * sh * f.src_bytes), seed)) {}

    // Channel k of a source pixel; of a carried 5-6-5 row only the left half is kept.
    int64_t sample(int64_t x, int64_t y, int k, bool carried) const {
        const uint8_t *p = &src[static_cast<size_t>((y * src_w + x) * f.src_bytes)];
        if (f.fmt != TAVU_IRSZ_5B6B5B) return k < f.src_bytes ? p[k] : 0;
        const int kept = carried ? src_w - static_cast<int>(2 * x) : 2;  // bytes
        const int unit = (kept > 0 ? p[0] : 0) | (kept > 1 ? p[1] << 8 : 0);
        return k == 0 ? unit >> 8 & 0xF8 : k == 1 ? unit >> 3 & 0xFC : unit << 3 & 0xF8;
    }

    int64_t average(const Axis &ax, const Axis &ay, int i, int j, int k) const {
        const int64_t a = ax.eighths(i), b = ay.eighths(j), l = ax.upper(i), r = ax.lower(i),
                      t = ay.upper(j), u = ay.lower(j);
        const bool carried = band_h > 0 && t / band_h != u / band_h;
        const int64_t top = (8 - a) * sample(l, t, k, carried) + a * sample(r, t, k, carried);
        const int64_t bottom = (8 - a) * sample(l, u, k, false) + a * sample(r, u, k, false);
        return ((8 - b) * top + b * bottom) >> 6;
    }

    Bytes run() const {
        const Axis ax(src_w, dst_w), ay(src_h, dst_h);
        Bytes out;
        const auto put = [&out](int64_t byte) { out.push_back(static_cast<uint8_t>(byte)); };
        for (int pixel = 0; pixel < dst_w * dst_h; pixel++) {
            int64_t c[4];
            for (int k = 0; k < 4; k++) c[k] = average(ax, ay, pixel % dst_w, pixel / dst_w, k);
            if (f.fmt == TAVU_IRSZ_5B6B5B) {
                put((c[1] << 3 & 0xE0) | c[2] >> 3);
                put((c[0] & 0xF8) | c[1] >> 5);
            } else if (f.fmt == TAVU_IRSZ_8B8B8B_5B6B5B) {
                if (band_h > 0) put((c[0] & 0x8F) | c[1] >> 5);
                put((c[1] & 0xE0) | c[2] >> 3);
                if (band_h == 0) put((c[0] & 0xF8) | c[1] >> 5);
            } else {
                for (int k = 0; k < f.src_bytes; k++) put(c[k]);
            }
        }
        return out;
    }

    bool bands_suffice() const { return band_h >= 2 * ((src_h + dst_h - 1) / dst_h); }

    tavu_irsz_param param(void *dst) const {
        const int mode = band_h > 0 ? TAVU_IRSZ_MODE_LINE : TAVU_IRSZ_MODE_FULL;
        return {f.fmt, mode, src_w, src_h, src_w, band_h, dst_w, dst_h, dst_w, dst};
    }
};

std::ostream &operator<<(std::ostream &s, const Reference &r) {
    return s << r.f.fmt << ": " << r.src_w << 'x' << r.src_h << " to " << r.dst_w << 'x' << r.dst_h
             << " by " << r.band_h;
}

// Runs the library; source and target end at unreadable pages. In band mode each band is a copy of
// its own that is gone before the next comes; the last one ends with the image, but where bands are
// so short that rows beyond it may be read.
Bytes resize_by(tavu_irsz_fn driver, const Reference &r, bool *complete) {
    GuardedBytes dst(static_cast<size_t>(r.dst_w * r.dst_h * r.f.dst_bytes));
    const tavu_irsz_param param = r.param(dst.data());
    const Resizer rsz(tavu_irsz_create(&param, nullptr));
    if (rsz == nullptr) return {};
    EXPECT_EQ(rsz->rsz_func, r.f.drivers[0].run);
    rsz->rsz_func = driver;
    const int rows = r.band_h > 0 ? r.band_h : r.src_h, line = r.src_w * r.f.src_bytes;
    for (int first = 0; first < r.src_h; first += rows) {
        Bytes band(r.src.begin() + first * line,
                   r.src.begin() + std::min(first + rows, r.src_h) * line);
        if (!r.bands_suffice()) band.resize(static_cast<size_t>(rows * line));
        GuardedBytes guarded(band);
        EXPECT_EQ(tavu_irsz(rsz.get(), guarded.data(), first, rows), 0);
    }
    *complete = rsz->out_row == r.dst_h && rsz->pending == 0;
    EXPECT_TRUE(dst.front_is_intact());
    return dst.bytes();
}

// The same by every form of the driver.
Bytes resize(const Reference &r, bool *complete) {
    Bytes target = resize_by(r.f.drivers[0].run, r, complete);
    for (size_t i = 1; i < r.f.drivers.size(); i++) {
        EXPECT_EQ(resize_by(r.f.drivers[i].run, r, complete), target) << r.f.drivers[i].level << r;
    }
    return target;
}

TEST(Irsz, WholeImagesOfEveryFormat) {
    const int sizes[][4] = {{17, 13, 9, 7},  {16, 16, 16, 16}, {9, 7, 31, 22}, {64, 40, 13, 5},
                            {100, 90, 3, 2}, {33, 17, 66, 3},  {1, 1, 5, 4},   {1, 9, 3, 9},
                            {9, 1, 9, 3},    {2, 2, 1, 1},     {70, 70, 4, 5}, {40, 20, 20, 10},
                            {400, 3, 1, 1}};
    for (const Format &f : FORMATS) {
        for (const auto &s : sizes) {
            const Reference r(f, s[0], s[1], s[2], s[3], 0);
            const Bytes expected = r.run();
            bool ignored;
            ASSERT_EQ(resize(r, &ignored), expected) << r;

            // The kernel by name; lines of 5-6-5 sources count pixels.
            Bytes out(expected.size());
            const int unit = f.fmt == TAVU_IRSZ_5B6B5B ? 2 : 1;
            int32_t x, y;
            bilinear_rsz_step_size(s[0], s[1], s[2], s[3], &x, &y);
            f.full(r.src.data(), s[0] * f.src_bytes / unit, s[2], s[3], s[2] * f.dst_bytes / unit,
                   out.data(), x, y);
            ASSERT_EQ(out, expected) << r;
        }
    }
}

TEST(Irsz, BandsGiveTheWholeImageWhereTheHeaderSaysSo) {
    std::mt19937 random(3);
    const auto pick = [&random](unsigned n) { return 1 + static_cast<int>(random() % n); };
    int sufficed = 0, did_not = 0;
    for (int round = 0; round < 600; round++) {
        const Reference r(FORMATS[round % 5], pick(40), pick(200), pick(60), pick(300),
                          2 << random() % 6, static_cast<unsigned>(random()));
        bool complete = false;
        const Bytes target = resize(r, &complete);
        if (!r.bands_suffice()) {
            did_not += target != r.run();
            continue;
        }
        sufficed++;
        ASSERT_TRUE(complete) << r;
        ASSERT_EQ(target, r.run()) << r;
    }
    EXPECT_GT(sufficed, 300);
    EXPECT_GT(did_not, 20);
    // A lower source row two bands ahead never comes.
    bool complete = true;
    resize(Reference(FORMATS[0], 1, 64, 1, 8, 2), &complete);
    EXPECT_FALSE(complete);
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

TEST(Irsz, CreationRefusesWhatItCannotDo) {
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
    EXPECT_EQ(status(good, {{&P::mode, 12}}), TAVU_IRSZ_ERR_MODE);
    for (int fmt : {19, 22, 24, 28, 30}) {
        EXPECT_EQ(status(good, {{&P::fmt, fmt}}), TAVU_IRSZ_ERR_FORMAT);
    }
    for (auto field : {&P::src_w, &P::src_h, &P::dst_w, &P::dst_h, &P::band_h, &P::src_s}) {
        EXPECT_EQ(status(good, {{field, 0}}), TAVU_ERR);
        EXPECT_EQ(status(good, {{field, INT32_MIN}}), TAVU_ERR);
    }
    EXPECT_EQ(status(good, {{&P::band_h, 3}}), TAVU_ERR);
    EXPECT_EQ(status(good, {{&P::band_h, 1 << 30}}), TAVU_ERR);
    EXPECT_EQ(status(good, {{&P::src_s, INT32_MAX}}), TAVU_ERR);

    // A position has 13 bits before the point, in units of the decimation.
    P full = good;
    full.mode = TAVU_IRSZ_MODE_FULL;
    EXPECT_EQ(status(full, {{&P::src_w, 8192}, {&P::dst_w, 8192}}), 0);
    EXPECT_EQ(status(full, {{&P::src_w, 8193}, {&P::dst_w, 8192}}), TAVU_ERR);
    EXPECT_EQ(status(full, {{&P::src_w, 16384}, {&P::dst_w, 2000}}), 0);
    EXPECT_EQ(status(full, {{&P::src_s, -8192}}), 0);  // an image stored bottom up
    EXPECT_EQ(status(full, {{&P::fmt, 29}, {&P::dst_s, 0x20000000}}), TAVU_ERR);
}

TEST(Irsz, StepCalculator) {
    int32_t x = 0, y = 0;
    bilinear_rsz_step_size(17, 640, 17, 100, &x, &y);
    EXPECT_EQ(x, (16 << 18) / 17 << 3);
    EXPECT_EQ(y, ((639 >> 2) << 18) / 100 << 3 | 2);
    // Decimation by the ratio: 2 keeps every pixel, 3 and 4 every second, and so on up to 16.
    const int shifts[] = {0, 0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3, 4};
    for (int ratio = 0; ratio < 40; ratio++) {
        bilinear_rsz_step_size(ratio * 20 + 19, 1, 20, 1, &x, &y);
        EXPECT_EQ(x & 7, shifts[std::min(ratio, 17)]) << ratio;
        EXPECT_EQ(y, 0);
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
    for (int round = 0; round < 3; round++) {
        raised = 0;
        if (round == 0) bilinear_rsz_step_size(4, 4, 0, 4, &x, &y);
        if (round == 1) bilinear_rsz_step_size(4, 4, 4, 0, &x, &y);
        if (round == 2) {
            tavu_csc_rsz_r8g8b8_to_rgb888(planes, 4, 4, stride, 0, planes, 4, 0, stride, 0);
        }
        EXPECT_EQ(raised, 1) << round;
    }
    signal(SIGFPE, before);
}

TEST(Irsz, WeightTables) {
    const uint8_t first[] = {64, 0, 0, 0, 56, 0, 8, 0}, second[] = {56, 8, 0, 0, 49, 7, 7, 1};
    EXPECT_EQ(memcmp(tavu_irsz_tbl_rsz_weight, first, 8), 0);
    EXPECT_EQ(memcmp(tavu_irsz_tbl_rsz_weight + 32, second, 8), 0);
    EXPECT_EQ(memcmp(tavu_tbl_bilinear_rszw, tavu_irsz_tbl_rsz_weight, 256), 0);

    // The resizer reads the writable one, the combined routines neither.
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

TEST(IrszKernels, ExtremesStayAndNothingIsWrittenForNothing) {
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

// Line kernels take the neighbour's distance from the caller.
TEST(IrszKernels, LineKernelsStepByDecimationAndNeighbour) {
    const std::pair<tavu_irsz_line_t *, int> kernels[] = {
        {tavu_irsz8b_line, 1}, {tavu_irsz8b8b8b_line, 3}, {tavu_irsz8b8b8b8b_line, 4}};
    const Bytes top = random_bytes(4 * 32, 1), bottom = random_bytes(4 * 32, 2);
    const uint8_t *rows[] = {top.data(), bottom.data()};
    for (const auto &[kernel, bytes] : kernels) {
        uint8_t out[4 * 5];
        kernel(rows, tavu_irsz_tbl_rsz_weight + 4 * 5, 5, 2, 3, 11 << 15, out);  // 11 eighths
        for (int i = 0; i < 5 * bytes; i++) {
            const int pixel = i / bytes, a = pixel * 11 % 8;
            const int left = pixel * 11 / 8 * 4 * bytes + i % bytes, right = left + 3 * bytes;
            const auto mix = [a](int l, int r) { return (8 - a) * l + a * r; };
            EXPECT_EQ(out[i], (3 * mix(rows[0][left], rows[0][right]) +
                               5 * mix(rows[1][left], rows[1][right])) >>
                                  6);
        }
    }
}

}  // namespace
