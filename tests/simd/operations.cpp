// Compiled once for each level. Only the list has external linkage, because a body that is compiled
// for v4 must not be linked into code for other processors.
#include "operations.h"

#include <cstring>
#include <type_traits>

#include "simd/resample.h"
#include "simd/row_loop.h"
#include "simd/satd.h"
#include "simd/scan.h"

namespace tavu {
namespace {

// The lanes of a register as an array.
template <class T, int N>
struct Array {
    T at[size_t{N}];
    bool operator==(const Array &other) const { return memcmp(at, other.at, sizeof at) == 0; }
};

template <class T, class V>
constexpr int COUNT = static_cast<int>(sizeof(V) / (sizeof(T)));

template <class T, class V>
auto lanes_of(const V &v) {
    Array<T, COUNT<T, V>> lanes;
    memcpy(&lanes, &v, sizeof v);
    return lanes;
}

template <class V>
V load_as(const void *p) {
    V v;
    memcpy(&v, p, sizeof v);
    return v;
}

// Whether each lane i equals meaning(i).
template <class T, class V, class Meaning>
bool is(const V &v, Meaning meaning) {
    auto expected = lanes_of<T>(v);
    for (int i = 0; i < COUNT<T, V>; i++) expected.at[i] = static_cast<T>(meaning(i));
    return expected == lanes_of<T>(v);
}

// The widths of registers that have operations of their own.
constexpr int WIDE = LANES < 32 ? LANES : 32;

int clamp(int x) { return x < 0 ? 0 : x > 255 ? 255 : x; }
int abs_of(int x) { return x < 0 ? -x : x; }

bool load_and_store(const uint8_t *r) {
    const uint8_t *in = r + 1;
    uint8_t bytes[LANES + 2] = {}, *out = bytes + 1;
    const U8 v = load_next(in);
    store_next(out, v);
    return in == r + 1 + LANES && out == bytes + 1 + LANES &&
           memcmp(bytes + 1, r + 1, LANES) == 0 && bytes[0] == 0 && bytes[LANES + 1] == 0 &&
           is<uint8_t>(v, [r](int i) { return r[i + 1]; }) &&
           is<uint8_t>(splat(r[5]), [r](int) { return r[5]; });
}

bool choose_and_pick(const uint8_t *r) {
    const U8 a = load_as<U8>(r), b = load_as<U8>(r + LANES);
    U8 first{}, second{};
    choose(true, [&](auto choice) { first = pick(choice, a, b); });
    choose(false, [&](auto choice) { second = pick(choice, a, b); });
    return is<uint8_t>(first, [r](int i) { return r[i]; }) &&
           is<uint8_t>(second, [r](int i) { return r[LANES + i]; });
}

bool widen_and_narrow(const uint8_t *r) {
    const auto offset = static_cast<int16_t>((r[0] << 8 | r[1]) / 2 - 16384);
    Wide w = widen(load_as<U8>(r));
    w.lo += offset, w.hi += offset;
    return is<uint8_t>(narrow(w), [=](int i) { return clamp(r[i] + offset); });
}

bool from_rgb(const uint8_t *r) {
    U8 y, u, v;
    rgb_to_yuv(load_as<U8>(r), load_as<U8>(r + LANES), load_as<U8>(r + 2 * LANES), &y, &u, &v);
    const auto is_sum = [r](U8 sum, int offset, int of_r, int of_g, int of_b) {
        return is<uint8_t>(sum, [=](int i) {
            const int weighted = of_r * r[i] + of_g * r[LANES + i] + of_b * r[2 * LANES + i];
            return clamp(offset + ((weighted + 128) >> 8));
        });
    };
    return is_sum(y, 0, 77, 150, 29) && is_sum(u, 128, -43, -85, 128) &&
           is_sum(v, 128, 128, -107, -21);
}

// The terms are added to grey and narrowed to bytes, which restores the order of the lanes.
bool terms_of_chroma(const uint8_t *r) {
    const uint8_t *const at = r, *const end = r + LANES;
    const ChromaTerms t = chroma_terms(load_as<U8>(at), load_as<U8>(end));
    const auto grey = static_cast<int16_t>(r[0]);
    const auto is_term = [&](Wide term, int from_u, int from_v) {
        return is<uint8_t>(narrow({term.lo + grey, term.hi + grey}), [&](int i) {
            return clamp(grey + ((from_u * (at[i] - 128) + from_v * (end[i] - 128) + 128) >> 8));
        });
    };
    return is_term(t.r, 0, 359) && is_term(t.g, 88, 183) && is_term(t.b, 454, 0);
}

template <size_t... CHANNEL>
bool stores_interleaved(const uint8_t *r) {
    constexpr int CHANNELS = sizeof...(CHANNEL);
    uint8_t bytes[size_t{CHANNELS * LANES + 1}] = {}, *out = bytes;
    store_next_interleaved(out, load_as<U8>(r + CHANNEL * LANES)...);
    for (int i = 0; i < CHANNELS * LANES; i++) {
        if (bytes[i] != r[i % CHANNELS * LANES + i / CHANNELS]) return false;
    }
    return out == bytes + CHANNELS * LANES && bytes[CHANNELS * LANES] == 0;
}

template <size_t... CHANNEL>
bool loads_interleaved(const uint8_t *r) {
    constexpr int CHANNELS = sizeof...(CHANNEL);
    const uint8_t *in = r;
    U8 v[size_t{CHANNELS}];
    load_next_interleaved(in, &v[CHANNEL]...);
    return in == r + CHANNELS * LANES &&
           (is<uint8_t>(v[CHANNEL], [r](int i) { return r[CHANNELS * i + int{CHANNEL}]; }) && ...);
}

bool lesser_and_zeros(const uint8_t *r) {
    const U8 a = load_as<U8>(r), b = load_as<U8>(r + LANES);
    U8 few = a | 1;
    const int at = r[0] % LANES, later = r[1] % LANES;
    few[at] = 0;
    if (later > at) few[later] = 0;
    return is<uint8_t>(lesser(a, b),
                       [r](int i) { return r[i] < r[LANES + i] ? r[i] : r[LANES + i]; }) &&
           !zero_lanes(a | 1) && first_lane(zero_lanes(few)) == at;
}

// With positive and negative strides, and overlapping rows.
template <int N, int W>
bool rows_of(const uint8_t *r) {
    const ptrdiff_t stride = r[0] % 100 - 50;
    const uint8_t *const start = r + OPERATION_BYTES / 2, *p = start;
    const auto v = load_next_rows<N, W>(p, stride);
    return p == start + N / W * stride &&
           is<uint8_t>(v, [=](int i) { return start[i / W * stride + i % W]; });
}

template <int W>
bool start_of(const uint8_t *r) {
    return is<uint8_t>(load_start<W>(r), [r](int i) { return i < W ? r[i] : 0; });
}

template <int N>
bool differences(const uint8_t *r) {
    const uint8_t *const a = r, *const b = r + 100, *p = a, *q = b;
    Array<int16_t, N / 2> out;
    store_difference<N>(a, b, out.at);
    const auto v = load_next_difference<N>(p, 7, q, -9);
    const auto meaning = [=](int i) { return a[i] - b[i]; };
    return is<int16_t>(out, meaning) && is<int16_t>(v, meaning) && p == a + 7 && q == b - 9;
}

template <template <int> class Sum, int N, class Term>
bool is_sum(const uint8_t *r, Term term) {
    Sum<N> sum;
    int32_t expected = 0;
    for (int i = 0; i < 512; i += N) {
        sum.add(load<N>(r + i), load<N>(r + 512 + i));
        for (int j = i; j < i + N; j++) expected += term(r[j] - r[512 + j]);
    }
    return sum.total() == expected && Sum<N>::zero().total() == 0;
}

template <int N>
bool sums(const uint8_t *r) {
    const uint8_t *const start = r, *p = start;
    return is_sum<AbsSum, N>(r, abs_of) && is_sum<SquareSum, N>(r, [](int d) { return d * d; }) &&
           is<uint8_t>(load<N>(r), [r](int i) { return r[i]; }) &&
           is<uint8_t>(load_next<N>(p), [r](int i) { return r[i]; }) && p == start + N;
}

// Lanes in [-most, most].
template <int N>
VecI16<N> small(const uint8_t *r, int most) {
    Array<int16_t, N / 2> values;
    for (int i = 0; i < N / 2; i++) {
        values.at[i] =
            static_cast<int16_t>((r[2 * i] * 256 + r[2 * i + 1]) % (2 * most + 1) - most);
    }
    return load_as<VecI16<N>>(&values);
}

template <int N>
bool butterflies(const uint8_t *r) {
    const auto a = small<N>(r, 8160), b = small<N>(r + N, 8160);
    auto sum = a, difference = b, magnitude = a, other = b, low = a, high = b;
    butterfly(sum, difference);
    butterfly_abs(magnitude, other);
    zip(low, high);
    const auto is_of = [x = lanes_of<int16_t>(a), y = lanes_of<int16_t>(b)](const auto &v,
                                                                            auto meaning) {
        return is<int16_t>(v, [&](int i) { return meaning(x.at[i], y.at[i]); });
    };
    const auto is_zip = [x = lanes_of<int16_t>(a), y = lanes_of<int16_t>(b)](const auto &v,
                                                                             int half) {
        return is<int16_t>(
            v, [&](int i) { return (i % 2 == 0 ? x : y).at[i / 8 * 8 + half * 4 + i % 8 / 2]; });
    };
    return is_of(sum, [](int x, int y) { return x + y; }) &&
           is_of(add(a, b), [](int x, int y) { return x + y; }) &&
           is_of(difference, [](int x, int y) { return x - y; }) &&
           is_of(magnitude, [](int x, int y) { return abs_of(x + y); }) &&
           is_of(other, [](int x, int y) { return abs_of(x - y); }) &&
           is_of(larger(a, b), [](int x, int y) { return x > y ? x : y; }) && is_zip(low, 0) &&
           is_zip(high, 1);
}

template <int N>
bool same_values(Array<int16_t, N> x, const Array<int16_t, N> &y) {
    for (int i = 0; i < N; i++) {
        int j = i;
        while (j < N && x.at[j] != y.at[i]) j++;
        if (j == N) return false;
        x.at[j] = x.at[i];
    }
    return true;
}

// The order of the results depends on the processor.
template <int N>
bool column_butterflies(const uint8_t *r) {
    constexpr int STRIDE = 20;
    const uint8_t *const a = r, *const b = r + 200, *p = a, *q = b;
    VecI16<N> v[COLUMN_REGISTERS<N>];
    load_next_butterflies<N>(p, STRIDE, q, STRIDE, v);
    const auto lanes = lanes_of<int16_t>(v);
    auto expected = lanes;
    for (int i = 0; i < static_cast<int>(sizeof lanes.at / sizeof *lanes.at); i += 2) {
        const int x = i / 16 * 4 * STRIDE + i % 16, even = a[x] - b[x], odd = a[x + 1] - b[x + 1];
        expected.at[i] = static_cast<int16_t>(even + odd);
        expected.at[i + 1] = static_cast<int16_t>(even - odd);
    }
    return same_values(lanes, expected) && p == a + STRIDE && q == b + STRIDE;
}

// Butterflies of neighbouring columns, or of rows 0 and 2, 1 and 3: this depends on the processor.
bool first_butterfly(const uint8_t *r) {
    VecI16<16> v[2];
    butterfly_difference(load<16>(r), load<16>(r + 16), &v[0], &v[1]);
    const auto lanes = lanes_of<int16_t>(v);
    auto of_columns = lanes, of_rows = lanes;
    const auto difference = [r](int i) { return r[i] - r[16 + i]; };
    for (int i = 0; i < 8; i++) {
        const int even = difference(2 * i), odd = difference(2 * i + 1);
        const int upper = difference(i), lower = difference(i + 8);
        of_columns.at[i] = static_cast<int16_t>(even + odd);
        of_columns.at[i + 8] = static_cast<int16_t>(even - odd);
        of_rows.at[i] = static_cast<int16_t>(upper + lower);
        of_rows.at[i + 8] = static_cast<int16_t>(upper - lower);
    }
    return same_values(lanes, of_columns) || same_values(lanes, of_rows);
}

template <int N>
bool magnitude_sums(const uint8_t *r) {
    VecI16<N> v[8];
    int32_t expected = 0, pairs = 0;
    MagnitudeSum<N> sum, sum_of_pairs;
    for (int i = 0; i < 8; i++) {
        const VecI16<N> s = small<N>(r + i * N, 4080);
        v[i] = larger(s, VecI16<N>{});
        const auto lanes = lanes_of<int16_t>(v[i]);
        for (int j = 0; j < N / 2; j += 2) {
            expected += lanes.at[j] + lanes.at[j + 1];
            pairs += lanes.at[j] > lanes.at[j + 1] ? lanes.at[j] : lanes.at[j + 1];
        }
        sum.add(v[i]);
    }
    sum_of_pairs.add_pairs(v);
    return sum.total() == expected && sum_of_pairs.total() == pairs;
}

template <int N>
bool rounded_sums(const uint8_t *r) {
    const auto a = small<N>(r, 16320), b = small<N>(r + N, 16320);
    const auto x = lanes_of<int16_t>(a), y = lanes_of<int16_t>(b);
    int32_t expected = 0;
    for (int first = 0; first < N / 2; first += 8) {
        int s = 2;
        for (int i = first; i < first + 4; i++) {
            s += static_cast<int16_t>(2 * (x.at[i] + x.at[i + 4]));
            s += static_cast<int16_t>(2 * (y.at[i] + y.at[i + 4]));
        }
        expected += s >> 2;
    }
    RoundedSum<N> once, twice = RoundedSum<N>::zero();
    once.add(a, b);
    twice.add(a, b);
    twice.add(a, b);
    return once.total() == expected && twice.total() == 2 * expected;
}

struct Cursor {
    int32_t *at;
    void move(int32_t pixels) { at += pixels; }
};

// Blocks cover every pixel of a row and no pixel outside.
bool row_loop(const uint8_t *r) {
    const int32_t width = LANES + r[0];
    int32_t touched[2 * LANES + 256 + LANES] = {}, covered = 0;
    for_each_block(Cursor{touched + LANES}, width, [](Cursor &cursor) {
        for (int i = 0; i < LANES; i++) ++*cursor.at++;
    });
    for (int32_t i = 0; i < width; i++) covered += touched[LANES + i] > 0;
    int32_t outside = 0;
    for (int32_t i = 0; i < LANES; i++) outside += touched[i] + touched[LANES + width + i];
    return covered == width && outside == 0;
}

// A bilinear sum of two samples of each of two rows.
int lerp(const uint8_t *upper, const uint8_t *lower, int left, int right, int a, int b) {
    return (8 - b) * ((8 - a) * upper[left] + a * upper[right]) +
           b * ((8 - a) * lower[left] + a * lower[right]);
}

U16x8 lanes8(const uint8_t *r, int below) {
    U16x8 v{};
    for (int i = 0; i < 8; i++) v[i] = static_cast<uint16_t>(r[i] % below);
    return v;
}

// Each group of 8 outputs has an offset of its own.
template <int WINDOWS>
bool gathers(const uint8_t *r) {
    constexpr int SPAN = WINDOWS * WINDOW;
    Gather<WINDOWS> gather;
    const uint8_t *const row = r + 500;
    for (int g = 0; g < OUTPUTS / 8; g++) {
        const uint8_t *const at = r + 24 * g;
        gather.offset[g] = at[0] - 128;
        set_positions(gather, g, lanes8(at, SPAN), lanes8(at + 8, SPAN));
        set_weights(gather.weight + 16 * g, lanes8(at + 16, 8));
    }
    return is<uint16_t>(lerp_columns<WINDOWS>(row, load_gather(gather)), [&](int i) {
        const uint8_t *const at = r + i / 8 * 24 + i % 8, *const from = row + gather.offset[i / 8];
        return lerp(from, from, at[0] % SPAN, at[8] % SPAN, at[16] % 8, 0) / 8;
    });
}

bool vertical_lerp(const uint8_t *r) {
    const U16 x = load_as<U16>(r) % 2041, y = load_as<U16>(r + LANES) % 2041;
    const auto upper = lanes_of<uint16_t>(x), lower = lanes_of<uint16_t>(y);
    const auto b = static_cast<uint16_t>(r[0] % 9);
    const U16 sum = lerp_rows(x, y, b);
    uint16_t stored[LANES / 2];
    store16(stored, sum);
    const auto signed_lanes = lanes_of<int16_t>(load_as<I16>(r));
    const Wide wide = widen(load_as<U8>(r));
    const UWide sums = {reinterpret_cast<U16>(wide.lo * 64 + 63),
                        reinterpret_cast<U16>(wide.hi * 64 + 63)};
    return is<uint16_t>(sum, [&](int i) { return (8 - b) * upper.at[i] + b * lower.at[i]; }) &&
           lanes_of<uint16_t>(load16(stored)) == lanes_of<uint16_t>(sum) &&
           is<int16_t>(round_shift8(load_as<I16>(r)),
                       [&](int i) { return (signed_lanes.at[i] + 128) >> 8; }) &&
           is<uint8_t>(narrow6(sums), [r](int i) { return r[i]; });
}

// Two blocks of squares.
bool squares(const uint8_t *r) {
    const uint8_t *const fractions = r + 1000, *upper = r, *lower = r + 8 * LANES;
    const int b = 1 + r[0] % 7;
    Weights2x2 weights[2], scaled[2];
    auto *const bytes = reinterpret_cast<uint8_t *>(weights);
    for (int block = 0; block < 2; block++) {
        uint8_t columns[2 * LANES];
        for (int i = 0; i < LANES; i += 8) {
            set_weights(columns + 2 * i, lanes8(fractions + block * LANES + i, 8));
        }
        for (int i = 0; i < 4 * LANES; i++) {
            const int weight = columns[i % (2 * LANES)] * (i < 2 * LANES ? 8 - b : b);
            bytes[4 * LANES * block + i] = static_cast<uint8_t>(weight);
        }
        for (int i = 0; i < 2; i++) {
            scaled[block].upper[i] = weights[block].upper[i] * ROW_SCALE_2X2;
            scaled[block].lower[i] = weights[block].lower[i] * ROW_SCALE_2X2;
        }
    }
    uint8_t out[2 * LANES];
    const Weights2x2 *next = scaled;
    lerp_row_2x2(upper, lower, next, 2, 64, out);
    const auto meaning = [&](int i) {
        return lerp(r, r + 8 * LANES, 2 * i, 2 * i + 1, fractions[i] % 8, b) >> 6;
    };
    const UWide first = lerp_next_2x2(upper, lower, weights[0]);
    return is<uint8_t>(load_as<Array<uint8_t, 2 * LANES>>(out), meaning) &&
           is<uint8_t>(narrow6(first), meaning) && upper == r + 2 * LANES &&
           lower == r + 10 * LANES;
}

template <bool (*...Check)(const uint8_t *)>
bool every(const uint8_t *r) {
    return (Check(r) && ...);
}

constexpr Operation OPERATIONS[] = {
    {"load_next, store_next, splat", load_and_store},
    {"choose, pick", choose_and_pick},
    {"widen, narrow", widen_and_narrow},
    {"rgb_to_yuv", from_rgb},
    {"chroma_terms", terms_of_chroma},
    {"store_next_interleaved of 2", stores_interleaved<0, 1>},
    {"store_next_interleaved of 3", stores_interleaved<0, 1, 2>},
    {"store_next_interleaved of 4", stores_interleaved<0, 1, 2, 3>},
    {"load_next_interleaved of 3", loads_interleaved<0, 1, 2>},
    {"load_next_interleaved of 4", loads_interleaved<0, 1, 2, 3>},
    {"for_each_block", row_loop},
    {"lesser, zero_lanes, first_lane", lesser_and_zeros},
    {"set_positions, set_weights, load_gather, lerp_columns",
     every<gathers<1>, gathers<2>, gathers<4>>},
    {"lerp_rows, narrow6, round_shift8, load16, store16", vertical_lerp},
    {"lerp_next_2x2, lerp_row_2x2", squares},
    {"load_next_rows", every<rows_of<16, 4>, rows_of<16, 8>, rows_of<WIDE, 8>, rows_of<16, 16>,
                             rows_of<WIDE, 16>, rows_of<WIDE, WIDE>, rows_of<LANES, LANES>>},
    {"load_start", every<start_of<4>, start_of<8>, start_of<16>>},
    {"store_difference, load_next_difference",
     every<differences<16>, differences<WIDE>, differences<LANES>>},
    {"AbsSum, SquareSum, load, load_next", every<sums<16>, sums<WIDE>, sums<LANES>>},
    {"add, butterfly, butterfly_abs, larger, zip",
     every<butterflies<16>, butterflies<WIDE>, butterflies<LANES>>},
    {"load_next_butterflies",
     every<column_butterflies<16>, column_butterflies<WIDE>, column_butterflies<LANES>>},
    {"butterfly_difference", first_butterfly},
    {"MagnitudeSum", every<magnitude_sums<16>, magnitude_sums<WIDE>, magnitude_sums<LANES>>},
    {"RoundedSum", every<rounded_sums<16>, rounded_sums<WIDE>, rounded_sums<LANES>>},
    {nullptr, nullptr}};

}  // namespace
}  // namespace tavu

const Operation *OPERATIONS_OF_LEVEL() { return tavu::OPERATIONS; }
