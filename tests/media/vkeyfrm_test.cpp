#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "memory.h"
#include "tavu.h"
#include "variants.h"

namespace {

// The unit fills its heap block, so that sanitizers see a read past the end.
int32_t is_key(int32_t codec, const Bytes &unit) {
    const auto size = static_cast<int32_t>(unit.size());
    const int32_t key = tavu_is_vkeyfrm(codec, unit.data(), size);
    for (const auto &form : variants<tavu_is_vkeyfrm>()) {
        EXPECT_EQ(form.run(codec, unit.data(), size), key) << form.level;
    }
    return key;
}

struct Case {
    Bytes unit;
    int32_t key;
};

void expect(int32_t codec, std::initializer_list<Case> cases) {
    int i = 0;
    for (const Case &c : cases) EXPECT_EQ(is_key(codec, c.unit), c.key) << "case " << i++;
}

TEST(Vkeyfrm, H264FindsTheFirstSlice) {
    expect(TAVU_MT_VID_H264, {{{0, 0, 1, 0x67, 9, 0, 0, 1, 0x68, 9, 0, 0, 1, 0x65}, 1},
                              {{0, 0, 0, 1, 0x09, 0x10, 0, 0, 0, 1, 0x25}, 1},
                              {{0, 0, 1, 0x41}, 0},
                              {{0, 0, 1, 0x85}, 1},  // bit 7 is not part of the type
                              {{0, 0, 1, 0xE1, 0, 0, 1, 0x65}, 0},
                              {{0, 0, 1, 0x41, 0, 0, 1, 0x65}, 0},
                              {{0, 0, 1, 0x67, 0, 0, 2, 0x65, 0, 1, 0x65}, 0},
                              {{}, 0}});
}

TEST(Vkeyfrm, HevcIsDecidedByTheFirstUnitEvenAParameterSet) {
    expect(TAVU_MT_VID_HEVC, {{{9, 0, 0, 0, 1, 0x28}, 1},
                              {{0, 0, 1, 0x24}, 0},
                              {{0, 0, 1, 0x2A}, 0},
                              {{0, 0, 1, 0xA6}, 1},
                              {{0, 0, 1, 0x40, 1, 0, 0, 1, 0x26, 1}, 0}});
}

TEST(Vkeyfrm, Mpeg4LooksForAVopOrAShortHeader) {
    expect(TAVU_MT_VID_MPEG4, {{{0, 0, 1, 0xB6, 0x50}, 0},
                               {{0, 0, 1, 0xB6, 0x90}, 0},
                               {{0, 0, 1, 0xB0, 1, 0, 0, 1, 0xB6, 0x3F}, 1},
                               {{0, 0, 1, 0xB6, 0x50, 0, 0, 1, 0xB6, 0x10}, 0},
                               {{0, 0, 0x80, 2, 0x08}, 1},
                               {{0, 0, 0x83, 2, 0x0A}, 0},
                               {{0, 0, 0x80, 1, 0x08}, 0},
                               {{0, 0, 0x84, 2, 0x08}, 0},
                               // A short header of extended type is skipped.
                               {{0, 0, 0x80, 2, 0x1E, 0, 0, 1, 0xB6, 0x10}, 1}});
}

TEST(Vkeyfrm, H263ReadsThePictureType) {
    for (int32_t codec : {TAVU_MT_VID_H263, TAVU_MT_VID_H263X}) {
        expect(codec, {{{0, 0, 0x80, 2, 0x0A, 0, 0}, 0},
                       {{0, 0, 0x82, 3, 0x08, 0, 0}, 0},
                       {{7, 0, 0, 0x81, 6, 0x08, 0, 0}, 1},
                       {{0, 0, 0x84, 2, 0x08, 0, 0}, 0},
                       // Extended types: update indicator 0, 1 (bit 7 of the sixth byte) and 2.
                       {{0, 0, 0x80, 2, 0x1C, 0x0F, 0, 0x1C}, 1},
                       {{0, 0, 0x80, 2, 0x1C, 0x10, 0, 0}, 0},
                       {{0, 0, 0x80, 2, 0x1C, 0x40, 0, 0}, 0},
                       {{0, 0, 0x80, 2, 0x1C, 0xF0, 0, 0xE3}, 1},
                       {{0, 0, 0x80, 2, 0x1C, 0x80, 0, 0x04}, 0},
                       {{0, 0, 0x80, 2, 0x1C, 0x80, 0, 0x10}, 0},
                       {{0, 0, 0x80, 2, 0x1D, 0x0F, 0, 0x1C}, 1},
                       {{0, 0, 0x80, 2, 0x1D, 0x80, 0, 0x1C}, 1}});
    }
    // With the optional part the picture type may be one byte past the end of a 7-byte unit.
    const uint8_t unit[] = {0, 0, 0x80, 2, 0x1C, 0x80, 0, 0x04};
    EXPECT_EQ(tavu_is_vkeyfrm(TAVU_MT_VID_H263, unit, 7), 0);
}

TEST(Vkeyfrm, PictureTypeInTheFirstByte) {
    for (int32_t codec : {TAVU_MT_VID_WMV1, TAVU_MT_VID_DIV3}) {
        expect(codec, {{{63}, 1}, {{64}, 0}, {{0xFF}, 0}});
    }
    expect(TAVU_MT_VID_WMV2, {{{127}, 1}, {{128}, 0}});
}

TEST(Vkeyfrm, CodecsAndSizesThatAreAlwaysOrNeverKeys) {
    EXPECT_EQ(tavu_is_vkeyfrm(TAVU_MT_VID_HFYU, nullptr, 0), 1);
    const Bytes idr{0, 0, 1, 0x26, 0, 0, 1, 0xB6, 0};
    for (int32_t codec : {107, 113, 114, 115, 116, 117, 118, 119, 299, 0, -1, 306}) {
        EXPECT_EQ(is_key(codec, idr), 0) << codec;
    }
    // Negative sizes count as empty.
    for (int32_t codec : {102, 103, 104, 120}) EXPECT_EQ(tavu_is_vkeyfrm(codec, idr.data(), -1), 0);
}

// The units end at an unreadable page and contain bytes that are almost start codes.
TEST(Vkeyfrm, FindsOnlyCompleteCodesAtEveryPosition) {
    struct {
        int32_t codec;
        Bytes code;
    } const codes[] = {{TAVU_MT_VID_H264, {0, 0, 1, 0x65}},
                       {TAVU_MT_VID_HEVC, {0, 0, 1, 0x26}},
                       {TAVU_MT_VID_MPEG4, {0, 0, 1, 0xB6, 0x10}},
                       {TAVU_MT_VID_MPEG4, {0, 0, 0x83, 2, 0x08}},
                       {TAVU_MT_VID_H263, {0, 0, 0x80, 2, 0x08, 0, 0}}};
    for (const auto &[codec, code] : codes) {
        for (const Bytes &between : {Bytes{0}, {0, 0, 2}, {0, 0, 0x84}, {0, 1, 0x80}, {0xFF}}) {
            for (const size_t size : {3U, 7U, 8U, 63U, 64U, 70U, 130U, 267U}) {
                for (size_t at = 0; at < size; at++) {
                    Bytes unit(size);
                    for (size_t i = 0; i < size; i++) unit[i] = between[i % between.size()];
                    const bool whole = at + code.size() <= size;
                    std::copy_n(code.begin(), std::min(code.size(), size - at), &unit[at]);
                    GuardedBytes guarded(unit);
                    ASSERT_EQ(tavu_is_vkeyfrm(codec, guarded.data(), static_cast<int32_t>(size)),
                              whole)
                        << codec << ' ' << at << " of " << size;
                }
            }
        }
    }
}

// Codes of other kinds, close together and far apart, are skipped one by one.
TEST(Vkeyfrm, SkipsManyCodesThatDoNotDecide) {
    for (size_t distance = 4; distance < 150; distance++) {
        Bytes unit(12 * distance + 4, 9);
        for (size_t at = 0; at < unit.size(); at += distance) unit[at] = unit[at + 1] = 0;
        for (size_t at = 2; at < unit.size(); at += distance) unit[at] = 1;
        EXPECT_EQ(is_key(TAVU_MT_VID_H264, unit), 0);
        unit[11 * distance + 3] = 0x65;
        EXPECT_EQ(is_key(TAVU_MT_VID_H264, unit), 1);
        unit[10 * distance + 3] = 0x41;
        EXPECT_EQ(is_key(TAVU_MT_VID_H264, unit), 0);
    }
}

}  // namespace
