#include "RunSimpool.h"

#include "Bytes.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::Not;

std::string Doubles(const std::vector<double>& values)
{
    std::string result;
    for (const double value : values) {
        result += bytes::LongWord(std::bit_cast<std::uint64_t>(value));
    }
    return result;
}

class Diff : public testing::Test
{
protected:
    Ran Compare(const std::string& a, const std::string& b,
                std::vector<std::string> more = {}) const
    {
        mFolder.Write("a.sim", a);
        mFolder.Write("b.sim", b);
        std::vector<std::string> arguments = {"diff", mFolder.Path("a.sim"), mFolder.Path("b.sim")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunSimpool(arguments);
    }

    TemporaryFolder mFolder;
};

bytes::Pool First()
{
    return {.length = "0000000000000100",
            .directory = {bytes::Uuid('a')},
            .data = "twenty bytes of data"};
}
bytes::Pool Last()
{
    return {.directory = {bytes::Uuid('b'), bytes::Uuid('a')}, .data = "end"};
}
bytes::Pool With(const std::string& data)
{
    return {.directory = {bytes::Uuid('a')}, .data = data};
}
} // namespace

TEST_F(Diff, IsSilentWhenNothingDiffers)
{
    const std::string file = bytes::File({First(), Last()});
    const Ran ran = Compare(file, file);
    EXPECT_EQ(ran.exit, 0);
    EXPECT_EQ(ran.out + ran.err, "");
}

TEST_F(Diff, IsSilentOnADamagedFileAndItself)
{
    const std::string file = First().Bytes() + "rubbish";
    const Ran ran = Compare(file, file);
    EXPECT_EQ(ran.exit, 0);
    EXPECT_EQ(ran.out + ran.err, "");
}

TEST_F(Diff, TellsDamageOfOneSide)
{
    const Ran ran = Compare(First().Bytes() + "rubbish", First().Bytes());
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("behind the last pool\n"
                                   "  - 7 bytes after a stop at byte 100: "));
    const Ran other = Compare(First().Bytes() + "rubbish", First().Bytes() + "rubbisH");
    EXPECT_EQ(other.exit, 1);
    EXPECT_THAT(other.out, HasSubstr("behind the last pool, from byte 6 of it on"));
}

TEST_F(Diff, ShowsTheRowsInWhichBytesDiffer)
{
    bytes::Pool changed = First();
    changed.data = "Twenty bytes of dAtA";
    const Ran ran = Compare(bytes::File({First(), Last()}), bytes::File({changed, Last()}));
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("pool 0 (" + bytes::Uuid('a') +
                                   ")\n"
                                   "  data: 3 of 20 bytes are different\n"));
    EXPECT_THAT(ran.out, HasSubstr("0x00000000  74 77 65 6e 74 79 20 62 79 74 65 73 20 6f 66 20  "
                                   "twenty bytes of \n"));
    EXPECT_THAT(ran.out, HasSubstr("0x00000010  64 41 74 41"));
    EXPECT_THAT(ran.out, Not(HasSubstr("pool 1")));
}

TEST_F(Diff, NamesPoolsThatOneSideLacks)
{
    const Ran ran = Compare(First().Bytes(), Last().Bytes());
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("- pool 0 (" + bytes::Uuid('a') +
                                   "), 20 bytes of data\n"
                                   "+ pool 0 (" +
                                   bytes::Uuid('b') + "), 3 bytes of data\n"));
}

TEST_F(Diff, DoesNotCountOrderNorWhichPoolIsCurrent)
{
    bytes::Pool last = First();
    last.length = "0000000000000000";
    bytes::Pool first = Last();
    first.length = "0000000000000115";
    EXPECT_EQ(Compare(bytes::File({First(), Last()}), bytes::File({first, last})).exit, 0);
}

TEST_F(Diff, TellsHeadersLengthsAndDirectories)
{
    bytes::Pool changed = Last();
    changed.userSignature = "ELSE";
    changed.reserved2 = 7;
    changed.directory[1] = bytes::Uuid('c');
    changed.data = "ends";
    const Ran ran = Compare(Last().Bytes(), changed.Bytes());
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("ELSE"));
    EXPECT_THAT(ran.out, HasSubstr("  reserved2\n    - 0\n    + 7\n"));
    EXPECT_THAT(ran.out, HasSubstr("  data length\n    - 3 bytes\n    + 4 bytes\n"));
    EXPECT_THAT(ran.out, HasSubstr("  directory entry 1\n    - " + bytes::Uuid('a') + "\n    + " +
                                   bytes::Uuid('c') + "\n"));
}

TEST_F(Diff, PairsByNumberForRunsWithOtherUuids)
{
    bytes::Pool first = First();
    first.directory = {bytes::Uuid('x')};
    bytes::Pool last = Last();
    last.directory = {bytes::Uuid('y'), bytes::Uuid('x')};
    const std::string a = bytes::File({First(), Last()});
    EXPECT_EQ(Compare(a, bytes::File({first, last}), {"--by", "index"}).exit, 0);
    EXPECT_EQ(Compare(a, bytes::File({first, last})).exit, 1);
    last.directory = {bytes::Uuid('y'), bytes::Uuid('y')};
    const Ran ran = Compare(a, bytes::File({first, last}), {"--by", "index"});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("  directory entry 1\n    - pool 0\n    + pool 1\n"));
}

TEST_F(Diff, TakesTolerancesForNumbers)
{
    const std::string a = With(Doubles({1.0, 100.0, 0.0})).Bytes();
    const std::string b = With(Doubles({1.0, 100.5, 0.001})).Bytes();
    const Ran ran = Compare(a, b, {"--as", "f64"});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("data: 2 of 3 numbers are different; largest distance 0.5, "
                                   "relative 1\n"));
    EXPECT_THAT(ran.out, HasSubstr("0x00000008  100\n"));
    EXPECT_THAT(ran.out, HasSubstr("0x00000008  100.5\n"));
    EXPECT_EQ(Compare(a, b, {"--as", "f64", "--rtol", "0.01"}).exit, 1);
    EXPECT_EQ(Compare(a, b, {"--as", "f64", "--rtol", "0.01", "--atol", "0.001"}).exit, 0);
    EXPECT_EQ(Compare(a, b, {"--as", "f64", "--atol", "0.5"}).exit, 0);
    EXPECT_EQ(Compare(a, b, {"--atol", "0.5"}).exit, 2);
}

TEST_F(Diff, KnowsNumbersThatAreNone)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const std::string nans = With(Doubles({nan})).Bytes();
    EXPECT_EQ(Compare(nans, With(Doubles({-nan})).Bytes(), {"--as", "f64"}).exit, 0);
    EXPECT_EQ(Compare(nans, With(Doubles({1})).Bytes(), {"--as", "f64", "--atol", "9"}).exit, 1);
    const std::string infinite = With(Doubles({infinity})).Bytes();
    const std::string one = With(Doubles({1})).Bytes();
    EXPECT_EQ(Compare(infinite, one, {"--as", "f64", "--rtol", "1"}).exit, 1);
    EXPECT_EQ(Compare(one, infinite, {"--as", "f64", "--rtol", "1"}).exit, 1);
    EXPECT_EQ(
        Compare(With(Doubles({0.0})).Bytes(), With(Doubles({-0.0})).Bytes(), {"--as", "f64"}).exit,
        0);
}

TEST_F(Diff, ComparesIntegersOfAnySizeExactly)
{
    const std::string a = With(bytes::LongWord(18446744073709551615ULL)).Bytes();
    const std::string b = With(bytes::LongWord(18446744073709551614ULL)).Bytes();
    const Ran ran = Compare(a, b, {"--as", "u64"});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("1 of 1 number is different; largest distance 1,"));
    EXPECT_THAT(Compare(With(bytes::Word(0xFFFFFFFF)).Bytes(), With(bytes::Word(1)).Bytes(),
                        {"--as", "i32"})
                    .out,
                HasSubstr("largest distance 2,"));
}

TEST_F(Diff, IgnoresGivenRanges)
{
    const std::string a = With("0123456789").Bytes();
    const std::string b = With("01x3456y89").Bytes();
    EXPECT_EQ(Compare(a, b, {"--ignore", "aaaa:2+1", "--ignore", "0:7+1"}).exit, 0);
    const Ran ran = Compare(a, b, {"--ignore", bytes::Uuid('a') + ":2+5"});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("data: 1 of 10 bytes is different"));
    EXPECT_EQ(Compare(a, b, {"--ignore", "aaaa"}).exit, 0);
    EXPECT_EQ(Compare(a, b, {"--ignore", "zzzz"}).exit, 2);
}

TEST_F(Diff, FindsADifferenceBehindTheFirstMebibyte)
{
    std::string data(3000000, 'x');
    const std::string a = With(data).Bytes();
    data[2500000] = 'y';
    const Ran ran = Compare(a, With(data).Bytes());
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("1 of 3,000,000 bytes is different"));
    EXPECT_THAT(ran.out, HasSubstr("0x002625a0"));
}

TEST_F(Diff, FindsADifferenceBehindAHole)
{
    const std::string front = With("x").Bytes();
    for (const std::string name : {"a.sim", "b.sim"}) {
        mFolder.Write(name, front);
        std::filesystem::resize_file(mFolder.Path(name), 100000000);
        std::ofstream(mFolder.Path(name), std::ios::app) << name;
    }
    const Ran ran = RunSimpool({"diff", mFolder.Path("a.sim"), mFolder.Path("b.sim")});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("data: 1 of 99,999,925 bytes is different"));
    EXPECT_THAT(ran.out, HasSubstr("0x05f5e0b0"));
}

TEST_F(Diff, EscapesWhatFilesHold)
{
    bytes::Pool bad = Last();
    bad.directory = {"\x1b[31m" + std::string(27, '\xff')};
    const Ran ran = Compare(First().Bytes(), bad.Bytes());
    EXPECT_EQ(ran.exit, 1);
    EXPECT_EQ(ran.out.find('\x1b'), std::string::npos);
    EXPECT_THAT(ran.out, HasSubstr("\\x1b[31m\\xff"));
}

TEST_F(Diff, TellsADocument)
{
    const Ran ran = Compare(With("0123").Bytes(), With("01x3").Bytes(), {"--json"});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, HasSubstr("\"equal\": false"));
    EXPECT_THAT(ran.out, HasSubstr("\"offset\": 2"));
    EXPECT_EQ(Compare(With("0").Bytes(), With("0").Bytes(), {"--json"}).exit, 0);
}
