#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <random>

#include "memory.h"
#include "tavu.h"

namespace {

struct Delete {
    void operator()(tavu_irsz_t *rsz) const { tavu_irsz_delete(rsz); }
};
using Resizer = std::unique_ptr<tavu_irsz_t, Delete>;

constexpr int FORMATS[] = {TAVU_IRSZ_8B, TAVU_IRSZ_8B8B8B, TAVU_IRSZ_8B8B8B_5B6B5B,
                           TAVU_IRSZ_5B6B5B, TAVU_IRSZ_8B8B8B8B};

int src_bytes(int fmt) {
    return fmt == TAVU_IRSZ_8B         ? 1
           : fmt == TAVU_IRSZ_5B6B5B   ? 2
           : fmt == TAVU_IRSZ_8B8B8B8B ? 4
                                       : 3;
}
int dst_bytes(int fmt) { return fmt == TAVU_IRSZ_8B8B8B_5B6B5B ? 2 : src_bytes(fmt); }

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
    int fmt, src_w, src_h, dst_w, dst_h, band_h;  // band_h 0: whole image
    const Bytes &src;

    // Channel k of a source pixel; of a carried 5-6-5 row only the left half is kept.
    int64_t sample(int64_t x, int64_t y, int k, bool carried) const {
        if (fmt == TAVU_IRSZ_5B6B5B) {
            if (carried && x >= src_w / 2) {
                const bool straddles = x == src_w / 2 && src_w % 2 == 1;
                const int unit = straddles ? src[static_cast<size_t>((y * src_w + x) * 2)] : 0;
                return k == 1 ? unit >> 3 & 0xFC : k == 2 ? unit << 3 & 0xF8 : 0;
            }
            const uint8_t *p = &src[static_cast<size_t>((y * src_w + x) * 2)];
            const int unit = p[0] | p[1] << 8;
            return k == 0 ? unit >> 8 & 0xF8 : k == 1 ? unit >> 3 & 0xFC : unit << 3 & 0xF8;
        }
        return src[static_cast<size_t>((y * src_w + x) * src_bytes(fmt) + k)];
    }

    int64_t sum(const Axis &ax, const Axis &ay, int i, int j, int k) const {
        const int64_t a = ax.eighths(i), b = ay.eighths(j), l = ax.upper(i), r = ax.lower(i),
                      t = ay.upper(j), u = ay.lower(j);
        const bool carried = band_h > 0 && t / band_h != u / band_h;
        return (8 - a) * (8 - b) * sample(l, t, k, carried) +
               a * (8 - b) * sample(r, t, k, carried) + (8 - a) * b * sample(l, u, k, false) +
               a * b * sample(r, u, k, false);
    }

    Bytes run() const {
        const Axis ax(src_w, dst_w), ay(src_h, dst_h);
        Bytes out;
        const auto put = [&out](int64_t byte) { out.push_back(static_cast<uint8_t>(byte)); };
        for (int j = 0; j < dst_h; j++) {
            for (int i = 0; i < dst_w; i++) {
                int64_t c[4];
                for (int k = 0; k < 4; k++) {
                    c[k] = k < src_bytes(fmt) || fmt == TAVU_IRSZ_5B6B5B ? sum(ax, ay, i, j, k) >> 6
                                                                         : 0;
                }
                if (fmt == TAVU_IRSZ_5B6B5B) {
                    const int64_t unit = (c[0] >> 3) << 11 | (c[1] >> 2) << 5 | c[2] >> 3;
                    put(unit & 0xFF), put(unit >> 8);
                } else if (fmt == TAVU_IRSZ_8B8B8B_5B6B5B && band_h == 0) {
                    put((c[1] & 0xE0) | c[2] >> 3), put((c[0] & 0xF8) | c[1] >> 5);
                } else if (fmt == TAVU_IRSZ_8B8B8B_5B6B5B) {
                    put((c[0] & 0x8F) | c[1] >> 5), put((c[1] & 0xE0) | c[2] >> 3);
                } else {
                    for (int k = 0; k < src_bytes(fmt); k++) put(c[k]);
                }
            }
        }
        return out;
    }
};

tavu_irsz_param make_param(const Reference &r, void *dst) {
    const bool band = r.band_h > 0;
    return {r.fmt,   band ? TAVU_IRSZ_MODE_LINE : TAVU_IRSZ_MODE_FULL,
            r.src_w, r.src_h,
            r.src_w, r.band_h,
            r.dst_w, r.dst_h,
            r.dst_w, dst};
}

// Runs the library; source and target end at unreadable pages. In band mode each band is a copy of
// its own that is gone before the next comes.
Bytes resize(const Reference &r, bool *complete = nullptr) {
    GuardedBytes dst(static_cast<size_t>(r.dst_w * r.dst_h * dst_bytes(r.fmt)));
    const tavu_irsz_param param = make_param(r, dst.data());
    int32_t err = 1;
    const Resizer rsz(tavu_irsz_create(&param, &err));
    EXPECT_EQ(err, 0);
    if (rsz == nullptr) return {};
    if (r.band_h == 0) {
        GuardedBytes whole(r.src);
        EXPECT_EQ(tavu_irsz(rsz.get(), whole.data(), 0, 0), 0);
    }
    const int line = r.src_w * src_bytes(r.fmt);
    for (int first = 0; r.band_h > 0 && first < r.src_h; first += r.band_h) {
        Bytes band(r.src.begin() + first * line,
                   r.src.begin() + std::min(first + r.band_h, r.src_h) * line);
        band.resize(static_cast<size_t>(r.band_h * line));
        GuardedBytes guarded(band);
        EXPECT_EQ(tavu_irsz(rsz.get(), guarded.data(), first, r.band_h), 0);
    }
    if (complete != nullptr) *complete = rsz->out_row == r.dst_h && rsz->pending == 0;
    EXPECT_TRUE(dst.front_is_intact());
    return dst.bytes();
}

TEST(Irsz, WholeImagesOfEveryFormat) {
    const int sizes[][4] = {{17, 13, 9, 7},  {16, 16, 16, 16}, {9, 7, 31, 22}, {64, 40, 13, 5},
                            {100, 90, 3, 2}, {33, 17, 66, 3},  {1, 1, 5, 4},   {1, 9, 3, 9},
                            {9, 1, 9, 3},    {2, 2, 1, 1},     {70, 70, 4, 5}, {40, 20, 20, 10},
                            {400, 3, 1, 1}};
    for (int fmt : FORMATS) {
        for (const auto &s : sizes) {
            const Bytes src = random_bytes(static_cast<size_t>(s[0] * s[1] * src_bytes(fmt)), 5);
            const Reference r{fmt, s[0], s[1], s[2], s[3], 0, src};
            ASSERT_EQ(resize(r), r.run())
                << fmt << ": " << s[0] << 'x' << s[1] << " to " << s[2] << 'x' << s[3];
        }
    }
}

TEST(Irsz, BandsGiveTheWholeImageWhereTheyCan) {
    std::mt19937 random(3);
    int sufficed = 0, did_not = 0;
    for (int round = 0; round < 600; round++) {
        const int fmt = FORMATS[round % 5], band_h = 2 << random() % 6;
        const auto pick = [&random](unsigned n) { return 1 + static_cast<int>(random() % n); };
        const int sizes[] = {pick(40), 1 + pick(200), pick(60), pick(300)};
        const Bytes src =
            random_bytes(static_cast<size_t>(sizes[0] * sizes[1] * src_bytes(fmt)), random());
        const Reference r{fmt, sizes[0], sizes[1], sizes[2], sizes[3], band_h, src};
        bool complete = false;
        const Bytes target = resize(r, &complete);
        // The promise of the header.
        if (band_h < 2 * ((sizes[1] + sizes[3] - 1) / sizes[3])) {
            did_not += target != r.run();
            continue;
        }
        sufficed++;
        ASSERT_TRUE(complete);
        ASSERT_EQ(target, r.run()) << fmt << ": " << sizes[0] << 'x' << sizes[1] << " to "
                                   << sizes[2] << 'x' << sizes[3] << " by " << band_h;
    }
    EXPECT_GT(sufficed, 300);
    EXPECT_GT(did_not, 20);
}

// A lower source row two bands ahead never comes.
TEST(Irsz, BandsShorterThanTheRowStepLeaveRowsBehind) {
    const Bytes src = random_bytes(64, 1);
    const Reference r{TAVU_IRSZ_8B, 1, 64, 1, 8, 2, src};
    bool complete = true;
    resize(r, &complete);
    EXPECT_FALSE(complete);
}

TEST(Irsz, KeepsTheWholeStreamState) {
    Bytes src = random_bytes(10 * 8, 2), dst(100 * 100 * 3);
    const tavu_irsz_param p = {TAVU_IRSZ_8B8B8B, TAVU_IRSZ_MODE_LINE, 10, 80, 12, 4, 5, 20, 7,
                               dst.data()};
    const Resizer rsz(tavu_irsz_create(&p, nullptr));
    ASSERT_NE(rsz, nullptr);
    EXPECT_EQ(rsz->shift_x, 0);
    EXPECT_EQ(rsz->shift_y, 1);
    EXPECT_EQ(rsz->step_x, (9 << 18) / 5);
    EXPECT_EQ(rsz->step_y, (39 << 18) / 20);
    EXPECT_EQ(rsz->next_x, 1);
    EXPECT_EQ(rsz->line_size, 36);
    EXPECT_EQ(rsz->dst_line, 21);
    EXPECT_EQ(rsz->next_row, 72);
    EXPECT_EQ(rsz->band_size, 144);
    EXPECT_EQ(rsz->upscale, 0);
    EXPECT_EQ(rsz->rsz_func, tavu_irsz8b8b8b);
    EXPECT_EQ(rsz->dst, dst.data());
}

TEST(Irsz, CreationRefusesWhatItCannotDo) {
    uint8_t dst[4];
    const auto status = [](tavu_irsz_param p) {
        int32_t err = 1;
        const Resizer rsz(tavu_irsz_create(&p, &err));
        EXPECT_EQ(rsz != nullptr, err == 0);
        return err;
    };
    const tavu_irsz_param good = {20, 11, 4, 4, 4, 4, 2, 2, 2, dst};
    EXPECT_EQ(status(good), 0);
    const auto with = [&good](int32_t tavu_irsz_param::*field, int32_t value) {
        tavu_irsz_param p = good;
        p.*field = value;
        return p;
    };
    tavu_irsz_param both = with(&tavu_irsz_param::mode, 9);
    both.fmt = 22;
    EXPECT_EQ(status(both), TAVU_IRSZ_ERR_MODE);
    EXPECT_EQ(status(with(&tavu_irsz_param::mode, 12)), TAVU_IRSZ_ERR_MODE);
    for (int fmt : {19, 22, 24, 28, 30}) {
        EXPECT_EQ(status(with(&tavu_irsz_param::fmt, fmt)), TAVU_IRSZ_ERR_FORMAT);
    }
    for (auto field :
         {&tavu_irsz_param::src_w, &tavu_irsz_param::src_h, &tavu_irsz_param::dst_w,
          &tavu_irsz_param::dst_h, &tavu_irsz_param::band_h, &tavu_irsz_param::src_s}) {
        EXPECT_EQ(status(with(field, 0)), TAVU_ERR);
        EXPECT_EQ(status(with(field, INT32_MIN)), TAVU_ERR);
    }
    EXPECT_EQ(status(with(&tavu_irsz_param::band_h, 3)), TAVU_ERR);
    EXPECT_EQ(status(with(&tavu_irsz_param::band_h, 1 << 30)), TAVU_ERR);
    EXPECT_EQ(status(with(&tavu_irsz_param::src_s, INT32_MAX)), TAVU_ERR);

    // The position has 13 bits before the point, in units of the decimation.
    tavu_irsz_param full = with(&tavu_irsz_param::mode, 10);
    full.src_w = full.dst_w = 8192;
    EXPECT_EQ(status(full), 0);
    full.src_w = 8193;
    EXPECT_EQ(status(full), TAVU_ERR);
    full.dst_w = 2000;
    full.src_w = 8192 * 2;
    EXPECT_EQ(status(full), 0);
    full.src_s = -8192;  // an image stored bottom up
    EXPECT_EQ(status(full), 0);
    full.fmt = 29;
    full.dst_s = 0x20000000;
    EXPECT_EQ(status(full), TAVU_ERR);
}

TEST(Irsz, FailingAllocations) {
    uint8_t dst[4];
    const tavu_irsz_param p = {20, 11, 4, 4, 4, 4, 2, 2, 2, dst};
    int32_t err = 1;
    {
        FailingAllocations first(0);
        EXPECT_EQ(tavu_irsz_create(&p, &err), nullptr);
        EXPECT_EQ(first.count(), 1);
    }
    EXPECT_EQ(err, TAVU_IRSZ_ERR_ALLOC);
    // Creation does not check the carried row's memory.
    FailingAllocations second(1);
    const Resizer rsz(tavu_irsz_create(&p, &err));
    EXPECT_EQ(err, 0);
    ASSERT_NE(rsz, nullptr);
    EXPECT_EQ(rsz->carry_buf, nullptr);
    tavu_irsz_delete(nullptr);
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
}

TEST(Irsz, ZeroTargetRaisesTheArithmeticSignal) {
    static volatile int raised = 0;
    const auto before = signal(SIGFPE, [](int) { raised = raised + 1; });
    int32_t x = 0, y = 0;
    bilinear_rsz_step_size(4, 4, 0, 4, &x, &y);
    EXPECT_GT(raised, 0);
    EXPECT_EQ(y, (3 << 18) / 4 << 3);
    raised = 0;
    bilinear_rsz_step_size(4, 4, 4, 0, &x, &y);
    EXPECT_GT(raised, 0);
    raised = 0;
    uint8_t *planes[4] = {};
    const int32_t stride[4] = {};
    tavu_csc_rsz_r8g8b8_to_rgb888(planes, 4, 4, stride, 0, planes, 4, 0, stride, 0);
    EXPECT_GT(raised, 0);
    signal(SIGFPE, before);
}

TEST(Irsz, WeightTables) {
    const uint8_t first[] = {64, 0, 0, 0, 56, 0, 8, 0}, second[] = {56, 8, 0, 0, 49, 7, 7, 1};
    EXPECT_EQ(memcmp(tavu_irsz_tbl_rsz_weight, first, 8), 0);
    EXPECT_EQ(memcmp(tavu_irsz_tbl_rsz_weight + 32, second, 8), 0);
    EXPECT_EQ(memcmp(tavu_tbl_bilinear_rszw, tavu_irsz_tbl_rsz_weight, 256), 0);

    // The resizer reads the writable one.
    const uint8_t lower_right[4] = {0, 0, 0, 64};
    uint8_t saved[4], in[4] = {10, 20, 30, 40}, out = 0;
    memcpy(saved, tavu_irsz_tbl_rsz_weight, 4);
    memcpy(tavu_irsz_tbl_rsz_weight, lower_right, 4);
    tavu_irsz8b_full(in, 2, 1, 1, 1, &out, 1 << 21, 1 << 21);
    memcpy(tavu_irsz_tbl_rsz_weight, saved, 4);
    EXPECT_EQ(out, 40);
}

TEST(IrszKernels, ExtremesStayAndNothingIsWrittenForNothing) {
    const Bytes white(64, 255);
    const uint8_t *rows[] = {white.data(), white.data()};
    const uint8_t *weights = tavu_irsz_tbl_rsz_weight + 4 * 3;
    uint8_t out[16] = {};
    tavu_irsz8b_line(rows, weights, 3, 0, 1, 100000, out);
    EXPECT_EQ(out[2], 255);
    tavu_irsz8b8b8b_5b6b5b_line(rows, weights, 1, 0, 1, 0, out);
    EXPECT_EQ(out[0], 0x8F);
    EXPECT_EQ(out[1], 0xFF);
    tavu_irsz8b8b8b_5b6b5b_full(white.data(), 6, 1, 1, 2, out, 0, 0);
    EXPECT_EQ(out[0], 0xFF);
    EXPECT_EQ(out[1], 0xFF);
    tavu_irsz5b6b5b_line(rows, weights, 1, 0, 1, 0, out);
    EXPECT_EQ(out[0] & out[1], 0xFF);

    uint8_t untouched = 7;
    tavu_irsz8b_line(rows, weights, 0, 0, 1, 0, &untouched);
    tavu_irsz8b_full(white.data(), 1, 1, 0, 1, &untouched, 0, 0);
    tavu_irsz8b_full(white.data(), 1, -1, 1, 1, &untouched, 0, 0);
    EXPECT_EQ(untouched, 7);
}

// Line kernels take the neighbour's distance from the caller.
TEST(IrszKernels, LineKernelsStepByDecimationAndNeighbour) {
    Bytes top = random_bytes(4 * 32, 1), bottom = random_bytes(4 * 32, 2);
    const uint8_t *rows[] = {top.data(), bottom.data()};
    const int step = (1 << 18) + (3 << 15);  // 11 eighths
    uint8_t out[4 * 5];
    tavu_irsz8b8b8b8b_line(rows, tavu_irsz_tbl_rsz_weight + 4 * 5, 5, 2, 3, step, out);
    for (int i = 0; i < 5; i++) {
        const int left = i * 11 / 8 * 4, a = i * 11 % 8;
        for (int k = 0; k < 4; k++) {
            const auto at = [k](const Bytes &row, int x) {
                return row[static_cast<size_t>(4 * x + k)];
            };
            const int sum = (8 - a) * 3 * at(top, left) + a * 3 * at(top, left + 3) +
                            (8 - a) * 5 * at(bottom, left) + a * 5 * at(bottom, left + 3);
            EXPECT_EQ(out[4 * i + k], sum >> 6);
        }
    }
}

}  // namespace
