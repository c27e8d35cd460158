// A digest does not depend on how its bytes are split into updates.
#include <array>

#include "input.h"
#include "tavu.h"

namespace {

using Digest = std::array<uint8_t, 16>;

// Digests pieces with the lengths in `cuts`, each copied to a block of exact size, then the rest.
Digest digest(const Bytes &text, Input cuts) {
    tavu_md5_t md5;
    tavu_md5_init(&md5);
    for (Input rest(text.data(), text.size()); !rest.empty();) {
        const auto [data, size] = rest.bytes(cuts.empty() ? rest.left() : cuts.byte());
        const Bytes copy(data, data + size);
        tavu_md5_update(&md5, copy.data(), static_cast<uint32_t>(size));
    }
    Digest digest;
    tavu_md5_finish(&md5, digest.data());
    return digest;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const auto [first, first_size] = in.bytes(in.byte() % 16);
    const auto [second, second_size] = in.bytes(in.byte() % 16);
    const Bytes text = pick_content(in.left() == 0 ? 0 : in.byte() * 3 + in.left(), &in);
    const Digest whole = digest(text, {nullptr, 0});
    require(digest(text, {first, first_size}) == whole);
    require(digest(text, {second, second_size}) == whole);
    return 0;
}
