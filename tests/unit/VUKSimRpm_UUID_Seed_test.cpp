// The seed of the UUID generator. The clock is replaced for the whole program, and since a process
// seeds once, each test looks at a child process that starts from nothing.
#include "VUKSimRpm_UUID.h"

#include "omi_gettimeofday.h"

#include "Bytes.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

long long sMicroseconds = 0;
int sClockReads = 0;

std::string Create()
{
    char text[32];
    VUKSimRpm_UUID::CreateUUID(text);
    return std::string(text, sizeof text);
}

// The first two values of a process whose clock shows `microseconds`, on standard error.
[[noreturn]] void PrintTwo(long long microseconds)
{
    sMicroseconds = microseconds;
    const std::string first = Create();
    std::fprintf(stderr, "%s %s", first.c_str(), Create().c_str());
    std::exit(0);
}

// The same, with forced values before and between.
[[noreturn]] void PrintTwoAmongForced(long long microseconds)
{
    sMicroseconds = microseconds;
    const std::string forced = bytes::Uuid('f');
    const auto createForced = [&] {
        VUKSimRpm_UUID::TestForceUUID(forced.c_str());
        return Create();
    };
    createForced();
    const std::string first = Create();
    createForced();
    std::fprintf(stderr, "%s %s", first.c_str(), Create().c_str());
    std::exit(0);
}

// Each clock reading so far, when nothing, a forced value and two others were made.
[[noreturn]] void PrintClockReads()
{
    const std::string forced = bytes::Uuid('f');
    const int atStart = sClockReads;
    VUKSimRpm_UUID::TestForceUUID(forced.c_str());
    const bool given = Create() == forced;
    const int afterForced = sClockReads;
    Create();
    const int afterFirst = sClockReads;
    VUKSimRpm_UUID::TestForceUUID(forced.c_str());
    Create();
    Create();
    std::fprintf(stderr, "%d, forced %s %d, first %d, later %d", atStart, given ? "given" : "lost",
                 afterForced, afterFirst, sClockReads);
    std::exit(0);
}

class UUIDSeedDeathTest : public testing::Test
{
protected:
    // "threadsafe": the child is a new process, in which nothing was generated yet.
    UUIDSeedDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    ~UUIDSeedDeathTest() override { GTEST_FLAG_SET(death_test_style, "fast"); }
};
} // namespace

// Stands in for the platform's clock.
omi_Time omi_gettimeofday() noexcept
{
    ++sClockReads;
    return {1700000000, sMicroseconds};
}

TEST_F(UUIDSeedDeathTest, IsTakenOnceAndNotForAForcedValue)
{
    EXPECT_EXIT(PrintClockReads(), testing::ExitedWithCode(0),
                "^0, forced given 0, first 1, later 1$");
}

// The texts were worked out apart from this code, from the C library's initstate(seed, state, 256)
// and four numbers of random() for each.
TEST_F(UUIDSeedDeathTest, IsTheClocksSecondWord)
{
    EXPECT_EXIT(PrintTwo(123456), testing::ExitedWithCode(0),
                "^f3bd3164719848478f4de080c08d3551 e2cf3cb441b64e51ae83eac5c05a9bd2$");
}

TEST_F(UUIDSeedDeathTest, IsFollowedByTheSameValuesWhateverIsForcedBetween)
{
    EXPECT_EXIT(PrintTwoAmongForced(123456), testing::ExitedWithCode(0),
                "^f3bd3164719848478f4de080c08d3551 e2cf3cb441b64e51ae83eac5c05a9bd2$");
}

TEST_F(UUIDSeedDeathTest, IsTakenFromTheLow32BitsAlone)
{
    EXPECT_EXIT(PrintTwo(4295090752), testing::ExitedWithCode(0), // 2^32 + 123456
                "^f3bd3164719848478f4de080c08d3551 e2cf3cb441b64e51ae83eac5c05a9bd2$");
}

TEST_F(UUIDSeedDeathTest, IsTheRemainderByTheGeneratorsRange)
{
    EXPECT_EXIT(PrintTwo(2147483647), testing::ExitedWithCode(0), // 7 is left of it
                "^b91860e6d6db4e63a8dec8709570ed67 1188da778eab465485272ec4fa8d7265$");
}

TEST_F(UUIDSeedDeathTest, KeepsTheSignOfTheWord)
{
    EXPECT_EXIT(PrintTwo(4294967295), testing::ExitedWithCode(0), // -1
                "^b8b89cb0c1d547a4bd58ab2126597c93 7e2666435d814001b6f184324a1a23e3$");
    EXPECT_EXIT(PrintTwo(2147483648), testing::ExitedWithCode(0), // the lowest; -8 is left of it
                "^73c353a1ef214bb59523ffe7d8419e37 caf4bb3276cc41d792585da77cf8e7a6$");
}
