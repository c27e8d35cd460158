#include "names.h"

#include <cstdio>

#include "tavu.h"

namespace {

struct Name {
    int32_t media_type;
    const char *text;
};

#define NAME(name) {TAVU_MT_##name, #name}

constexpr Name NAMES[] = {
    NAME(NONE),     NAME(VID_MPEG4),   NAME(VID_H263),   NAME(VID_H264),    NAME(VID_WMV1),
    NAME(VID_WMV2), NAME(VID_WMV3),    NAME(VID_DIV3),   NAME(VID_H263X),   NAME(VID_RV10),
    NAME(VID_RV20), NAME(VID_RV30),    NAME(VID_RV40),   NAME(VID_MP43),    NAME(VID_VC1),
    NAME(VID_VP8),  NAME(VID_HEVC),    NAME(VID_HFYU),   NAME(VID_UNKNOWN), NAME(AUD_PCM),
    NAME(AUD_ALAW), NAME(AUD_MULAW),   NAME(AUD_MPEG),   NAME(AUD_MP3),     NAME(AUD_AAC),
    NAME(AUD_AC3),  NAME(AUD_DTS),     NAME(AUD_AMR),    NAME(AUD_AMRWB),   NAME(AUD_QCELP),
    NAME(AUD_WMA),  NAME(AUD_WMAPRO),  NAME(AUD_WMALSL), NAME(AUD_EVRC),    NAME(AUD_SIPR),
    NAME(AUD_COOK), NAME(AUD_UNKNOWN), NAME(DRM_DIVX),   NAME(DRM_UNKNOWN), NAME(SUB_SRT),
    NAME(SUB_TX3G), NAME(SUB_ASS),     NAME(SUB_SSA),    NAME(SUB_UNKNOWN),
};

#undef NAME

std::string escaped(unsigned byte) {
    char text[5];
    std::snprintf(text, sizeof text, "\\x%02x", byte);
    return text;
}

/** Length in bytes of the UTF-8 character at `at`; 0 if it is invalid or a control character. */
size_t printable_length(const std::string &text, size_t at) {
    constexpr uint32_t LEAST[] = {0, 0, 0xA0, 0x800, 0x10000}, LARGEST = 0x10FFFF;
    const auto byte = [&](size_t i) -> uint32_t {
        return i < text.size() ? static_cast<uint8_t>(text[i]) : 0;
    };
    const uint32_t first = byte(at);
    if (first < 0x80) return first >= ' ' && first != 0x7F;
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    uint32_t code = first & 0xFF >> (length + 1);
    for (size_t i = at + 1; i < at + length; i++) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
        code = code << 6 | (byte(i) & 0x3F);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    const bool character = first >= 0xC2 && first <= 0xF4 && !surrogate;
    return character && code >= LEAST[length] && code <= LARGEST ? length : 0;
}

}  // namespace

std::string media_type_name(int32_t media_type) {
    for (const Name &name : NAMES)
        if (name.media_type == media_type) return name.text;
    return "?";
}

std::string fourcc_text(uint32_t fourcc) {
    std::string text;
    for (int shift = 0; shift < 32; shift += 8) {
        const unsigned byte = fourcc >> shift & 0xFF;
        const bool plain = byte >= ' ' && byte <= '~';
        text += plain ? std::string(1, static_cast<char>(byte)) : escaped(byte);
    }
    return text;
}

std::string printable(const std::string &text) {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const size_t length = printable_length(text, at);
        out += length > 0 ? text.substr(at, length) : escaped(static_cast<uint8_t>(text[at]));
        at += length > 0 ? length : 1;
    }
    return out;
}
