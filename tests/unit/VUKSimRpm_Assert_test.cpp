#include "VUKSimRpm_Assert.h"

#include "VUKSimRpm_PoolMap.h"

#include "Bytes.h"
#include "Failures.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Example";

#define EXAMPLE_LIMIT 3

void AssertBelowLimit(int count)
{
    VUKSIMRPM_ASSERT(count < EXAMPLE_LIMIT, kSource, 17);
}

void ValidateBelowLimit(int count)
{
    VUKSIMRPM_VALIDATE(count < EXAMPLE_LIMIT, kSource, 18);
}
} // namespace

TEST(Assert, QuotesItsConditionAsItIsWritten)
{
    EXPECT_TRUE(RaisesAssertion([] { AssertBelowLimit(3); }, "count < EXAMPLE_LIMIT", kSource, 17));
}

TEST(Assert, ReportsACheckOfAGivenValueAsAValidation)
{
    EXPECT_TRUE(
        RaisesValidation([] { ValidateBelowLimit(3); }, "count < EXAMPLE_LIMIT", kSource, 18));
}

TEST(Assert, SaysNothingAndGoesOnWhenTheConditionHolds)
{
    const ReportRecorder recorder;
    AssertBelowLimit(2);
    ValidateBelowLimit(2);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(Assert, LooksOnceAtAConditionThatHolds)
{
    int looks = 0;
    VUKSIMRPM_ASSERT(++looks == 1, kSource, 1);
    EXPECT_EQ(looks, 1);
}

TEST(Assert, ReportsAfterTheFirstLookAndThrowsAfterTheSecond)
{
    static int looks;
    static int looksAtReport;
    looks = 0;
    looksAtReport = 0;
    const auto outer = VUKSimUttAssert::SetHandler(
        [](VUKSimUttAssert::Kind, const char*, const char*, int) { looksAtReport = looks; });
    EXPECT_THROW(VUKSIMRPM_ASSERT(++looks < 0, kSource, 1), VUKBasAssertException);
    VUKSimUttAssert::SetHandler(outer);

    EXPECT_EQ(looksAtReport, 1);
    EXPECT_EQ(looks, 2);
}

TEST(Assert, TakesTheConditionAsAWhole)
{
    const ReportRecorder recorder;
    const bool yes = true;
    const bool no = false;
    VUKSIMRPM_ASSERT(no || yes, kSource, 1);
    if (yes)
        VUKSIMRPM_VALIDATE(yes, kSource, 1);
    else
        VUKSIMRPM_VALIDATE(no, kSource, 1);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(AssertDeathTest, EndsTheProcessWhenTheConditionHoldsTheSecondTime)
{
    const auto changesItsMind = [](bool validation) {
        std::atexit([] { std::fputs("left by way of exit\n", stderr); });
        int looks = 0;
        if (validation) {
            VUKSIMRPM_VALIDATE(++looks == 2, kSource, 18);
        } else {
            VUKSIMRPM_ASSERT(++looks == 2, kSource, 17);
        }
    };
    EXPECT_EXIT(changesItsMind(false), testing::ExitedWithCode(1),
                "^Assertion failed: \\+\\+looks == 2 at "
                "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Example:17\n"
                "left by way of exit\n$");
    EXPECT_EXIT(changesItsMind(true), testing::ExitedWithCode(1),
                "^Validation failed: \\+\\+looks == 2 at "
                "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Example:18\n"
                "left by way of exit\n$");
}

TEST(AssertDeathTest, EndsTheProcessWhenALibraryObjectChangesWhileItsCheckIsReported)
{
    static VUKSimRpm_PoolMap map;
    const auto removeASlotThatAppearsLate = [] {
        VUKSimUttAssert::SetHandler([](VUKSimUttAssert::Kind, const char*, const char*, int) {
            map.NewSlot(bytes::Uuid('a').c_str());
        });
        map.Remove(0);
    };
    EXPECT_EXIT(removeASlotThatAppearsLate(), testing::ExitedWithCode(1), "^$");
}
