// Compares the key-frame detector of every level with a scan byte by byte.
#include "input.h"
#include "variants.h"

namespace {

bool starts_picture(const uint8_t *p) { return p[0] == 0 && p[1] == 0 && (p[2] & 0xFC) == 0x80; }
bool starts_unit(const uint8_t *p) { return p[0] == 0 && p[1] == 0 && p[2] == 1; }

// The result of a position with `n` bytes left: key frame or not, -1 if undecided.
int mpeg4(const uint8_t *p, int n) {
    if (n < 5) return -1;
    if (starts_unit(p) && p[3] == 0xB6) return p[4] < 64;
    if (!starts_picture(p)) return -1;
    if (p[3] % 4 != 2) return 0;
    return (p[4] & 0x1C) == 0x1C ? -1 : (p[4] & 2) == 0;
}
int h263(const uint8_t *p, int n) {
    if (n < 7 || !starts_picture(p)) return -1;
    if (p[3] % 4 != 2) return 0;
    if ((p[4] & 0x1C) != 0x1C) return (p[4] & 2) == 0;
    const bool long_type = (p[4] & 3) == 0 && p[5] >= 128;
    return long_type ? (p[7] & 0x1C) == 0 : (p[5] & 0x70) == 0;
}
int h264(const uint8_t *p, int n) {
    if (n < 4 || !starts_unit(p)) return -1;
    return p[3] % 32 == 5 ? 1 : p[3] % 32 == 1 ? 0 : -1;
}
int hevc(const uint8_t *p, int n) {
    if (n < 4 || !starts_unit(p)) return -1;
    const int type = p[3] / 2 % 64;
    return type == 19 || type == 20;
}

int scan(int (*look)(const uint8_t *, int), const Bytes &unit, int n) {
    int found = -1;
    for (int i = 0; i < n && found < 0; i++) found = look(unit.data() + i, n - i);
    return std::max(found, 0);
}

int expected(int32_t codec, const Bytes &unit, int n) {
    switch (codec) {
        case TAVU_MT_VID_MPEG4: return scan(mpeg4, unit, n);
        case TAVU_MT_VID_H263:
        case TAVU_MT_VID_H263X: return scan(h263, unit, n);
        case TAVU_MT_VID_H264: return scan(h264, unit, n);
        case TAVU_MT_VID_HEVC: return scan(hevc, unit, n);
        case TAVU_MT_VID_WMV1:
        case TAVU_MT_VID_DIV3: return unit[0] < 64;
        case TAVU_MT_VID_WMV2: return unit[0] < 128;
        default: return codec == TAVU_MT_VID_HFYU;
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const auto sides = variants<tavu_is_vkeyfrm>();
    Input in(data, size);
    const int32_t codec = in.range(101, 123);
    const size_t lead = in.byte();
    const auto [content, length] = in.bytes(1000);
    // Some codecs read a byte past the size.
    const bool h263 = codec == TAVU_MT_VID_H263 || codec == TAVU_MT_VID_H263X;
    const size_t n = lead + length, extra = h263 || n == 0 ? 1 : 0;
    Bytes unit(n + extra, static_cast<uint8_t>(lead % 2));
    std::copy_n(content, length, unit.data() + lead);
    const int wanted = expected(codec, unit, static_cast<int>(n));
    for (const auto &side : sides) {
        require(side.run(codec, unit.data(), static_cast<int32_t>(n)) == wanted);
    }
    require(tavu_is_vkeyfrm(codec, unit.data(), -1) <= 1);
    return 0;
}
