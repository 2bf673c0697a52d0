#include "RunSimpool.h"

#include "Bytes.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::HasSubstr;

class Extract : public testing::Test
{
protected:
    Extract()
    {
        const std::string all("zero\0one\ntwo", 12);
        mFolder.Write(
            "a.sim",
            bytes::File(
                {{.length = "0000000000000092", .directory = {bytes::Uuid('a')}, .data = all},
                 {.directory = {"4af1" + std::string(28, '0')}, .data = "abcdefgh"}}));
    }

    [[nodiscard]] Ran Take(const std::string& range) const
    {
        return RunSimpool({"extract", mFolder.Path("a.sim"), range});
    }

    TemporaryFolder mFolder;
};
} // namespace

TEST_F(Extract, WritesAllDataOfAPoolByteForByte)
{
    const Ran ran = Take("0");
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_EQ(ran.out, std::string("zero\0one\ntwo", 12));
}

TEST_F(Extract, TakesARangeOfThePoolThatAUuidBegins)
{
    EXPECT_EQ(Take("4af1:2").out, "cdefgh");
    EXPECT_EQ(Take("4af1:2+3").out, "cde");
    EXPECT_EQ(Take("4af1:0x2+0x5").out, "cdefg");
    EXPECT_EQ(Take("1:8").out, "");
    EXPECT_EQ(Take("1:8").exit, 0);
}

TEST_F(Extract, RefusesRangesThatReachBehindTheData)
{
    EXPECT_EQ(Take("1:9").exit, 2);
    EXPECT_THAT(Take("1:9").err, HasSubstr("offset 9 lies behind the 8 bytes of data of pool 1"));
    EXPECT_EQ(Take("1:6+3").exit, 2);
    EXPECT_THAT(Take("1:6+3").err, HasSubstr("pool 1 has only 2 bytes of data from offset 6 on"));
    EXPECT_EQ(Take("1:18446744073709551615+2").exit, 2);
}

TEST_F(Extract, RefusesWhatIsNoRange)
{
    for (const std::string range : {"1:", "1:x", "1:2+", "1:-1", "1:2+99999999999999999999", "2"}) {
        EXPECT_EQ(Take(range).exit, 2) << range;
        EXPECT_EQ(Take(range).out, "") << range;
    }
}

TEST_F(Extract, MakesAFileAndTellsSoAsADocument)
{
    const Ran ran = RunSimpool(
        {"extract", mFolder.Path("a.sim"), "1:2+3", "-o", mFolder.Path("out.bin"), "--json"});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_EQ(mFolder.Read("out.bin"), "cde");
    EXPECT_THAT(ran.out, HasSubstr("\"schema\": \"simpool/1\""));
    EXPECT_THAT(ran.out, HasSubstr("\"length\": 3"));
    EXPECT_EQ(RunSimpool({"extract", mFolder.Path("a.sim"), "1", "--json"}).exit, 2);
}

TEST_F(Extract, WritesWhatIsLeftOfAPoolThatWasCut)
{
    mFolder.Write("a.sim", bytes::Pool{.length = "0000000000000100",
                                       .directory = {bytes::Uuid('a')},
                                       .data = "0123456789"}
                               .Bytes());
    const Ran ran = Take("0:4");
    EXPECT_EQ(ran.exit, 1);
    EXPECT_EQ(ran.out, "456789");
    EXPECT_THAT(ran.err, HasSubstr("the file ends 10 bytes before the range does"));
}

TEST_F(Extract, NeverWritesTheFileItReads)
{
    const std::string before = mFolder.Read("a.sim");
    EXPECT_EQ(
        RunSimpool({"extract", mFolder.Path("a.sim"), "1", "-o", mFolder.Path("a.sim"), "--force"})
            .exit,
        2);
    EXPECT_EQ(mFolder.Read("a.sim"), before);
}
