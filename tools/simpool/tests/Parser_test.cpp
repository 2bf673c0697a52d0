// The parser on files written by hand.
#include "PoolSearch.h"
#include "PoolWalk.h"

#include "Bytes.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace simpool;

namespace {

std::vector<std::uint64_t> FoundPools(const FileBytes& file)
{
    std::vector<std::uint64_t> positions;
    PoolSearch search(file);
    for (const PoolInfo* pool = search.FirstFrom(0); pool != nullptr;
         pool = search.FirstFrom(pool->position + 1)) {
        positions.push_back(pool->position);
    }
    return positions;
}

class Parser : public testing::Test
{
protected:
    PoolWalk WalkOver(const std::string& content)
    {
        mFolder.Write("a.sim", content);
        EXPECT_EQ(mFile.Open(mFolder.Path("a.sim").c_str()), 0);
        Together together;
        return WalkPools(mFile, together);
    }

    TemporaryFolder mFolder;
    FileBytes mFile;
};

std::string Text(const Uuid& uuid)
{
    return std::string(uuid.begin(), uuid.end());
}

// 80 + 10 bytes, frozen; then 112 + 5 bytes, current.
std::string TwoPools()
{
    return bytes::File(
        {{.length = "0000000000000090", .directory = {bytes::Uuid('a')}, .data = "0123456789"},
         {.directory = {bytes::Uuid('b'), bytes::Uuid('a')}, .data = "hello"}});
}
} // namespace

TEST_F(Parser, TellsEachPoolsPlaceAndLength)
{
    const PoolWalk walk = WalkOver(TwoPools());
    EXPECT_EQ(walk.stop, Stop::None);
    EXPECT_EQ(walk.position, 207U);
    ASSERT_EQ(walk.pools.size(), 2U);
    EXPECT_EQ(walk.pools[0].position, 0U);
    EXPECT_EQ(walk.pools[0].length, 90U);
    EXPECT_EQ(walk.pools[0].DataLength(), 10U);
    EXPECT_FALSE(walk.pools[0].IsCurrent());
    EXPECT_EQ(Text(walk.pools[0].uuid), bytes::Uuid('a'));
    EXPECT_EQ(walk.pools[1].position, 90U);
    EXPECT_EQ(walk.pools[1].DataPosition(), 202U);
    EXPECT_EQ(walk.pools[1].DataLength(), 5U);
    EXPECT_TRUE(walk.pools[1].IsCurrent());
}

TEST_F(Parser, KeepsThePoolsInFrontOfTheDamage)
{
    std::string content = TwoPools();
    content[90] = 'X';
    const PoolWalk walk = WalkOver(content);
    EXPECT_EQ(walk.stop, Stop::NoSignature);
    EXPECT_EQ(walk.position, 90U);
    ASSERT_EQ(walk.pools.size(), 1U);
    ASSERT_TRUE(walk.stoppedAt.has_value());
    EXPECT_EQ(walk.stoppedAt->header.directoryCount, 2U);
}

TEST_F(Parser, TakesTheUserSignatureOfTheFirstPool)
{
    const PoolWalk walk = WalkOver(bytes::File(
        {{.userSignature = "ABCD", .length = "0000000000000080", .directory = {bytes::Uuid('a')}},
         {.userSignature = "ABCE", .directory = {bytes::Uuid('b')}}}));
    EXPECT_EQ(walk.stop, Stop::OtherUserSignature);
    EXPECT_EQ(walk.pools.size(), 1U);
}

TEST_F(Parser, FindsAPoolThatAnotherFileHolds)
{
    mFolder.Write("a.sim", TwoPools());
    mFolder.Write("b.sim", TwoPools());
    Together together;
    FileBytes first;
    FileBytes second;
    ASSERT_EQ(first.Open(mFolder.Path("a.sim").c_str()), 0);
    ASSERT_EQ(second.Open(mFolder.Path("b.sim").c_str()), 0);
    EXPECT_EQ(WalkPools(first, together).stop, Stop::None);
    const PoolWalk walk = WalkPools(second, together);
    EXPECT_EQ(walk.stop, Stop::DuplicatePool);
    EXPECT_EQ(walk.position, 0U);
}

TEST_F(Parser, ReadsADirectoryEntryByEntry)
{
    const PoolWalk walk = WalkOver(TwoPools());
    std::vector<std::string> seen;
    EXPECT_TRUE(ForEachEntry(mFile, walk.pools[1], [&](std::uint32_t index, const Uuid& uuid) {
        seen.push_back(std::to_string(index) + Text(uuid));
    }));
    EXPECT_EQ(seen, (std::vector<std::string>{"0" + bytes::Uuid('b'), "1" + bytes::Uuid('a')}));
}

TEST_F(Parser, ReadsALargeDirectoryToItsLastEntry)
{
    bytes::Pool pool;
    pool.directory.assign(1300, bytes::Uuid('c'));
    pool.directory.back() = bytes::Uuid('d');
    const PoolWalk walk = WalkOver(pool.Bytes());
    ASSERT_EQ(walk.pools.size(), 1U);
    std::uint32_t count = 0;
    std::string last;
    EXPECT_TRUE(ForEachEntry(mFile, walk.pools[0], [&](std::uint32_t index, const Uuid& uuid) {
        EXPECT_EQ(index, count++);
        last = Text(uuid);
    }));
    EXPECT_EQ(count, 1300U);
    EXPECT_EQ(last, bytes::Uuid('d'));
}

TEST_F(Parser, FindsPoolsWhereverTheyLie)
{
    // The second signature lies across the border of the first MiB read.
    std::string content(1048572, '.');
    content.replace(100, 80, bytes::Pool{.directory = {bytes::Uuid('a')}}.Bytes());
    content += bytes::Pool{.directory = {bytes::Uuid('b')}}.Bytes();
    mFolder.Write("a.sim", content);
    ASSERT_EQ(mFile.Open(mFolder.Path("a.sim").c_str()), 0);
    EXPECT_EQ(FoundPools(mFile), (std::vector<std::uint64_t>{100, 1048572}));
}

TEST_F(Parser, TakesASignatureWithoutAWholePoolForData)
{
    const std::string cut = bytes::Pool{.count = 2, .directory = {bytes::Uuid('a')}}.Bytes();
    mFolder.Write("a.sim", "...." + cut);
    ASSERT_EQ(mFile.Open(mFolder.Path("a.sim").c_str()), 0);
    EXPECT_TRUE(FoundPools(mFile).empty());
}

TEST_F(Parser, OpensNothingButRegularFiles)
{
    EXPECT_EQ(mFile.Open(mFolder.Path("none.sim").c_str()), ENOENT);
    EXPECT_EQ(mFile.Open("/"), -1);
    ASSERT_EQ(mkfifo(mFolder.Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(mFile.Open(mFolder.Path("pipe").c_str()), -1); // and does not wait for a writer
    EXPECT_EQ(mFile.Open("/dev/zero"), -1);
}

TEST_F(Parser, LeavesALockedFileAlone)
{
    mFolder.Write("a.sim", TwoPools());
    const int writer = open(mFolder.Path("a.sim").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(writer, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(mFile.Open(mFolder.Path("a.sim").c_str()), 0);
    struct flock range = {};
    range.l_type = F_WRLCK;
    EXPECT_EQ(fcntl(writer, F_SETLK, &range), 0);
    close(writer);
}

TEST_F(Parser, SeesAFileGrowOnlyWhenAskedTo)
{
    WalkOver(TwoPools());
    mFolder.Write("a.sim", TwoPools() + "more");
    EXPECT_EQ(mFile.Size(), 207U);
    EXPECT_EQ(mFile.Refresh(), 0);
    EXPECT_EQ(mFile.Size(), 211U);
}

TEST(StoredHeader, AddsDistancesOfBytesThatAreNoDigits)
{
    StoredHeader header;
    header.lengthDigits.fill('0');
    EXPECT_TRUE(header.LengthIsDecimal());
    header.lengthDigits[15] = '/'; // one below '0'
    EXPECT_EQ(header.LengthValue(), 18446744073709551615ULL);
    EXPECT_FALSE(header.LengthIsDecimal());
    header.SetLength(1234567890123456ULL);
    EXPECT_EQ(std::string(header.lengthDigits.begin(), header.lengthDigits.end()),
              "1234567890123456");
}

TEST(StoredHeader, TellsHowAUuidIsMade)
{
    const auto uuid = [](const std::string& text) {
        Uuid result;
        text.copy(result.data(), result.size());
        return result;
    };
    EXPECT_TRUE(IsVersion4(uuid("00112233445546778899aabbccddeeff")));
    EXPECT_FALSE(IsVersion4(uuid("00112233445556778899aabbccddeeff")));
    EXPECT_TRUE(IsLowercaseHex(uuid("00112233445556778899aabbccddeeff")));
    EXPECT_FALSE(IsLowercaseHex(uuid("00112233445546778899AABBCCDDEEFF")));
}
