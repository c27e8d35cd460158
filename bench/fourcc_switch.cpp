// The media type lookup as a switch, which the compiler optimises.
#include "fourcc_switch.h"

#include "tavu.h"

static constexpr uint32_t fcc(const char (&s)[5]) {
    uint32_t code = 0;
    for (int i = 3; i >= 0; i--) code = code << 8 | static_cast<uint8_t>(s[i]);
    return code;
}

int32_t fcc2mt_by_switch(uint32_t code) {
    switch (code) {
        case 1: return TAVU_MT_AUD_PCM;
        case 6: return TAVU_MT_AUD_ALAW;
        case 7: return TAVU_MT_AUD_MULAW;
        case 80: return TAVU_MT_AUD_MPEG;
        case 85: return TAVU_MT_AUD_MP3;
        case 255:
        case fcc("aac "):
        case fcc("mp4a"): return TAVU_MT_AUD_AAC;
        case 8192: return TAVU_MT_AUD_AC3;
        case 8193: return TAVU_MT_AUD_DTS;
        case fcc("samr"): return TAVU_MT_AUD_AMR;
        case fcc("sawb"): return TAVU_MT_AUD_AMRWB;
        case fcc("sqcp"):
        case fcc("dqcp"): return TAVU_MT_AUD_QCELP;
        case 352:
        case 353: return TAVU_MT_AUD_WMA;
        case 354: return TAVU_MT_AUD_WMAPRO;
        case 355: return TAVU_MT_AUD_WMALSL;
        case fcc("evrc"): return TAVU_MT_AUD_EVRC;
        case fcc("sipr"): return TAVU_MT_AUD_SIPR;
        case fcc("cook"): return TAVU_MT_AUD_COOK;
        case fcc("m4s2"):
        case fcc("M4S2"):
        case fcc("dx50"):
        case fcc("DX50"):
        case fcc("FMP4"):
        case fcc("DIV4"):
        case fcc("div4"):
        case fcc("XVID"):
        case fcc("xvid"):
        case fcc("DIVX"):
        case fcc("divx"):
        case fcc("mp4v"):
        case fcc("MP4V"): return TAVU_MT_VID_MPEG4;
        case fcc("h263"):
        case fcc("H263"):
        case fcc("d263"):
        case fcc("s263"): return TAVU_MT_VID_H263;
        case fcc("avc1"):
        case fcc("AVC1"):
        case fcc("H264"):
        case fcc("h264"):
        case fcc("x264"):
        case fcc("avcC"): return TAVU_MT_VID_H264;
        case fcc("wmv1"):
        case fcc("WMV1"): return TAVU_MT_VID_WMV1;
        case fcc("wmv2"):
        case fcc("WMV2"): return TAVU_MT_VID_WMV2;
        case fcc("wmv3"):
        case fcc("WMV3"): return TAVU_MT_VID_WMV3;
        case fcc("DIV3"):
        case fcc("div3"): return TAVU_MT_VID_DIV3;
        case fcc("RV10"): return TAVU_MT_VID_RV10;
        case fcc("RV20"): return TAVU_MT_VID_RV20;
        case fcc("RV30"): return TAVU_MT_VID_RV30;
        case fcc("RV40"): return TAVU_MT_VID_RV40;
        case fcc("mp43"):
        case fcc("MP43"): return TAVU_MT_VID_MP43;
        case fcc("wvc1"):
        case fcc("WVC1"): return TAVU_MT_VID_VC1;
        case fcc("VP80"): return TAVU_MT_VID_VP8;
        case fcc("hvc1"):
        case fcc("HVC1"):
        case fcc("H265"):
        case fcc("h265"):
        case fcc("x265"):
        case fcc("hvcC"): return TAVU_MT_VID_HEVC;
        case fcc("HFYU"): return TAVU_MT_VID_HFYU;
        case fcc("SSRT"): return TAVU_MT_SUB_SRT;
        case fcc("TX3G"):
        case fcc("tx3g"):
        case fcc("SBTL"):
        case fcc("sbtl"): return TAVU_MT_SUB_TX3G;
        case fcc("SASS"): return TAVU_MT_SUB_ASS;
        case fcc("SSSA"): return TAVU_MT_SUB_SSA;
        default: return TAVU_MT_NONE;
    }
}
