// What the bit writer writes is what the reader reads; a full buffer is exceeded by three bytes at
// most.
#include "input.h"
#include "tavu.h"

namespace {

enum { FIXED, SINGLE, UE, SE, TE, KINDS };

struct Code {
    int kind;
    uint32_t value;
    int32_t length;

    explicit Code(Input *in) : kind(in->byte() % KINDS), value(in->word()), length(32) {
        if (kind == FIXED) length = in->range(0, 32);
        if (kind == SINGLE) length = 1;
        if (kind == UE || kind == TE) value = (value & 0xFFFF) % 65535 >> (value >> 16) % 16;
        if (kind == SE) value = static_cast<uint32_t>(static_cast<int32_t>(value % 65535) - 32767);
        if (kind == UE || kind == TE) length = tavu_bsw_size_ue(value);
        if (kind == SE) length = tavu_bsw_size_se(static_cast<int32_t>(value));
        if (kind == TE && value < 2) length = 1;
        if (length < 32 && (kind == FIXED || kind == SINGLE)) value &= (1U << length) - 1;
    }
    int32_t number() const { return static_cast<int32_t>(value); }
    int32_t limit() const { return std::max(number(), 1); }
    int32_t write(tavu_bsw_t *w) const {
        switch (kind) {
            case FIXED: return tavu_bsw_write(w, value, length);
            case SINGLE: return tavu_bsw_write1(w, number());
            case UE: return tavu_bsw_write_ue(w, value);
            case SE: return tavu_bsw_write_se(w, number());
            default: return tavu_bsw_write_te(w, number(), limit());
        }
    }
    int32_t read(tavu_bsr_t *r) const {
        switch (kind) {
            case FIXED: return tavu_bsr_read(r, length);
            case SINGLE: return tavu_bsr_read1(r);
            case UE: return tavu_bsr_read_ue(r);
            case SE: return tavu_bsr_read_se(r);
            default: return tavu_bsr_read_te(r, limit());
        }
    }
};

// Writes the codes of an input; their bits, or -1 when one did not fit.
int write_all(tavu_bsw_t *w, Input in) {
    int bits = 0;
    while (!in.empty()) {
        const Code code(&in);
        if (code.write(w) != 0) bits = INT32_MIN;
        bits += code.length;
    }
    return std::max(bits, -1);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, std::min<size_t>(size, 4096));
    const int32_t room = in.byte();
    const Block memory(static_cast<size_t>(room) + 3);
    tavu_bsw_t w;
    tavu_bsw_init(&w, memory.data(), room, nullptr);
    const int bits = write_all(&w, in);
    if (tavu_bsw_sink(&w) != 0 || bits < 0) return 0;
    require(w.cur - w.beg == (bits + 7) / 8);
    tavu_bsr_t r;
    tavu_bsr_init(&r, w.beg, static_cast<int32_t>(w.cur - w.beg), nullptr);
    while (!in.empty()) {
        const Code code(&in);
        require(code.read(&r) == code.number());
    }
    return 0;
}
