#include <gtest/gtest.h>

#include <string>

#include "tavu.h"

namespace {

uint32_t fcc(const std::string &s) {
    uint32_t code = 0;
    for (size_t i = 0; i < 4; i++)
        code |= static_cast<uint32_t>(static_cast<uint8_t>(s[i])) << 8 * i;
    return code;
}

TEST(Fcc2mt, FamiliesKnowTheirOwnCodesOnly) {
    EXPECT_EQ(fcc("avc1"), 0x31637661U);
    struct {
        const char *text;
        int32_t code;
    } const cases[] = {
        {"m4s2", 102},  {"M4S2", 102},  {"dx50", 102},  {"DX50", 102},  {"FMP4", 102},
        {"DIV4", 102},  {"div4", 102},  {"XVID", 102},  {"xvid", 102},  {"mp4v", 102},
        {"MP4V", 102},  {"h263", 103},  {"H263", 103},  {"d263", 103},  {"s263", 103},
        {"avc1", 104},  {"AVC1", 104},  {"H264", 104},  {"h264", 104},  {"x264", 104},
        {"avcC", 104},  {"wmv1", 105},  {"WMV1", 105},  {"wmv2", 106},  {"WMV2", 106},
        {"wmv3", 107},  {"WMV3", 107},  {"DIV3", 110},  {"div3", 110},  {"RV10", 113},
        {"RV20", 114},  {"RV30", 115},  {"RV40", 116},  {"mp43", 117},  {"MP43", 117},
        {"wvc1", 118},  {"WVC1", 118},  {"VP80", 119},  {"hvc1", 120},  {"HVC1", 120},
        {"H265", 120},  {"h265", 120},  {"x265", 120},  {"hvcC", 120},  {"HFYU", 122},
        {"aac ", 306},  {"mp4a", 306},  {"samr", 309},  {"sawb", 310},  {"sqcp", 311},
        {"dqcp", 311},  {"evrc", 321},  {"sipr", 331},  {"cook", 332},  {"SSRT", 3000},
        {"TX3G", 3006}, {"tx3g", 3006}, {"SBTL", 3006}, {"sbtl", 3006}, {"SASS", 3007},
        {"SSSA", 3008},
    };
    for (const auto &c : cases) {
        const uint32_t code = fcc(c.text);
        EXPECT_EQ(tavu_fcc2mt(code), c.code) << c.text;
        const bool audio = c.code >= 300 && c.code < 500, subtitle = c.code >= 3000;
        EXPECT_EQ(tavu_fcc2mt_aud(code), audio ? c.code : 499) << c.text;
        EXPECT_EQ(tavu_fcc2mt_vid(code), audio || subtitle ? 299 : c.code) << c.text;
        EXPECT_EQ(tavu_fcc2mt_sub(code), subtitle ? c.code : 3199) << c.text;
        EXPECT_EQ(tavu_fcc2mt_drm(code), 1299) << c.text;
    }
}

TEST(Fcc2mt, WaveFormatTagsAreAudio) {
    const int32_t tags[][2] = {{1, 300},    {6, 301},    {7, 302},   {80, 304},  {85, 305},
                               {255, 306},  {352, 312},  {353, 312}, {354, 313}, {355, 314},
                               {8192, 307}, {8193, 308}, {2, 0},     {0, 0}};
    for (const auto &t : tags) {
        EXPECT_EQ(tavu_fcc2mt(static_cast<uint32_t>(t[0])), t[1]) << t[0];
        EXPECT_EQ(tavu_fcc2mt_aud(static_cast<uint32_t>(t[0])), t[1] != 0 ? t[1] : 499) << t[0];
    }
}

TEST(Fcc2mt, DrmIsSeenByItsOwnMapperAlone) {
    for (const char *text : {"DIVX", "divx"}) {
        EXPECT_EQ(tavu_fcc2mt_drm(fcc(text)), TAVU_MT_DRM_DIVX);
        EXPECT_EQ(tavu_fcc2mt(fcc(text)), TAVU_MT_VID_MPEG4);
    }
}

TEST(Fcc2mt, OtherSpellingsAreUnknown) {
    for (const char *text :
         {"Avc1", "aVC1", "rv10", "vp80", "hfyu", "ssrt", "Divx", "1cva", "aac\0"}) {
        const uint32_t code = fcc(std::string(text, 4));
        EXPECT_EQ(tavu_fcc2mt(code), TAVU_MT_NONE) << text;
        EXPECT_EQ(tavu_fcc2mt_vid(code), TAVU_MT_VID_UNKNOWN);
        EXPECT_EQ(tavu_fcc2mt_aud(code), TAVU_MT_AUD_UNKNOWN);
        EXPECT_EQ(tavu_fcc2mt_sub(code), TAVU_MT_SUB_UNKNOWN);
        EXPECT_EQ(tavu_fcc2mt_drm(code), TAVU_MT_DRM_UNKNOWN);
    }
}

}  // namespace
