// Block metrics of every level against their definitions, on blocks that end at an unreadable page.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "content.h"
#include "memory.h"
#include "tavu.h"
#include "variants.h"

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

// A block whose last row ends `slack` bytes before an unreadable page.
struct Block {
    Block(int width, int height, int extra, size_t slack, int content, unsigned seed)
        : stride(width + extra),
          memory(make_content(content, static_cast<size_t>(stride * (height - 1) + width) + slack,
                              seed)) {}
    const uint8_t *at() { return memory.data(); }
    int operator()(int x, int y) { return memory.data()[y * stride + x]; }

    int stride;
    GuardedBytes memory;
};

// Calls check(a, b) for blocks of every content, several strides and 16 alignments. Kernels of four
// columns have four more readable bytes.
template <class Check>
void for_each_pair(int width, int height, Check check) {
    const size_t readable = width == 4 ? 4 : 0;
    for (int content = 0; content < CONTENTS; content++) {
        for (size_t i = 0; i < 16; i++) {
            const int extra = static_cast<int>(readable + i * i % 37);
            const auto seed = static_cast<unsigned>(width * 100 + height + content);
            Block a(width, height, extra, readable + i, content, seed);
            Block b(width, height, extra + 5, readable + i * 7 % 16, content, seed + 50);
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

int sad_of(int width, int height, Block &a, Block &b) {
    return sum_of(width, height, a, b, [](int d) { return std::abs(d); });
}

TEST_P(Metric, SadOfFixedSizes) {
    struct {
        tavu_metric_block_t *sad;
        int width, height;
    } const kernels[] = {{get<tavu_sad2x2>(), 2, 2},     {get<tavu_sad2x4>(), 2, 4},
                         {get<tavu_sad4x2>(), 4, 2},     {get<tavu_sad4x4>(), 4, 4},
                         {get<tavu_sad4x8>(), 4, 8},     {get<tavu_sad8x4>(), 8, 4},
                         {get<tavu_sad8x8>(), 8, 8},     {get<tavu_sad8x16>(), 8, 16},
                         {get<tavu_sad16x8>(), 16, 8},   {get<tavu_sad16x16>(), 16, 16},
                         {get<tavu_sad16x32>(), 16, 32}, {get<tavu_sad32x16>(), 32, 16},
                         {get<tavu_sad32x32>(), 32, 32}, {get<tavu_sad64x32>(), 64, 32},
                         {get<tavu_sad32x64>(), 32, 64}, {get<tavu_sad64x64>(), 64, 64}};
    for (const auto &k : kernels) {
        for_each_pair(k.width, k.height, [&](Block &a, Block &b) {
            ASSERT_EQ(k.sad(a.at(), b.at(), a.stride, b.stride), sad_of(k.width, k.height, a, b))
                << k.width << 'x' << k.height;
        });
        const Bytes black(64 * 64 + 4, 0), white(64 * 64 + 4, 255);
        EXPECT_EQ(k.sad(white.data(), black.data(), 64, 64), 255 * k.width * k.height);
    }
}

TEST_P(Metric, SadOfEveryWidthButEightIsThatOfSixteen) {
    for (const int width : {8, 0, 4, 12, 16, 32, -8}) {
        EXPECT_EQ(get<tavu_sad>()(width, 0, nullptr, nullptr, 0, 0), 0);
        for (const int height : {8, 16, 256}) {
            const int columns = width == 8 ? 8 : 16;
            for_each_pair(columns, height, [&](Block &a, Block &b) {
                ASSERT_EQ(get<tavu_sad>()(width, height, a.at(), b.at(), a.stride, b.stride),
                          sad_of(columns, height, a, b));
            });
        }
    }
}

TEST_P(Metric, EarlySkipStopsBehindTheRowThatExceeds) {
    for (const int width : {4, 8, 16, 20, 64}) {
        for (int align = 0; align < 4; align++) {
            // Words around the rows of b are readable, no byte more.
            Block a(width, 5, 4, 0, RANDOM, 1);
            Block b(width + align, 5, 8 - align, static_cast<size_t>(4 - align) % 4, RANDOM, 2);
            const uint8_t *at = b.at() + align;
            int sums[5], sum = 0;
            for (int y = 0; y < 5; y++) {
                for (int x = 0; x < width; x++) sum += std::abs(a(x, y) - b(x + align, y));
                sums[y] = sum;
            }
            const auto eskip = [&](int height, int threshold) {
                return get<tavu_sad_eskip>()(width, height, a.at(), at, a.stride, b.stride,
                                             threshold);
            };
            EXPECT_EQ(reinterpret_cast<uintptr_t>(at) % 4, static_cast<uintptr_t>(align));
            for (int y = 0; y < 5; y++) {
                EXPECT_EQ(eskip(5, sums[y] - 1), sums[y]);
                EXPECT_EQ(eskip(5, sums[y]), sums[y < 4 ? y + 1 : 4]);  // equality does not stop
                EXPECT_EQ(eskip(y + 1, INT32_MAX), sums[y]);
            }
            EXPECT_EQ(eskip(5, -1), sums[0]);
        }
    }
}

// Whatever stands in columns 4 to 7 is read and never seen.
TEST_P(Metric, FourColumnsSeeFourColumns) {
    Bytes a(8 * 8, 10), b(8 * 8, 7);
    for (size_t i = 0; i < 64; i++) {
        if (i % 8 >= 4) a[i] = static_cast<uint8_t>(37 * i);
    }
    EXPECT_EQ(get<tavu_sad4x4>()(a.data(), b.data(), 8, 8), 3 * 16);
    EXPECT_EQ(get<tavu_sad4x8>()(a.data(), b.data(), 8, 8), 3 * 32);
    EXPECT_EQ(get<tavu_ssd>()(4, 8, a.data(), b.data(), 8, 8), 9 * 32);
    EXPECT_EQ(get<tavu_satd4x4>()(a.data(), b.data(), 8, 8), 24);
    std::vector<int16_t> diff(8 * 4, 99);
    get<tavu_diff4x4>()(a.data(), b.data(), 8, 8, 8, diff.data());
    for (size_t i = 0; i < diff.size(); i++) EXPECT_EQ(diff[i], i % 8 < 4 ? 3 : 99);
}

TEST_P(Metric, DifferencesAreWrittenAndNothingElse) {
    const auto check = [](int width, int height, const auto &run) {
        for_each_pair(std::max(width, 1), std::max(height, 1), [&](Block &a, Block &b) {
            for (const int stride : {std::max(width, 1), std::max(width, 1) + 3}) {
                const int samples = height < 1 ? 0 : stride * (height - 1) + std::max(width, 0);
                GuardedBytes memory(static_cast<size_t>(samples) * 2);
                run(a, b, stride, static_cast<int16_t *>(static_cast<void *>(memory.data())));
                for (int i = 0; i < samples; i++) {
                    const int x = i % stride, y = i / stride;
                    int16_t got;
                    memcpy(&got, memory.data() + 2 * i, 2);
                    ASSERT_EQ(got, x < width ? a(x, y) - b(x, y) : int16_t(0xA5A5));
                }
                ASSERT_TRUE(memory.front_is_intact());
            }
        });
    };
    struct {
        tavu_diff_block_t *diff;
        int size;
    } const kernels[] = {{get<tavu_diff2x2>(), 2},    {get<tavu_diff4x4>(), 4},
                         {get<tavu_diff8x8>(), 8},    {get<tavu_diff16x16>(), 16},
                         {get<tavu_diff32x32>(), 32}, {get<tavu_diff64x64>(), 64}};
    for (const auto &k : kernels) {
        check(k.size, k.size, [&](Block &a, Block &b, int stride, int16_t *out) {
            k.diff(a.at(), b.at(), a.stride, b.stride, stride, out);
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

TEST_P(Metric, SsdOfOtherWidthsIsThatOf64) {
    for (const int width : {4, 8, 16, 32, 64, 0, 5, 7, 9, 15, 17, 31, 33, -4}) {
        const bool known = width == 4 || width == 8 || width == 16 || width == 32;
        const int columns = known ? width : 64;
        EXPECT_EQ(get<tavu_ssd>()(width, 0, nullptr, nullptr, 0, 0), 0);
        for (const int height : {4, 8, 16, 64}) {
            for_each_pair(columns, height, [&](Block &a, Block &b) {
                ASSERT_EQ(get<tavu_ssd>()(width, height, a.at(), b.at(), a.stride, b.stride),
                          sum_of(columns, height, a, b, [](int d) { return d * d; }));
            });
        }
    }
    const Bytes black(64 * 64, 0), white(64 * 64, 255);
    EXPECT_EQ(get<tavu_ssd>()(64, 64, black.data(), white.data(), 64, 64), 266342400);
}

// Sums of magnitudes of each horizontal frequency, by the sign matrix of the transform.
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

// Sum over the tiles that cover the area.
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

TEST_P(Metric, SatdIsTheTransformsMagnitude) {
    for_each_pair(4, 4, [](Block &a, Block &b) {
        const int expected = satd_of(4, 4, 4, a, b);
        ASSERT_EQ(get<tavu_satd4x4>()(a.at(), b.at(), a.stride, b.stride), expected);
        int16_t residual[16];
        get<tavu_diff4x4>()(a.at(), b.at(), a.stride, b.stride, 4, residual);
        ASSERT_EQ(get<tavu_hadamard4x4>()(residual), expected);
    });
    for_each_pair(8, 8, [](Block &a, Block &b) {
        ASSERT_EQ(get<tavu_satd8x8>()(a.at(), b.at(), a.stride, b.stride), satd_of(8, 8, 8, a, b));
    });
    for (const int d : {1, -1, 5, 255, -255}) {
        int16_t flat[16], single[16] = {static_cast<int16_t>(d)};
        for (int16_t &r : flat) r = static_cast<int16_t>(d);
        EXPECT_EQ(get<tavu_hadamard4x4>()(flat), 8 * std::abs(d));
        EXPECT_EQ(get<tavu_hadamard4x4>()(single), 8 * std::abs(d));
    }
    const int16_t large[16] = {2047, -2047, 2047, -2047, 2047, -2047, 2047, -2047};
    EXPECT_EQ(get<tavu_hadamard4x4>()(large), 2 * 8 * 2047 / 2);
}

TEST_P(Metric, SatdOfAnAreaIsTheSumOfItsTiles) {
    const int sizes[][2] = {{4, 4}, {16, 8}, {8, 16},  {12, 20},
                            {9, 5}, {1, 1},  {20, 68}, {396, 66}};
    for (const auto &[w, h] : sizes) {
        const int width = w, height = h;
        for_each_pair((w + 7) / 8 * 8, (h + 7) / 8 * 8, [&](Block &a, Block &b) {
            const auto run = [&](tavu_metric_area_t *metric) {
                return metric(width, height, a.at(), b.at(), a.stride, b.stride);
            };
            ASSERT_EQ(run(get<tavu_satd1>()), satd_of(4, width, height, a, b));
            ASSERT_EQ(run(get<tavu_satd2>()), satd_of(8, width, height, a, b));
            if (width % 4 == 0 && height % 4 == 0) {
                ASSERT_EQ(run(get<tavu_satd>()), satd_of(4, width, height, a, b));
            }
        });
    }
    for (tavu_metric_area_t *metric : {get<tavu_satd1>(), get<tavu_satd2>()}) {
        for (const int none : {0, -1, -5}) {
            EXPECT_EQ(metric(24, none, nullptr, nullptr, 0, 0), 0);
            EXPECT_EQ(metric(none, 8, nullptr, nullptr, 0, 0), 0);
        }
    }
}

// The residual 255 s(y) t(x) of signs has the coefficients 255 S(v) T(u), whose sums of one u leave
// 15 bits: they wrap one by one, and as signed numbers.
TEST_P(Metric, Satd8x8SumsEachFrequencyIn16Bits) {
    int magnitude[256][8] = {};
    for (int signs = 0; signs < 256; signs++) {
        for (int u = 0; u < 8; u++) {
            int c = 0;
            for (int x = 0; x < 8; x++)
                c += __builtin_parity(static_cast<unsigned>(u & x)) == (signs >> x & 1) ? 1 : -1;
            magnitude[signs][u] = std::abs(c);
        }
    }
    int wrapped = 0;
    uint8_t a[64], b[64];
    for (int vertical = 0; vertical < 256; vertical++) {
        for (int horizontal = 0; horizontal < 256; horizontal++) {
            for (int i = 0; i < 64; i++) {
                a[i] = (vertical >> (i / 8) ^ horizontal >> (i % 8)) & 1 ? 255 : 0;
                b[i] = static_cast<uint8_t>(255 - a[i]);
            }
            int rows = 0, total = 0;
            for (const int m : magnitude[vertical]) rows += m;
            for (const int m : magnitude[horizontal]) {
                wrapped += 255 * rows * m > INT16_MAX;
                total += static_cast<int16_t>(255 * rows * m);
            }
            ASSERT_EQ(get<tavu_satd8x8>()(a, b, 8, 8), (total + 2) >> 2)
                << vertical << ' ' << horizontal;
        }
    }
    EXPECT_GT(wrapped, 1000);
}

}  // namespace
