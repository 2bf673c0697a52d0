#include "VUKSimRpm_StreamLimits.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned long long kHuge = 18446744073709551615ULL; // 2^64 - 1

using VUKSimRpm_StreamLimits::Allowed;
using VUKSimRpm_StreamLimits::Exceeds;
} // namespace

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

TEST(StreamLimits, AllowNoMoreBytesThanLieBeforeThem)
{
    EXPECT_EQ(Allowed(0, 16, 10), 10U);
    EXPECT_EQ(Allowed(4, 16, 10), 6U);
    EXPECT_EQ(Allowed(4, 6, 10), 6U);
    EXPECT_EQ(Allowed(4, 5, 10), 5U);
    EXPECT_EQ(Allowed(10, 16, 10), 0U);
    EXPECT_EQ(Allowed(11, 16, 10), 0U);
    EXPECT_EQ(Allowed(kHuge, 16, kHuge), 0U);
    EXPECT_EQ(Allowed(kHuge - 3, kHuge, kHuge), 3U);
}

TEST(StreamLimits, OfZeroAllowAllBytes)
{
    EXPECT_EQ(Allowed(0, 16, 0), 16U);
    EXPECT_EQ(Allowed(kHuge, 16, 0), 16U);
}
