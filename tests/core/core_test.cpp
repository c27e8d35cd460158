#include <gtest/gtest.h>

#include <cstring>

#include "tavu.h"

TEST(Alloc, BlocksAreAlignedAndWhollyUsable) {
    for (uint32_t size = 0; size < 200; size++) {
        void *const plain = tavu_malloc_align32(size), *const fast = tavu_malloc_fast_align32(size);
        for (void *const block : {plain, fast}) {
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0U);
            memset(block, 0xFF, size);
        }
        tavu_mfree_fast_align32(plain);  // the pairs are interchangeable
        tavu_mfree_align32(fast);
    }
    tavu_mfree_align32(nullptr);
    tavu_mfree_fast_align32(nullptr);
}

TEST(Version, IsRewrittenByEachCall) {
    const char *text = tavu_version();
    const_cast<char *>(text)[0] = '?';
    EXPECT_EQ(tavu_version(), text);
    EXPECT_STREQ(text, "Dec 27 2013 13:23:55\n");
}

TEST(Log2, RoundsDownAndUpAtEveryPowerOfTwo) {
    EXPECT_EQ(tavu_floor_log2(0), -1);
    EXPECT_EQ(tavu_ceil_log2(0), -1);
    for (int n = 0; n < 32; n++) {
        const uint32_t power = 1U << n;
        EXPECT_EQ(tavu_floor_log2(power), n);
        EXPECT_EQ(tavu_ceil_log2(power), n);
        if (n == 0) continue;
        EXPECT_EQ(tavu_ceil_log2(power + 1), n + 1);
        EXPECT_EQ(tavu_floor_log2(power + 1), n);
        EXPECT_EQ(tavu_floor_log2(power - 1), n - 1);
        EXPECT_EQ(tavu_ceil_log2(power - 1), n == 1 ? 0 : n);
    }
}

TEST(Atomic, Wraps) {
    int32_t word = INT32_MAX;
    EXPECT_EQ(tavu_atomic_inc(&word), INT32_MIN);
    EXPECT_EQ(tavu_atomic_dec(&word), INT32_MAX);
}

TEST(Sync, WaitReturnsImmediatelyIfTheWordDecides) {
    int32_t word = 7;
    EXPECT_EQ(tavu_sync_wait(&word, 7), TAVU_OK);
    EXPECT_EQ(tavu_sync_wake(&word, -1), 0);
    for (int32_t value : {7, -1}) EXPECT_EQ(tavu_sync_wait(&word, value), TAVU_ERR);
}
