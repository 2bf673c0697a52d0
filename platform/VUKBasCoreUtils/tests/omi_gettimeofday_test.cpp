#include "omi_gettimeofday.h"

#include <gtest/gtest.h>

#include <ctime>

TEST(GetTimeOfDay, AgreesWithTheSystemsClock)
{
    const long long before = std::time(nullptr);
    const omi_Time now = omi_gettimeofday();
    const long long after = std::time(nullptr);
    // The coarse clock behind time() may lag by one tick.
    EXPECT_GE(now.seconds, before);
    EXPECT_LE(now.seconds, after + 1);
}

TEST(GetTimeOfDay, CountsMicrosecondsWithinTheSecond)
{
    for (int i = 0; i < 1000; ++i) {
        const omi_Time now = omi_gettimeofday();
        ASSERT_GE(now.microseconds, 0);
        ASSERT_LE(now.microseconds, 999'999);
    }
}

TEST(GetTimeOfDay, MovesOnBetweenCalls)
{
    const omi_Time first = omi_gettimeofday();
    omi_Time later = first;
    for (int i = 0; i < 10'000'000 && later.microseconds == first.microseconds; ++i) {
        later = omi_gettimeofday();
    }
    EXPECT_NE(later.microseconds, first.microseconds);
}
