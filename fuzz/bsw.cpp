// The bit writer against its rules, bit by bit: fields, results and every byte of its memory, also
// after bits that a full buffer refused. What fits is what the reader reads.
#include "bs/bsw_model.h"
#include "input.h"
#include "tavu.h"

namespace {

enum { FIXED, SINGLE, UE, SE, TE, SINGLES, SINK, DEINIT, KINDS };

int code_length(uint32_t value) {
    int length = 1;
    for (uint32_t x = value + 1; x > 1; x /= 2) length += 2;
    return length;
}

struct Code {
    int kind;
    uint32_t value;
    int32_t length = 1;

    explicit Code(Input *in) : kind(in->byte() % KINDS), value(in->word()) {
        if (kind == FIXED) length = in->range(0, 32);
        if (kind == SINGLES) length = static_cast<int32_t>(value >> 1 & 0xFF);
        if (kind == FIXED && length < 32) value &= (1U << length) - 1;
        if (kind == SINGLE || kind == SINGLES) value &= 1;
        if (kind == UE || kind == TE) value = (value & 0xFFFF) % 65535 >> (value >> 16) % 16;
        if (kind == SE) value = static_cast<uint32_t>(static_cast<int32_t>(value % 65535) - 32767);
        if (kind == UE || kind == SE || (kind == TE && value > 1)) length = code_length(index());
    }
    int32_t number() const { return static_cast<int32_t>(value); }
    int32_t limit() const { return std::max(number(), 1); }
    // 0, 1, -1, 2, -2 as 0, 1, 2, 3, 4.
    uint32_t index() const {
        const auto magnitude = static_cast<uint32_t>(std::abs(number()));
        return kind == SE ? 2 * magnitude - (number() > 0 ? 1 : 0) : value;
    }
    int32_t write(tavu_bsw_t *w) const {
        int32_t result = 0;
        switch (kind) {
            case FIXED: return tavu_bsw_write(w, value, length);
            case SINGLE: return tavu_bsw_write1(w, number());
            case UE: return tavu_bsw_write_ue(w, value);
            case SE: return tavu_bsw_write_se(w, number());
            case TE: return tavu_bsw_write_te(w, number(), limit());
            case SINK: return tavu_bsw_sink(w);
            case DEINIT: return tavu_bsw_deinit(w) * 0;
            default:
                for (int i = 0; i < length; i++) result |= tavu_bsw_write1(w, number());
                return result;
        }
    }
    int32_t write(WriterModel *m) const {
        int32_t result = 0;
        switch (kind) {
            case FIXED: return m->write(value, length);
            case SINGLE: return m->write1(number());
            case SINK: return m->sink();
            case DEINIT: return m->spill(), 0;
            case SINGLES:
                for (int i = 0; i < length; i++) result |= m->write1(number());
                return result;
            default:
                if (kind == TE && value < 2) return m->write1(1 - number());
                return m->write(index() + 1, length);
        }
    }
    bool read(tavu_bsr_t *r) const {
        bool same = true;
        switch (kind) {
            case FIXED: return tavu_bsr_read(r, length) == number();
            case UE: return tavu_bsr_read_ue(r) == number();
            case SE: return tavu_bsr_read_se(r) == number();
            case TE: return tavu_bsr_read_te(r, limit()) == number();
            default:
                for (int i = 0; i < length; i++) same &= tavu_bsr_read1(r) == number();
                return same;
        }
    }
};

// Writes the codes of an input by both. Returns true if all are codes, and all fitted.
bool write_all(tavu_bsw_t *w, WriterModel *m, Input in, size_t memory) {
    bool fits = true;
    while (!in.empty()) {
        const Code code(&in);
        const size_t spilt = m->written.size() + static_cast<size_t>(std::max(m->pending(), 0));
        if (code.kind == DEINIT && spilt > memory) continue;
        const int32_t result = code.write(w);
        require(result == code.write(m) && m->equals(*w));
        fits = fits && result == 0 && code.kind < SINK;
    }
    return fits;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, std::min<size_t>(size, 4096));
    const int32_t room = in.byte();
    const Block memory(static_cast<size_t>(room) + 500);
    Block wanted(memory.size());
    tavu_bsw_t w;
    // Odd sizes do not use the default spill.
    tavu_bsw_init(&w, memory.data(), room, room % 2 != 0 ? failing_spill : nullptr);
    WriterModel m{room};
    const bool fits = write_all(&w, &m, in, memory.size());
    std::copy(m.written.begin(), m.written.end(), wanted.data());
    require(memory == wanted);
    if (!fits || tavu_bsw_sink(&w) != 0) return 0;
    tavu_bsr_t r;
    tavu_bsr_init(&r, w.beg, static_cast<int32_t>(w.cur - w.beg), nullptr);
    while (!in.empty()) require(Code(&in).read(&r));
    return 0;
}
