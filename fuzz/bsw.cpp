// Compares the bit writer with its model: fields, results and every byte of its memory, also after
// a full buffer refused bits. If all codes fit, the reader must read them back.
#include "bs/bsw_model.h"
#include "input.h"
#include "tavu.h"

namespace {

Code next_code(Input *in) {
    const int kind = in->byte() % Code::KINDS;
    const uint32_t value = in->word();
    return {kind, value, kind == Code::FIXED ? in->range(0, 32) : 0};
}

// Writes the codes of an input to both. Returns true if all operations are codes and all fit.
bool write_all(tavu_bsw_t *w, WriterModel *m, Input in, size_t memory) {
    bool fits = true;
    while (!in.empty()) {
        const Code code = next_code(&in);
        const size_t spilt = m->written.size() + static_cast<size_t>(std::max(m->pending(), 0));
        if (code.kind == Code::DEINIT && spilt > memory) continue;
        const int32_t result = code.write(w);
        require(result == code.write(m) && m->equals(*w));
        fits = fits && result == 0 && code.kind < Code::SINK;
    }
    return fits;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, std::min<size_t>(size, 4096));
    const int32_t capacity = in.byte();
    const Block memory(static_cast<size_t>(capacity) + 500);
    Block wanted(memory.size());
    const bool inverts = capacity % 2 != 0;
    tavu_bsw_t w;
    tavu_bsw_init(&w, memory.data(), capacity, inverts ? inverting_spill : nullptr);
    WriterModel m{capacity, inverts};
    const bool fits = write_all(&w, &m, in, memory.size());
    std::copy(m.written.begin(), m.written.end(), wanted.data());
    require(memory == wanted);
    if (!fits || inverts || tavu_bsw_sink(&w) != 0) return 0;
    tavu_bsr_t r;
    tavu_bsr_init(&r, w.beg, static_cast<int32_t>(w.cur - w.beg), nullptr);
    while (!in.empty()) require(next_code(&in).read(&r));
    return 0;
}
