// The bit reader against the string of bits that it reads and a count of what its cache holds.
#include "input.h"
#include "tavu.h"

namespace {

struct Model {
    const uint8_t *data;
    int total;
    int loaded = 0, left = 0;  // bits

    int at() const { return loaded - left; }
    bool bit(int i) const { return i >= 0 && i < total && (data[i / 8] >> (7 - i % 8) & 1) != 0; }
    // `n` bits from `from` on; beyond the data zeros.
    uint32_t get(int from, int n) const {
        uint64_t v = 0;
        for (int i = from; i < from + n; i++) v = v << 1 | (bit(i) ? 1 : 0);
        return static_cast<uint32_t>(v);
    }
    int run(int from, bool value, int most) const {
        int n = 0;
        while (n < most && bit(from + n) == value) n++;
        return n;
    }
    bool refill() {
        left = std::min(32, total - loaded);
        loaded += left;
        return left > 0;
    }
    bool skip(int n) {
        if (left < n) {
            n -= left;
            if (!refill()) return false;
        }
        left -= n;
        return true;
    }
    uint32_t read(int n) {
        const int from = at();
        return skip(n) ? get(from, n) : UINT32_MAX;
    }
    uint32_t peek(int n) {
        const int free = left < n ? std::min((32 - left) / 8 * 8, total - loaded) : 0;
        loaded += free;
        left += free;
        return get(at(), n);
    }
    uint32_t read_un() {
        const int dropped = left % 32 == 0 ? left : 0;
        if (left % 32 == 0) refill();
        const int ones = run(at(), true, left);
        left -= ones + 1;
        return static_cast<uint32_t>(ones + dropped);
    }
};

// A code that lies within the data and has up to 15 leading zeros: 0, or its length.
int code_length(const Model &m) {
    const int zeros = m.run(m.at(), false, 16), length = 2 * zeros + 1;
    return zeros < 16 && m.at() + length <= m.total ? length : 0;
}

// An Exp-Golomb code by the function of its kind.
bool reads_code(tavu_bsr_t *r, const Model &m, int kind) {
    const int length = code_length(m), at = m.at();
    const auto v = static_cast<int32_t>(length == 0 ? 0 : m.get(at, length) - 1);
    const int32_t wanted = kind == 0 ? v : v % 2 != 0 ? v / 2 + 1 : -(v / 2);
    const int32_t got = kind == 0 ? tavu_bsr_read_ue(r) : tavu_bsr_read_se(r);
    return length == 0 || (got == wanted && (r->cur - r->beg) * 8 - r->leftbits == at + length);
}

// A run that ends before the cache does.
bool reads_tu(tavu_bsr_t *r, const Model &m, int max) {
    const int ones = m.left % 32 == 0 ? 32 : m.run(m.at(), true, m.left), left = r->leftbits;
    const int32_t got = tavu_bsr_read_tu(r, max);
    if (ones >= m.left || max == 0) return max > 0 || got == 0;
    return got == std::min(ones, max) && left - r->leftbits == (ones <= max ? ones + 1 : max);
}

// One operation on both; false if they differ.
bool step(tavu_bsr_t *r, Model *m, Input *in) {
    const int op = in->byte(), n = in->range(0, 32), most = in->range(0, 32);
    int32_t bits = 0;
    bool same = true, known = true;
    switch (op % 10) {
        case 0: return tavu_bsr_read1(r) == static_cast<int32_t>(m->read(1));
        case 1: return tavu_bsr_peek(r, n) == m->peek(n);
        case 2: tavu_bsr_skip(r, n), m->skip(n); return true;
        case 3: return tavu_bsr_skip_peek(r, most, n) == (m->skip(most) ? m->peek(n) : 0);
        case 4: return tavu_bsr_read_un(r) == static_cast<int32_t>(m->read_un());
        case 5:
            same = static_cast<uint32_t>(tavu_bsr_read_align8(r, &bits)) == m->read(m->left & 7);
            return same && bits <= 7;
        case 6: same = reads_code(r, *m, 0), known = false; break;
        case 7: same = reads_code(r, *m, 1), known = false; break;
        case 8: same = reads_tu(r, *m, n), known = false; break;
        default: return tavu_bsr_read(r, n) == static_cast<int32_t>(m->read(n));
    }
    if (!known) {
        m->loaded = static_cast<int>(r->cur - r->beg) * 8;
        m->left = r->leftbits;
    }
    return same;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const auto [content, length] = in.bytes(in.byte() % 40);
    const Block copy(content, length);
    tavu_bsr_t r;
    tavu_bsr_init(&r, copy.data(), static_cast<int32_t>(length), nullptr);
    Model m{copy.data(), static_cast<int>(length) * 8};
    // What follows once bits were missing depends on the cache alone: then only the memory counts.
    bool known = true;
    while (!in.empty()) {
        const bool same = step(&r, &m, &in);
        if (!known) continue;
        require(same && r.leftbits == m.left && (r.cur - r.beg) * 8 == m.loaded);
        known = m.left >= 0;
        require(!known || uint64_t{m.get(m.at(), m.left)} << (32 - m.left) == r.code);
    }
    return 0;
}
