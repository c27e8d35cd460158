// The same in C++: the library's records in its own types, a routine called through a pointer.
#include <tavu.h>

#include <cstdio>
#include <memory>

namespace {

struct Release {
    void operator()(tavu_imgb_t *picture) const { picture->release(picture); }
};
using Picture = std::unique_ptr<tavu_imgb_t, Release>;

Picture create(int32_t cs) {
    int32_t status;
    return Picture(tavu_imgb_create(16, 2, cs, 0, nullptr, nullptr, nullptr, nullptr, &status));
}

}  // namespace

int main() {
    const Picture planes = create(TAVU_CS_YUV444), packed = create(TAVU_CS_RGBA8888);
    int32_t status;
    const tavu_fn_csc_t convert =
        tavu_imgp_get_fn_csc(16, 2, planes->cs, 16, 2, packed->cs, &status);
    convert(planes->addr, 16, 2, planes->stride, planes->cs, packed->addr, 16, 2, packed->stride,
            packed->cs);
    if (static_cast<const uint8_t *>(packed->addr[0])[3] != 255) return 1;
    std::puts("C++");
}
