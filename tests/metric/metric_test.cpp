// Compares block metrics of every level with their definitions, on blocks that end at a guard page.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "block_call.h"
#include "content.h"
#include "memory.h"
#include "tavu.h"

namespace {

// The tests run at each level in turn.
class Metric : public testing::TestWithParam<size_t> {
  protected:
    template <auto *Routine>
    static auto get() {
        return variants<Routine>()[GetParam()].run;
    }
};
INSTANTIATE_TEST_SUITE_P(Levels, Metric, testing::Range<size_t>(0, variants<tavu_ssd>().size()));

// A block in memory that ends `slack` bytes before an unreadable page. If it is upside down, the
// stride is negative and the first row is the last one in memory.
struct Block {
    Block(int width, int height, int extra, size_t slack, int content, unsigned seed,
          bool upside_down)
        : stride(upside_down ? -width - extra : width + extra),
          first(upside_down ? (1 - height) * stride : 0),
          memory(make_content(
              content, static_cast<size_t>((width + extra) * (height - 1) + width) + slack, seed)) {
    }
    const uint8_t *at() { return memory.data() + first; }
    int operator()(int x, int y) { return at()[y * stride + x]; }

    int stride, first;
    GuardedBytes memory;
};

// Calls check(a, b) for blocks of every content, several strides of both signs and 16 alignments.
// Kernels of four columns may read four more bytes.
template <class Check>
void for_each_pair(int width, int height, Check check) {
    const size_t readable = width == 4 ? 4 : 0;
    for (int content = 0; content < CONTENTS; content++) {
        for (size_t i = 0; i < 16; i++) {
            const int extra = static_cast<int>(readable + i * i % 37);
            const auto seed = static_cast<unsigned>(width * 100 + height + content);
            Block a(width, height, extra, readable + i, content, seed, i & 1);
            Block b(width, height, extra + 5, readable + i * 7 % 16, content, seed + 50, i & 2);
            check(a, b);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

// Sum of f(a(x, y) - b(x, y)).
template <class Function>
int sum_of(int width, int height, Block &a, Block &b, Function f) {
    int sum = 0;
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) sum += f(a(x, y) - b(x, y));
    }
    return sum;
}

// Ten rows: two groups of four, and two more rows.
TEST_P(Metric, EarlySkipStopsAfterTheRowThatExceedsTheThreshold) {
    constexpr int ROWS = 10;
    for (const int width : {4, 8, 12, 16, 20, 28, 32, 36, 64, 68}) {
        for (int i = 0; i < 16; i++) {
            // Only the aligned words that contain the rows of b are readable.
            const int align = i % 4;
            Block a(width, ROWS, 4, 0, RANDOM, 1, i & 4);
            Block b(width + align, ROWS, 8 - align, static_cast<size_t>(4 - align) % 4, RANDOM, 2,
                    i & 8);
            const uint8_t *at = b.at() + align;
            int sums[ROWS], sum = 0;
            for (int y = 0; y < ROWS; y++) {
                for (int x = 0; x < width; x++) sum += std::abs(a(x, y) - b(x + align, y));
                sums[y] = sum;
            }
            const auto eskip = [&](int height, int threshold) {
                return get<tavu_sad_eskip>()(width, height, a.at(), at, a.stride, b.stride,
                                             threshold);
            };
            ASSERT_EQ(reinterpret_cast<uintptr_t>(at) % 4, static_cast<uintptr_t>(align));
            for (int y = 0; y < ROWS; y++) {
                ASSERT_EQ(eskip(ROWS, sums[y] - 1), sums[y]);
                // Equality does not stop.
                ASSERT_EQ(eskip(ROWS, sums[y]), sums[std::min(y + 1, ROWS - 1)]);
                ASSERT_EQ(eskip(y + 1, INT32_MAX), sums[y]);
            }
            ASSERT_EQ(eskip(ROWS, -1), sums[0]);
            ASSERT_EQ(eskip(ROWS, INT32_MIN), sums[0]);
        }
    }
    const Bytes white(64, 255), black(64, 0);
    EXPECT_EQ(get<tavu_sad_eskip>()(64, 131586, white.data(), black.data(), 0, 0, INT32_MAX),
              255 * 8421504);  // 127 below the largest result
}

TEST_P(Metric, DiffWritesOnlyTheDifferences) {
    const auto check = [](int width, int height, const auto &run) {
        for_each_pair(std::max(width, 1), std::max(height, 1), [&](Block &a, Block &b) {
            for (const int gap : {0, 3, -3}) {  // negative for a negative stride
                const int step = std::max(width, 1) + std::abs(gap);
                const int samples = height < 1 ? 0 : step * (height - 1) + std::max(width, 0);
                GuardedBytes memory(static_cast<size_t>(samples) * 2);
                auto *out = static_cast<int16_t *>(static_cast<void *>(memory.data()));
                run(a, b, gap < 0 ? -step : step,
                    gap < 0 && height > 0 ? out + step * (height - 1) : out);
                for (int i = 0; i < samples; i++) {
                    const int x = i % step, y = gap < 0 ? height - 1 - i / step : i / step;
                    int16_t got;
                    memcpy(&got, memory.data() + 2 * i, 2);
                    ASSERT_EQ(got, x < width ? a(x, y) - b(x, y) : int16_t(0xA5A5));
                }
                ASSERT_TRUE(memory.front_is_intact());
            }
        });
    };
    for (const auto &k : diff_block_kernels()) {
        check(k.width, k.height, [&](Block &a, Block &b, int stride, int16_t *out) {
            k.variants[GetParam()].run(a.at(), b.at(), a.stride, b.stride, stride, out);
        });
    }
    const int sizes[][2] = {{1, 1}, {3, 2}, {17, 5}, {40, 3}, {0, 3}, {-2, 3}, {5, 0}, {5, -1}};
    for (const auto &[width, height] : sizes) {
        check(width, height,
              [&, w = width, h = height](Block &a, Block &b, int stride, int16_t *out) {
                  get<tavu_diff>()(w, h, a.at(), b.at(), a.stride, b.stride, stride, out);
              });
    }
}

// Sums of magnitudes of each horizontal frequency, computed with the transform's sign matrix.
std::vector<int> magnitudes(int size, Block &a, Block &b, int x0, int y0) {
    const auto sign = [](int u, int x) {
        return __builtin_parity(static_cast<unsigned>(u & x)) ? -1 : 1;
    };
    std::vector<int> sums(static_cast<size_t>(size), 0);
    for (int u = 0; u < size; u++) {
        int rows[8] = {};
        for (int y = 0; y < size; y++) {
            for (int x = 0; x < size; x++) {
                rows[y] += sign(u, x) * (a(x0 + x, y0 + y) - b(x0 + x, y0 + y));
            }
        }
        for (int v = 0; v < size; v++) {
            int coefficient = 0;
            for (int y = 0; y < size; y++) coefficient += sign(v, y) * rows[y];
            sums[static_cast<size_t>(u)] += std::abs(coefficient);
        }
    }
    return sums;
}

// The sum over all tiles that cover the area.
int satd_of(int size, int width, int height, Block &a, Block &b) {
    int sum = 0;
    for (int y = 0; y < height; y += size) {
        for (int x = 0; x < width; x += size) {
            int total = 0;
            for (const int m : magnitudes(size, a, b, x, y)) {
                total += size == 8 ? static_cast<int16_t>(m) : m;
            }
            sum += size == 8 ? (total + 2) >> 2 : total >> 1;
        }
    }
    return sum;
}

// The expected result: the definition of the metric's family, found by name, else its model.
template <class Kernel>
int definition(const Kernel &kernel, const Area &area, Block &a, Block &b, const BlockCall &call) {
    const std::string name = kernel.name;
    const auto sum = [&](auto f) { return sum_of(area.columns, area.rows, a, b, f); };
    if (name.find("satd") == 0) {
        const bool tiles8 = name == "satd2" || name == "satd8x8";
        return satd_of(tiles8 ? 8 : 4, area.width, area.height, a, b);
    }
    if (name.find("ssd") == 0) return sum([](int d) { return d * d; });
    if (name.find("sad") == 0) return sum([](int d) { return std::abs(d); });
    return call.run(kernel.model);
}

template <class Kernel>
void expect_definition(const Kernel &kernel, const Area &area) {
    for_each_pair(area.columns, area.rows, [&](Block &a, Block &b) {
        const BlockCall call{a.at(), b.at(), a.stride, b.stride, area.width, area.height};
        const int expected = definition(kernel, area, a, b, call);
        ASSERT_EQ(call.run(kernel.model), expected) << kernel.name;
        for (const auto &variant : kernel.variants) {
            ASSERT_EQ(call.run(variant.run), expected)
                << kernel.name << ' ' << variant.level << ", " << area.width << 'x' << area.height;
        }
    });
}

TEST(MetricTable, BlocksEqualTheirDefinition) {
    const Bytes black(64 * 64 + 4, 0), white(64 * 64 + 4, 255);
    for (const auto &k : block_kernels()) {
        expect_definition(k, {k.width, k.height, k.width, k.height});
        if (std::string(k.name).find("sad") != 0) continue;
        for (const auto &variant : k.variants) {
            EXPECT_EQ(variant.run(white.data(), black.data(), 64, 64), 255 * k.width * k.height);
        }
    }
}

// For SAD and SSD, which replace most widths, all kinds of widths; for SATD, partial tiles.
std::vector<std::pair<int, int>> sizes_of(const std::string &name) {
    if (name.find("satd") == 0) {
        return {{4, 4}, {16, 8}, {8, 16}, {12, 20}, {9, 5}, {1, 1}, {20, 68}, {396, 66}};
    }
    std::vector<std::pair<int, int>> sizes;
    for (const int width : {-8, -4, 0, 4, 5, 7, 8, 9, 12, 15, 16, 17, 31, 32, 33, 64}) {
        for (const int height : {1, 2, 3, 4, 6, 7, 8, 10, 12, 16, 20, 64, 256}) {
            sizes.emplace_back(width, height);
        }
    }
    return sizes;
}

TEST(MetricTable, AreasEqualTheirDefinition) {
    for (const auto &k : area_kernels()) {
        for (const auto &[width, height] : sizes_of(k.name)) {
            expect_definition(k, k.fit(width, height));
            for (const auto &variant : k.variants) {
                EXPECT_EQ(variant.run(width, 0, nullptr, nullptr, 0, 0), 0) << k.name;
            }
        }
    }
}

TEST_P(Metric, SatdOfNoColumnsOrRowsIsZero) {
    for (tavu_metric_area_t *metric : {get<tavu_satd1>(), get<tavu_satd2>()}) {
        for (const int none : {0, -1, -5}) {
            EXPECT_EQ(metric(24, none, nullptr, nullptr, 0, 0), 0);
            EXPECT_EQ(metric(none, 8, nullptr, nullptr, 0, 0), 0);
        }
    }
}

TEST_P(Metric, HadamardOfResiduals) {
    for_each_pair(4, 4, [](Block &a, Block &b) {
        int16_t residual[16];
        get<tavu_diff4x4>()(a.at(), b.at(), a.stride, b.stride, 4, residual);
        ASSERT_EQ(get<tavu_hadamard4x4>()(residual), satd_of(4, 4, 4, a, b));
    });
    for (const int d : {1, -1, 5, 255, -255, 2047, -2047}) {
        int16_t flat[16], single[16] = {static_cast<int16_t>(d)};
        for (int16_t &r : flat) r = static_cast<int16_t>(d);
        EXPECT_EQ(get<tavu_hadamard4x4>()(flat), 8 * std::abs(d));
        EXPECT_EQ(get<tavu_hadamard4x4>()(single), 8 * std::abs(d));
    }
    int16_t largest[16];
    for (int i = 0; i < 16; i++) {
        largest[i] =
            static_cast<int16_t>(__builtin_parity(static_cast<unsigned>(i & i / 4)) ? -2047 : 2047);
    }
    EXPECT_EQ(get<tavu_hadamard4x4>()(largest), 65504);
}

// The SSD of 64 columns and `rows` rows whose samples all differ by 255.
int32_t largest_ssd(tavu_metric_area_t *ssd, int rows) {
    const Bytes white(64, 255), black(64, 0);
    return ssd(64, rows, white.data(), black.data(), 0, 0);
}

TEST_P(Metric, SsdWrapsIn32Bits) {
    EXPECT_EQ(largest_ssd(get<tavu_ssd>(), 64), 266342400);
    EXPECT_EQ(largest_ssd(get<tavu_ssd>(), 516), 2147385600);   // 33,024 samples
    EXPECT_EQ(largest_ssd(get<tavu_ssd>(), 520), -2130935296);  // wraps
    EXPECT_EQ(static_cast<uint32_t>(largest_ssd(get<tavu_ssd>(), 1032)), 66048U * 65025);
}

// For residuals 255 s(y) t(x) with signs s and t, the coefficients of one u may sum to more than 15
// bits. Each sum wraps separately, as a signed number. By Parseval two sums never wrap at once:
// each needs half of the largest energy.
TEST_P(Metric, Satd8x8SumsEachFrequencyIn16Bits) {
    Block a(8, 8, 0, 0, RANDOM, 1, false), b(8, 8, 0, 0, RANDOM, 2, false);
    int wrapped = 0;
    for (int signs = 0; signs < 1 << 16; signs += 3) {  // of columns, then of rows
        for (int i = 0; i < 64; i++) {
            const bool positive = (signs >> i % 8 ^ signs >> (8 + i / 8)) & 1;
            a.memory.data()[i] = positive ? 255 : 0;
            b.memory.data()[i] = positive ? 0 : 255;
        }
        const int expected = satd_of(8, 8, 8, a, b);
        wrapped += expected < 0;
        ASSERT_EQ(get<tavu_satd8x8>()(a.at(), b.at(), 8, 8), expected) << signs;
    }
    EXPECT_GT(wrapped, 100);
}

// Residuals with one value per row have one horizontal frequency of magnitude 8 sum |C(v)|.
TEST_P(Metric, SmallestSatd8x8) {
    const struct {
        int residual[8], satd;
    } cases[] = {{{-204, 204, 204, 204, 204, 204, 204, 204}, 32640 / 4},  // 160 * 204 = 32640
                 {{-205, 204, 204, 205, 205, 205, 205, 205}, -8192},      // 8 * 4096 = 32768
                 {{-255, 255, 255, 255, 255, 255, 255, 255}, -6184}};     // 160 * 255 = 40800
    for (const auto &c : cases) {
        uint8_t a[64], b[64];
        for (int i = 0; i < 64; i++) {
            a[i] = static_cast<uint8_t>(std::max(c.residual[i / 8], 0));
            b[i] = static_cast<uint8_t>(std::max(-c.residual[i / 8], 0));
        }
        EXPECT_EQ(get<tavu_satd8x8>()(a, b, 8, 8), c.satd);
        EXPECT_EQ(get<tavu_satd2>()(8, 8, a, b, 8, 8), c.satd);
    }
}

// The residual of magnitude 255 whose coefficients are all 64 * 255 / 8: its sign is the parity of
// the bits that column and row have in common. The same holds for its quarters.
TEST_P(Metric, LargestSatdOfAnArea) {
    constexpr int WIDTH = 2184, HEIGHT = 1928, MORE = 8;  // 4,210,752 samples
    Bytes a(static_cast<size_t>(WIDTH + MORE) * HEIGHT), b(a.size());
    for (size_t i = 0; i < a.size(); i++) {
        const size_t x = i % (WIDTH + MORE), y = i / (WIDTH + MORE);
        a[i] = __builtin_parityll(x & y & 7) ? 255 : 0;
        b[i] = static_cast<uint8_t>(255 - a[i]);
    }
    EXPECT_EQ(get<tavu_satd4x4>()(a.data(), b.data(), WIDTH + MORE, WIDTH + MORE), 8160);
    EXPECT_EQ(get<tavu_satd8x8>()(a.data(), b.data(), WIDTH + MORE, WIDTH + MORE), 32640);
    for (auto *satd : {get<tavu_satd>(), get<tavu_satd1>(), get<tavu_satd2>()}) {
        const auto of_width = [&](int width) {
            return satd(width, HEIGHT, a.data(), b.data(), WIDTH + MORE, WIDTH + MORE);
        };
        EXPECT_EQ(of_width(WIDTH), 2147483520);
        EXPECT_EQ(of_width(WIDTH + MORE), -2139617536);  // wraps
    }
}

}  // namespace
