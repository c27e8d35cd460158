#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

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

Bytes from_hex(const std::string &text) {
    Bytes bytes(text.size() / 2);
    for (size_t i = 0; i < bytes.size(); i++) {
        bytes[i] = static_cast<uint8_t>(std::stoi(text.substr(2 * i, 2), nullptr, 16));
    }
    return bytes;
}

using Units = std::initializer_list<std::string>;

void expect(int32_t codec, const Units &key, const Units &other) {
    for (const std::string &unit : key) EXPECT_EQ(is_key(codec, from_hex(unit)), 1) << unit;
    for (const std::string &unit : other) EXPECT_EQ(is_key(codec, from_hex(unit)), 0) << unit;
}

// Bit 7 of the byte after a start code is not part of the type.
TEST(Vkeyfrm, H264FindsTheFirstSlice) {
    expect(TAVU_MT_VID_H264, {"0000016709000001680900000165", "0000000109100000000125", "00000185"},
           {"00000141", "000001E100000165", "0000014100000165", "0000016700000265000165", ""});
}

TEST(Vkeyfrm, HevcIsDecidedByTheFirstUnitEvenAParameterSet) {
    expect(TAVU_MT_VID_HEVC, {"090000000128", "000001A6"},
           {"00000124", "0000012A", "00000140010000012601"});
}

// A short header of extended type is skipped.
TEST(Vkeyfrm, Mpeg4LooksForAVopOrAShortHeader) {
    expect(TAVU_MT_VID_MPEG4, {"000001B001000001B63F", "0000800208", "000080021E000001B610"},
           {"000001B650", "000001B690", "000001B650000001B610", "000083020A", "0000800108",
            "0000840208"});
}

TEST(Vkeyfrm, H263ReadsThePictureType) {
    for (int32_t codec : {TAVU_MT_VID_H263, TAVU_MT_VID_H263X}) {
        expect(codec, {"0700008106080000"}, {"000080020A0000", "00008203080000", "00008402080000"});
        // Extended types: update indicator 0, 1 (bit 7 of the sixth byte) and 2.
        expect(codec,
               {"000080021C0F001C", "000080021CF000E3", "000080021D0F001C", "000080021D80001C"},
               {"000080021C100000", "000080021C400000", "000080021C800004", "000080021C800010"});
    }
    // With the optional part the picture type may be one byte past the end of a 7-byte unit.
    EXPECT_EQ(tavu_is_vkeyfrm(TAVU_MT_VID_H263, from_hex("000080021C800004").data(), 7), 0);
}

TEST(Vkeyfrm, PictureTypeInTheFirstByte) {
    for (int32_t codec : {TAVU_MT_VID_WMV1, TAVU_MT_VID_DIV3}) expect(codec, {"3F"}, {"40", "FF"});
    expect(TAVU_MT_VID_WMV2, {"7F"}, {"80"});
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
    const std::pair<int32_t, Bytes> codes[] = {{TAVU_MT_VID_H264, {0, 0, 1, 0x65}},
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
