// A digest does not depend on how its bytes are split into updates.
#include "input.h"
#include "tavu.h"

namespace {

// Digests pieces with the lengths in `cuts`, each copied to a block of exact size, then the rest.
void digest(const uint8_t *data, size_t size, Input cuts, uint8_t out[16]) {
    tavu_md5_t md5;
    tavu_md5_init(&md5);
    while (size > 0) {
        const size_t piece = cuts.empty() ? size : std::min<size_t>(size, cuts.byte());
        const Block copy(data, piece);
        tavu_md5_update(&md5, copy.data(), static_cast<uint32_t>(piece));
        data += piece;
        size -= piece;
    }
    tavu_md5_finish(&md5, out);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const auto [first, first_size] = in.bytes(in.byte() % 16);
    const auto [second, second_size] = in.bytes(in.byte() % 16);
    Block text(in.left() == 0 ? 0 : in.byte() * 3 + in.left());
    text.fill(&in);
    uint8_t whole[16], pieces[16], other[16];
    digest(text.data(), text.size(), Input(first, 0), whole);
    digest(text.data(), text.size(), Input(first, first_size), pieces);
    digest(text.data(), text.size(), Input(second, second_size), other);
    require(memcmp(whole, pieces, 16) == 0 && memcmp(whole, other, 16) == 0);
    return 0;
}
