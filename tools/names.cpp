#include "names.h"

#include <cstdio>

#include "tavu.h"

namespace {

struct Name {
    int32_t media_type;
    const char *text;
};

#define NAME(name) \
    { TAVU_MT_##name, #name }

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
        char escaped[5] = {static_cast<char>(byte)};
        if (byte < ' ' || byte > '~') std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
        text += escaped;
    }
    return text;
}
