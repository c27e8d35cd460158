// Audio, bitstream and frame-list buffers and variable data.
#include <gtest/gtest.h>

#include "memory.h"
#include "recorder.h"
#include "tavu.h"

namespace {

class Buffers : public testing::Test {
  protected:
    void SetUp() override { memory = {}; }
};

TEST_F(Buffers, AudioHasOneBlockOrOnePerChannel) {
    const int32_t cases[][5] = {{1, 2, 16, 1, 400}, {99, 9, 12, 1, 1800}, {50, 0, 8, 1, 0},
                                {0, 2, 12, 2, 200}, {100, 8, 8, 8, 100},  {-1, 1, 1, 1, 100},
                                {0, 0, 24, 0, 0},   {7, 1, 24, 1, 300},   {0, 3, 0, 3, 0}};
    memory.step = 0x100;
    for (const auto &[format, channels, bits, blocks, bytes] : cases) {
        SCOPED_TRACE(format);
        memory.allocated = memory.freed = 0;
        memory.second = 0x40;
        tavu_audb_t *audio =
            tavu_audb_create(100, channels, bits, 77, format, 5, allocate, release, nullptr);
        ASSERT_NE(audio, nullptr);
        EXPECT_EQ(memory.allocated, blocks);
        EXPECT_EQ(audio->interleaved, format == 0 || format == 100 || format < 0 ? 0 : 1);
        for (int i = 0; i < 8; i++) {
            const bool used = i < blocks;
            EXPECT_EQ(audio->samples[i], used ? 100 : 0);
            EXPECT_EQ(audio->bytes[i], used ? bytes : 0);
            EXPECT_EQ(audio->addr[i] != nullptr, used);
            EXPECT_EQ(audio->paddr[i], used ? 0x40U + 0x100U * static_cast<uint32_t>(i) : 0U);
        }
        EXPECT_EQ(audio->channels, channels);
        EXPECT_EQ(audio->bits, bits);
        EXPECT_EQ(audio->value, 77);
        EXPECT_EQ(audio->format, format);
        EXPECT_EQ(audio->release(audio), 0);
        EXPECT_EQ(memory.freed, blocks);
        EXPECT_EQ(memory.mismatched, 0);
    }
    tavu_audb_t *aligned = tavu_audb_create(3, 2, 8, 0, 0, 0, nullptr, nullptr, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(aligned->addr[1]) % 32, 0U);
    aligned->release(aligned);
}

TEST_F(Buffers, BitstreamBufferHasOneBlock) {
    memory.second = 3;
    tavu_bitb_t *bits = tavu_bitb_create(12, -9, 0, allocate, release, nullptr);
    EXPECT_EQ(memory.size, 12);
    EXPECT_EQ(bits->value, -9);
    EXPECT_EQ(bits->paddr, 3U);
    EXPECT_EQ(bits->addr[11], 0xFF);
    EXPECT_EQ(bits->release(bits), 0);
    EXPECT_EQ(memory.freed, 1);
    EXPECT_EQ(memory.mismatched, 0);

    // Without a free function the payload is not freed.
    memory.freed = 0;
    bits = tavu_bitb_create(1, 0, 0, allocate, nullptr, nullptr);
    tavu_audb_t *audio = tavu_audb_create(1, 1, 8, 0, 0, 0, allocate, nullptr, nullptr);
    uint8_t *kept[] = {bits->addr, audio->addr[0]};
    EXPECT_EQ(bits->release(bits), 0);
    EXPECT_EQ(audio->release(audio), 0);
    EXPECT_EQ(memory.freed, 0);
    for (uint8_t *payload : kept) free(payload);

    int32_t status = 1;
    EXPECT_EQ(tavu_bitb_create(-1, 0, 0, nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status, TAVU_ERR_BITB_ALLOC);
}

TEST_F(Buffers, FrameListRecordIsZero) {
    tavu_mfal_t *frames = tavu_mfal_create(9, nullptr);
    for (uint32_t word : frames->body) EXPECT_EQ(word, 0U);
    EXPECT_EQ(frames->release(frames), 0);
}

TEST_F(Buffers, VariableDataEndsInTwoZeros) {
    const uint8_t bytes[] = {1, 2, 3, 4};
    const uint8_t expected[] = {1, 2, 3, 0, 0};
    tavu_vdata_t data{}, copy{};
    ASSERT_EQ(tavu_vdata_set(&data, bytes, 3, 42), TAVU_OK);
    ASSERT_EQ(tavu_vdata_cpy(&copy, &data), TAVU_OK);
    EXPECT_NE(copy.data, data.data);
    for (const tavu_vdata_t *vd : {&data, &copy}) {
        EXPECT_EQ(memcmp(vd->data, expected, 5), 0);
        EXPECT_EQ(vd->len, 3);
        EXPECT_EQ(vd->type, 42);
    }

    // The previous contents of the record are not freed.
    uint8_t *first = copy.data;
    ASSERT_EQ(tavu_vdata_set(&copy, bytes, 1, 7), TAVU_OK);
    EXPECT_EQ(memcmp(first, expected, 5), 0);
    free(first);

    tavu_vdata_t before = copy;
    const tavu_vdata_t empty{};
    for (const int32_t status :
         {tavu_vdata_set(&copy, nullptr, 3, 1), tavu_vdata_set(&copy, bytes, 0, 1),
          tavu_vdata_set(&copy, bytes, -1, 1), tavu_vdata_set(nullptr, bytes, 1, 1),
          tavu_vdata_cpy(&copy, nullptr), tavu_vdata_cpy(&copy, &empty)}) {
        EXPECT_EQ(status, TAVU_ERR_INVALID_ARGUMENT);
    }
    {
        FailingAllocations failing(0);
        EXPECT_EQ(tavu_vdata_set(&copy, bytes, 3, 1), TAVU_ERR_OUT_OF_MEMORY);
    }
    EXPECT_EQ(memcmp(&copy, &before, sizeof copy), 0);

    for (tavu_vdata_t *vd : {&data, &copy, &copy}) {
        tavu_vdata_free(vd);
        EXPECT_EQ(memcmp(vd, &empty, sizeof empty), 0);
    }
    tavu_vdata_free(nullptr);
}

}  // namespace
