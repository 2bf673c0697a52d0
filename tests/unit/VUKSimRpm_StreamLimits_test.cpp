#include "VUKSimRpm_StreamLimits.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned long long kHuge = 18446744073709551615ULL; // 2^64 - 1

using VUKSimRpm_StreamLimits::ChunkSize;
using VUKSimRpm_StreamLimits::Exceeds;
} // namespace

TEST(StreamLimits, RaiseAChunkTo16Bytes)
{
    EXPECT_EQ(ChunkSize(0), 16UL);
    EXPECT_EQ(ChunkSize(15), 16UL);
    EXPECT_EQ(ChunkSize(16), 16UL);
    EXPECT_EQ(ChunkSize(17), 17UL);
    EXPECT_EQ(ChunkSize(kHuge), kHuge);
}

TEST(StreamLimits, CanBeReachedAndNotPassed)
{
    EXPECT_FALSE(Exceeds(0, 10, 10));
    EXPECT_FALSE(Exceeds(4, 6, 10));
    EXPECT_FALSE(Exceeds(10, 0, 10));
    EXPECT_TRUE(Exceeds(0, 11, 10));
    EXPECT_TRUE(Exceeds(4, 7, 10));
    EXPECT_TRUE(Exceeds(10, 1, 10));
    EXPECT_TRUE(Exceeds(11, 0, 10));
}

TEST(StreamLimits, OfZeroAreNone)
{
    EXPECT_FALSE(Exceeds(0, 0, 0));
    EXPECT_FALSE(Exceeds(kHuge, kHuge, 0));
}

TEST(StreamLimits, AreComparedWithoutSumsThatWrap)
{
    EXPECT_TRUE(Exceeds(4, kHuge, 10)); // the sum is 3 in 64 bits
    EXPECT_TRUE(Exceeds(kHuge, 1, 10));
    EXPECT_TRUE(Exceeds(kHuge, kHuge, 10));
    EXPECT_FALSE(Exceeds(4, kHuge - 4, kHuge));
    EXPECT_TRUE(Exceeds(4, kHuge - 3, kHuge));
}
