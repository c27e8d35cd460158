#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "tavu.h"

namespace {

uint32_t fcc(const std::string &s) {
    uint32_t code;
    memcpy(&code, s.data(), sizeof code);
    return code;
}

// Only the mapper of its own family knows the code.
void expect(uint32_t code, int32_t mt) {
    EXPECT_EQ(tavu_fcc2mt(code), mt) << code;
    EXPECT_EQ(tavu_fcc2mt_vid(code), mt >= 102 && mt < 300 ? mt : 299) << code;
    EXPECT_EQ(tavu_fcc2mt_aud(code), mt >= 300 && mt < 500 ? mt : 499) << code;
    EXPECT_EQ(tavu_fcc2mt_sub(code), mt >= 3000 ? mt : 3199) << code;
    EXPECT_EQ(tavu_fcc2mt_drm(code), 1299) << code;
}

TEST(Fcc2mt, FamiliesMapOnlyTheirOwnCodes) {
    EXPECT_EQ(fcc("avc1"), 0x31637661U);
    const std::pair<int32_t, std::string> families[] = {
        {102, "m4s2M4S2"}, {102, "dx50DX50"}, {102, "FMP4DIV4"},  {102, "div4XVID"},
        {102, "xvidmp4v"}, {102, "MP4V"},     {103, "h263H263"},  {103, "d263s263"},
        {104, "avc1AVC1"}, {104, "H264h264"}, {104, "x264avcC"},  {105, "wmv1WMV1"},
        {106, "wmv2WMV2"}, {107, "wmv3WMV3"}, {110, "DIV3div3"},  {113, "RV10"},
        {114, "RV20"},     {115, "RV30"},     {116, "RV40"},      {117, "mp43MP43"},
        {118, "wvc1WVC1"}, {119, "VP80"},     {120, "hvc1HVC1"},  {120, "H265h265"},
        {120, "x265hvcC"}, {122, "HFYU"},     {306, "aac mp4a"},  {309, "samr"},
        {310, "sawb"},     {311, "sqcpdqcp"}, {321, "evrc"},      {331, "sipr"},
        {332, "cook"},     {3000, "SSRT"},    {3006, "TX3Gtx3g"}, {3006, "SBTLsbtl"},
        {3007, "SASS"},    {3008, "SSSA"}};
    for (const auto &[mt, codes] : families) {
        for (size_t i = 0; i < codes.size(); i += 4) expect(fcc(codes.substr(i, 4)), mt);
    }
}

TEST(Fcc2mt, WaveFormatTagsAreAudio) {
    const int32_t tags[][2] = {{1, 300},    {6, 301},    {7, 302},   {80, 304},  {85, 305},
                               {255, 306},  {352, 312},  {353, 312}, {354, 313}, {355, 314},
                               {8192, 307}, {8193, 308}, {2, 0},     {0, 0}};
    for (const auto &[tag, mt] : tags) expect(static_cast<uint32_t>(tag), mt);
}

TEST(Fcc2mt, OnlyTheDrmMapperFindsDrmAndNoneFindsOtherSpellings) {
    for (const char *text : {"DIVX", "divx"}) {
        EXPECT_EQ(tavu_fcc2mt_drm(fcc(text)), TAVU_MT_DRM_DIVX);
        EXPECT_EQ(tavu_fcc2mt(fcc(text)), TAVU_MT_VID_MPEG4);
    }
    for (const char *text : {"Avc1", "aVC1", "rv10", "vp80", "hfyu", "ssrt", "Divx", "1cva"}) {
        expect(fcc(text), TAVU_MT_NONE);
    }
}

}  // namespace
