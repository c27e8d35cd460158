// One table for all families, looked up without a branch that depends on the code.
#include "tavu.h"

namespace {

constexpr uint32_t fcc(const char (&s)[5]) {
    uint32_t code = 0;
    for (int i = 3; i >= 0; i--) code = code << 8 | static_cast<uint8_t>(s[i]);
    return code;
}

struct Name {
    uint32_t code;
    int32_t type;
};

constexpr Name NAMES[] = {
    {1, TAVU_MT_AUD_PCM},
    {6, TAVU_MT_AUD_ALAW},
    {7, TAVU_MT_AUD_MULAW},
    {80, TAVU_MT_AUD_MPEG},
    {85, TAVU_MT_AUD_MP3},
    {255, TAVU_MT_AUD_AAC},
    {fcc("aac "), TAVU_MT_AUD_AAC},
    {fcc("mp4a"), TAVU_MT_AUD_AAC},
    {8192, TAVU_MT_AUD_AC3},
    {8193, TAVU_MT_AUD_DTS},
    {fcc("samr"), TAVU_MT_AUD_AMR},
    {fcc("sawb"), TAVU_MT_AUD_AMRWB},
    {fcc("sqcp"), TAVU_MT_AUD_QCELP},
    {fcc("dqcp"), TAVU_MT_AUD_QCELP},
    {352, TAVU_MT_AUD_WMA},
    {353, TAVU_MT_AUD_WMA},
    {354, TAVU_MT_AUD_WMAPRO},
    {355, TAVU_MT_AUD_WMALSL},
    {fcc("evrc"), TAVU_MT_AUD_EVRC},
    {fcc("sipr"), TAVU_MT_AUD_SIPR},
    {fcc("cook"), TAVU_MT_AUD_COOK},
    {fcc("m4s2"), TAVU_MT_VID_MPEG4},
    {fcc("M4S2"), TAVU_MT_VID_MPEG4},
    {fcc("dx50"), TAVU_MT_VID_MPEG4},
    {fcc("DX50"), TAVU_MT_VID_MPEG4},
    {fcc("FMP4"), TAVU_MT_VID_MPEG4},
    // "DIV4" is MPEG-4, "DIV3" is a different codec.
    {fcc("DIV4"), TAVU_MT_VID_MPEG4},
    {fcc("div4"), TAVU_MT_VID_MPEG4},
    {fcc("XVID"), TAVU_MT_VID_MPEG4},
    {fcc("xvid"), TAVU_MT_VID_MPEG4},
    {fcc("DIVX"), TAVU_MT_VID_MPEG4},
    {fcc("divx"), TAVU_MT_VID_MPEG4},
    {fcc("mp4v"), TAVU_MT_VID_MPEG4},
    {fcc("MP4V"), TAVU_MT_VID_MPEG4},
    {fcc("h263"), TAVU_MT_VID_H263},
    {fcc("H263"), TAVU_MT_VID_H263},
    {fcc("d263"), TAVU_MT_VID_H263},
    {fcc("s263"), TAVU_MT_VID_H263},
    {fcc("avc1"), TAVU_MT_VID_H264},
    {fcc("AVC1"), TAVU_MT_VID_H264},
    {fcc("H264"), TAVU_MT_VID_H264},
    {fcc("h264"), TAVU_MT_VID_H264},
    {fcc("x264"), TAVU_MT_VID_H264},
    {fcc("avcC"), TAVU_MT_VID_H264},
    {fcc("wmv1"), TAVU_MT_VID_WMV1},
    {fcc("WMV1"), TAVU_MT_VID_WMV1},
    {fcc("wmv2"), TAVU_MT_VID_WMV2},
    {fcc("WMV2"), TAVU_MT_VID_WMV2},
    {fcc("wmv3"), TAVU_MT_VID_WMV3},
    {fcc("WMV3"), TAVU_MT_VID_WMV3},
    {fcc("DIV3"), TAVU_MT_VID_DIV3},
    {fcc("div3"), TAVU_MT_VID_DIV3},
    {fcc("RV10"), TAVU_MT_VID_RV10},
    {fcc("RV20"), TAVU_MT_VID_RV20},
    {fcc("RV30"), TAVU_MT_VID_RV30},
    {fcc("RV40"), TAVU_MT_VID_RV40},
    {fcc("mp43"), TAVU_MT_VID_MP43},
    {fcc("MP43"), TAVU_MT_VID_MP43},
    {fcc("wvc1"), TAVU_MT_VID_VC1},
    {fcc("WVC1"), TAVU_MT_VID_VC1},
    {fcc("VP80"), TAVU_MT_VID_VP8},
    {fcc("hvc1"), TAVU_MT_VID_HEVC},
    {fcc("HVC1"), TAVU_MT_VID_HEVC},
    {fcc("H265"), TAVU_MT_VID_HEVC},
    {fcc("h265"), TAVU_MT_VID_HEVC},
    {fcc("x265"), TAVU_MT_VID_HEVC},
    {fcc("hvcC"), TAVU_MT_VID_HEVC},
    {fcc("HFYU"), TAVU_MT_VID_HFYU},
    {fcc("SSRT"), TAVU_MT_SUB_SRT},
    {fcc("TX3G"), TAVU_MT_SUB_TX3G},
    {fcc("tx3g"), TAVU_MT_SUB_TX3G},
    {fcc("SBTL"), TAVU_MT_SUB_TX3G},
    {fcc("sbtl"), TAVU_MT_SUB_TX3G},
    {fcc("SASS"), TAVU_MT_SUB_ASS},
    {fcc("SSSA"), TAVU_MT_SUB_SSA},
};

constexpr bool are_distinct() {
    for (const Name &a : NAMES) {
        for (const Name &b : NAMES) {
            if (&a != &b && a.code == b.code) return false;
        }
    }
    return true;
}
static_assert(are_distinct(), "a code is in NAMES twice");

// Multiplicative hash: `factor` is chosen so that each name has its own slot.
struct Hash {
    uint32_t factor;
    int bits;

    constexpr uint32_t slot(uint32_t code) const { return code * factor >> (32 - bits); }
};

constexpr int MAX_BITS = 13;

constexpr bool separates_names(const Hash &hash) {
    uint64_t used[(1 << MAX_BITS) / 64] = {};
    for (const Name &name : NAMES) {
        const uint32_t slot = hash.slot(name.code);
        if ((used[slot / 64] >> slot % 64 & 1) != 0) return false;
        used[slot / 64] |= uint64_t{1} << slot % 64;
    }
    return true;
}

// Tries random factors, then a table of twice the size. Few factors suit a crowded table, so that
// gets one try; the first factor suits the present names in 256 slots.
constexpr Hash find_hash() {
    constexpr int COUNT = sizeof NAMES / sizeof NAMES[0];
    uint32_t factor = 0x63F52AB9;
    for (int bits = 8; bits <= MAX_BITS; bits++) {
        const bool crowded = COUNT * COUNT > 12 << bits;
        for (int tries = crowded ? 1 : 1000; tries > 0; tries--) {
            if (separates_names({factor, bits})) return {factor, bits};
            factor = factor * 1664525 + 1013904223;
        }
    }
    return {0, MAX_BITS};
}

constexpr Hash HASH = find_hash();
static_assert(separates_names(HASH), "MAX_BITS is too small for so many names");

struct Table {
    Name slots[1 << HASH.bits];
};

constexpr Table make_table() {
    Table table{};
    for (const Name &name : NAMES) table.slots[HASH.slot(name.code)] = name;
    return table;
}

constexpr Table TABLE = make_table();

constexpr int32_t find(uint32_t code) {
    const Name &name = TABLE.slots[HASH.slot(code)];
    return name.code == code ? name.type : TAVU_MT_NONE;
}

// The type of a code if it is in [first, unknown), else `unknown`.
int32_t find_between(uint32_t code, int32_t first, int32_t unknown) {
    const int32_t type = find(code);
    return type >= first && type < unknown ? type : unknown;
}

}  // namespace

int32_t tavu_fcc2mt_aud(uint32_t code) {
    return find_between(code, TAVU_MT_AUD_PCM, TAVU_MT_AUD_UNKNOWN);
}

int32_t tavu_fcc2mt_vid(uint32_t code) {
    return find_between(code, TAVU_MT_VID_MPEG4, TAVU_MT_VID_UNKNOWN);
}

int32_t tavu_fcc2mt_sub(uint32_t code) {
    return find_between(code, TAVU_MT_SUB_SRT, TAVU_MT_SUB_UNKNOWN);
}

int32_t tavu_fcc2mt_drm(uint32_t code) {
    return code == fcc("DIVX") || code == fcc("divx") ? TAVU_MT_DRM_DIVX : TAVU_MT_DRM_UNKNOWN;
}

// DRM codes are not looked up: both are video codes too.
int32_t tavu_fcc2mt(uint32_t code) { return find(code); }
