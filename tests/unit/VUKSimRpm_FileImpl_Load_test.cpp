#include "VUKSimRpm_FileImpl.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"
#include "Transfers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

namespace {
using testing::ElementsAre;

constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
constexpr char kDirectorySource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";

class FileImplLoad : public FileFixture
{
protected:
    void OpenRead(const std::string& stored) { mFile.OpenRead(mFolder.Write("a.sim", stored)); }
    void OpenUpdate(const std::string& stored) { mFile.OpenUpdate(mFolder.Write("a.sim", stored)); }

    // `a` at 0, 84 bytes; `b` at 84, 116 bytes, refers to `a`; `c` at 200, 82 bytes: 282 in all.
    const std::vector<bytes::Pool> mThree{
        {.length = "0000000000000084", .directory = {bytes::Uuid('a')}, .data = "1234"},
        {.length = "0000000000000116",
         .directory = {bytes::Uuid('b'), bytes::Uuid('a')},
         .data = "5678"},
        {.directory = {bytes::Uuid('c')}, .data = "90"}};
    VUKSimRpm_FileImpl mFile{mDocument};
};

// Four pools of 80 bytes, `a` to `d`, each claiming to be followed by the next; `entries` of the
// first are counted, so that its directory lies over the pools behind it.
std::string Overlapping(std::uint32_t entriesOfA, std::uint32_t entriesOfB)
{
    std::vector<bytes::Pool> pools;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        pools.push_back({.length = "0000000000000080", .directory = {bytes::Uuid(letter)}});
    }
    pools[0].count = entriesOfA;
    pools[1].count = entriesOfB;
    return bytes::File(pools);
}
} // namespace

// The walk

TEST_F(FileImplLoad, FindsPoolsLaidEndToEnd)
{
    OpenRead(bytes::File(mThree));
    ASSERT_EQ(mFile.PoolCount(), 3U);
    const auto a = mFile.Pool(0).lock();
    EXPECT_EQ(a->Position(), 0U);
    EXPECT_EQ(a->Length(), 84U);
    EXPECT_EQ(ReadPool(*a, 0, 4), "1234");
    const auto b = mFile.Pool(1).lock();
    EXPECT_EQ(b->Position(), 84U);
    EXPECT_EQ(b->Length(), 116U);
    EXPECT_EQ(ReadPool(*b, 0, 4), "5678");
    const auto c = mFile.Pool(2).lock();
    EXPECT_EQ(c->Position(), 200U);
    EXPECT_EQ(c->Length(), 82U);
    EXPECT_EQ(ReadPool(*c, 0, 4), "90");
}

TEST_F(FileImplLoad, PutsEachPoolIntoItsSlot)
{
    OpenRead(bytes::File(mThree));
    EXPECT_EQ(Map()->Length(), 3);
    EXPECT_EQ(PoolIn(0), mFile.Pool(0).lock());
    EXPECT_EQ(PoolIn(1), mFile.Pool(1).lock());
    EXPECT_EQ(PoolIn(2), mFile.Pool(2).lock());
}

TEST_F(FileImplLoad, MakesSlotsForPoolsThatAreOnlyReferredTo)
{
    OpenRead(bytes::Pool{.directory = {bytes::Uuid('a'), bytes::Uuid('x')}}.Bytes());
    EXPECT_EQ(Map()->Length(), 2);
    EXPECT_EQ(Map()->LookupByUUID(bytes::Uuid('x').c_str()), 1);
    EXPECT_FALSE(PoolIn(1));
}

TEST_F(FileImplLoad, LetsTheLastPoolRunToTheEndOfTheFile)
{
    OpenRead(bytes::File(mThree) + "and some bytes that nobody claimed");
    EXPECT_EQ(mFile.Pool(2).lock()->Length(), 116U);
    EXPECT_EQ(ReadPool(*mFile.Pool(2).lock(), 0, 10), "90and some");
}

TEST_F(FileImplLoad, TakesThePoolOfAZeroLengthForTheLast)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[1].length = "0000000000000000";
    OpenRead(bytes::File(pools));
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(mFile.Pool(1).lock()->Length(), 198U);
}

TEST_F(FileImplLoad, AcceptsALastPoolThatClaimsMoreThanTheFileHas)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[2].length = "0000000000001000";
    OpenRead(bytes::File(pools));
    EXPECT_EQ(mFile.Pool(2).lock()->Length(), 1000U);
    EXPECT_EQ(mFile.LogicalEnd(), 282U);
    EXPECT_EQ(ReadPool(*mFile.Pool(2).lock(), 0, 100), "90");
}

// Who may grow

TEST_F(FileImplLoad, LetsNoPoolOfAReadOnlyFileGrowAndTakesTheLastAsCurrent)
{
    OpenRead(bytes::File(mThree));
    EXPECT_TRUE(mFile.Pool(0).lock()->Immutable());
    EXPECT_TRUE(mFile.Pool(1).lock()->Immutable());
    EXPECT_TRUE(mFile.Pool(2).lock()->Immutable());
    EXPECT_EQ(mFile.Pool().lock(), mFile.Pool(2).lock());
}

TEST_F(FileImplLoad, LetsTheLastPoolOfAFileOpenedForUpdateGrow)
{
    OpenUpdate(bytes::File(mThree));
    EXPECT_TRUE(mFile.Pool(0).lock()->Immutable());
    EXPECT_TRUE(mFile.Pool(1).lock()->Immutable());
    EXPECT_FALSE(mFile.Pool(2).lock()->Immutable());
    EXPECT_EQ(mFile.Pool().lock(), mFile.Pool(2).lock());
}

TEST_F(FileImplLoad, RewritesTheOnlyHeaderAtOnceWhenOpenedForUpdate)
{
    bytes::Pool pool{.reserved = "garbage",
                     .length = "0000000000000082",
                     .reserved1 = 0x11223344,
                     .reserved2 = 0x55667788,
                     .directory = {bytes::Uuid('a')},
                     .data = "90"};
    OpenUpdate(pool.Bytes());
    EXPECT_FALSE(mFile.Pool().lock()->Immutable());
    pool.reserved = std::string(7, '\0');
    pool.length = "0000000000000000";
    EXPECT_EQ(mFolder.Read("a.sim"), pool.Bytes()); // both reserved words are kept
}

TEST_F(FileImplLoad, RewritesTheLastHeaderAloneWhenOpenedForUpdate)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[1].reserved = pools[2].reserved = "garbage";
    pools[2].length = "0000000000000082";
    pools[2].reserved1 = 7;
    pools[2].reserved2 = 8;
    OpenUpdate(bytes::File(pools));
    pools[2].reserved = std::string(7, '\0');
    pools[2].length = "0000000000000000";
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::File(pools));
    EXPECT_EQ(mFile.LogicalEnd(), 282U);
}

TEST_F(FileImplLoad, WritesNothingWhenOpenedForReading)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[2].reserved = "garbage";
    pools[2].length = "0000000000000082";
    OpenRead(bytes::File(pools));
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::File(pools));
}

// Between two openings

TEST_F(FileImplLoad, FindsNothingOfWhatWasAllocatedAndNeverWritten)
{
    OpenUpdate(bytes::File(mThree));
    mFile.Pool().lock()->Allocate(1000);
    mFile.Close();
    EXPECT_EQ(mFolder.Size("a.sim"), 282U);
    VUKSimRpm_FileImpl again(mDocument);
    again.OpenUpdate(mFolder.File("a.sim"));
    EXPECT_EQ(again.Pool().lock()->Length(), 82U);
}

TEST_F(FileImplLoad, FindsAllocatedBytesUpToTheLastOneWritten)
{
    OpenUpdate(bytes::File(mThree));
    mFile.Pool().lock()->Allocate(1000);
    mFile.Pool().lock()->Write(9, 1, "!");
    mFile.Close();
    VUKSimRpm_FileImpl again(mDocument);
    again.OpenUpdate(mFolder.File("a.sim"));
    EXPECT_EQ(again.Pool().lock()->DataLength(), 10U);
    EXPECT_EQ(ReadPool(*again.Pool().lock(), 0, 99), std::string("90\0\0\0\0\0\0\0!", 10));
}

// What it costs

TEST_F(FileImplLoad, ReadsManySmallPoolsAPageAtATime)
{
    std::vector<bytes::Pool> pools;
    for (int i = 0; i < 100; ++i) {
        std::string uuid = bytes::Uuid('a');
        uuid.replace(0, 3, std::to_string(100 + i));
        pools.push_back(
            {.length = "0000000000000336", .directory = {uuid}, .data = std::string(256, 'x')});
    }
    const VUKString name = mFolder.Write("a.sim", bytes::File(pools));
    const ScriptedSystemCalls calls;
    mFile.OpenRead(name);
    EXPECT_EQ(mFile.PoolCount(), 100U);
    EXPECT_THAT(Reads(calls),
                ElementsAre(Transfer{0, 4096}, Transfer{4080, 4096}, Transfer{8400, 3888},
                            Transfer{12432, 3952}, Transfer{16464, 4016}, Transfer{20496, 4080},
                            Transfer{24576, 4096}, Transfer{28896, 3872}, Transfer{32928, 672}));
}

TEST_F(FileImplLoad, ReadsHeaderAndDirectoryOfALargePoolInOneCall)
{
    std::vector<bytes::Pool> pools;
    for (const char letter : {'a', 'b', 'c'}) {
        pools.push_back({.length = "0000000000005000",
                         .directory = {bytes::Uuid(letter)},
                         .data = std::string(4920, 'x')});
    }
    const VUKString name = mFolder.Write("a.sim", bytes::File(pools));
    const ScriptedSystemCalls calls;
    mFile.OpenRead(name);
    EXPECT_EQ(mFile.PoolCount(), 3U);
    EXPECT_THAT(Reads(calls),
                ElementsAre(Transfer{0, 4096}, Transfer{5000, 80}, Transfer{10000, 80}));
}

// What cannot be loaded

TEST_F(FileImplLoad, KeepsThePoolsBeforeTheOneThatFails)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[2].version = 5;
    const VUKString name = mFolder.Write("a.sim", bytes::File(pools));
    EXPECT_TRUE(RaisesNeedUpgrade([&] { mFile.OpenUpdate(name); }, 6, 5, mFolder.Path("a.sim"),
                                  kPoolSource, 86));
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(PoolIn(0), mFile.Pool(0).lock());
    EXPECT_EQ(PoolIn(1), mFile.Pool(1).lock());
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::File(pools)); // nothing was rewritten
}

TEST_F(FileImplLoad, RefusesAFileOf47Bytes)
{
    const VUKString name = mFolder.Write("a.sim", mThree[0].Bytes().substr(0, 47));
    EXPECT_TRUE(Raises<VUKSimExcCorruptHeader>([&] { mFile.OpenRead(name); }, kPoolSource, 78));
}

TEST_F(FileImplLoad, RefusesARestThatIsTooShortForAHeader)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[2].length = "0000000000000081"; // one byte remains behind the last pool
    const VUKString name = mFolder.Write("a.sim", bytes::File(pools));
    EXPECT_TRUE(Raises<VUKSimExcCorruptHeader>([&] { mFile.OpenRead(name); }, kPoolSource, 78));
}

TEST_F(FileImplLoad, RefusesAPoolThatDoesNotBeginWhereTheOneBeforeEnds)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[0].length = "0000000000000085";
    const VUKString name = mFolder.Write("a.sim", bytes::File(pools));
    EXPECT_TRUE(Raises<VUKSimExcNotSimFile>([&] { mFile.OpenRead(name); }, kPoolSource, 81));
}

TEST_F(FileImplLoad, RefusesAPoolThatIsOpenInTheDocument)
{
    OpenRead(bytes::File(mThree));
    VUKSimRpm_FileImpl copy(mDocument);
    const VUKString name = mFolder.Write("copy.sim", mThree[1].Bytes());
    EXPECT_TRUE(
        Raises<VUKSimExcPoolAlreadyInDoc>([&] { copy.OpenRead(name); }, kDirectorySource, 75));
    EXPECT_EQ(copy.PoolCount(), 0U);
}

TEST_F(FileImplLoad, RefusesTwoPoolsOfOneUuidInOneFile)
{
    const std::string twice = mThree[0].Bytes() + mThree[0].Bytes();
    const VUKString name = mFolder.Write("a.sim", twice);
    EXPECT_TRUE(
        Raises<VUKSimExcPoolAlreadyInDoc>([&] { mFile.OpenRead(name); }, kDirectorySource, 75));
    EXPECT_EQ(mFile.PoolCount(), 1U);
}

TEST_F(FileImplLoad, RefusesAPoolWithoutADirectoryByTheListsOwnError)
{
    const VUKString name = mFolder.Write("a.sim", bytes::Pool().Bytes());
    EXPECT_TRUE(RaisesRange([&] { mFile.OpenRead(name); }, 0, 0));
    EXPECT_EQ(mFile.PoolCount(), 1U); // it joins the list before it looks for its slot
    EXPECT_EQ(Map()->Length(), 0);
}

TEST_F(FileImplLoad, PassesOnWhatTheSystemSays)
{
    const VUKString name = mFolder.Write("a.sim", bytes::File(mThree));
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Pread, {Fails(EIO)});
        EXPECT_TRUE(RaisesFileError([&] { mFile.OpenRead(name); }, "read", EIO));
    }
    VUKSimRpm_FileImpl update(mDocument);
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { update.OpenUpdate(name); }, "write", ENOSPC));
}

// Files made to do harm

TEST_F(FileImplLoad, EndsWhenALengthLeadsBackToAPoolThatIsOpen)
{
    std::vector<bytes::Pool> pools = mThree;
    pools[1].length = "00000000000000)2"; // ')' is '0' - 7: 2 - 70, which leads back to 16
    const VUKString inside = mFolder.Write("a.sim", bytes::File(pools));
    EXPECT_TRUE(Raises<VUKSimExcNotSimFile>([&] { mFile.OpenRead(inside); }, kPoolSource, 81));

    pools[1].length = "00000000000000(,"; // -80 - 4: back to 0
    VUKSimRpm_DocumentImpl other("TEST");
    VUKSimRpm_FileImpl file(other);
    const VUKString begin = mFolder.Write("b.sim", bytes::File(pools));
    EXPECT_TRUE(
        Raises<VUKSimExcPoolAlreadyInDoc>([&] { file.OpenRead(begin); }, kDirectorySource, 75));
    EXPECT_EQ(file.PoolCount(), 2U);
}

TEST_F(FileImplLoad, RefusesAHugeDirectoryCountWithoutAllocatingForIt)
{
    // 32 times the second is 2^32, which is 0 in 32 bits; the third is negative as an int.
    for (const std::uint32_t count :
         {2U, 0x08000000U, 0x80000000U, 0x7FFFFFFU, 0x7FFFFFEU, 0xFFFFFFFFU}) {
        const bytes::Pool pool{.count = count, .directory = {bytes::Uuid('a')}};
        const VUKString name = mFolder.Write("a.sim", pool.Bytes());
        VUKSimRpm_FileImpl file(mDocument);
        const CountedMemory memory;
        EXPECT_TRUE(
            Raises<VUKSimExcCorruptDirectory>([&] { file.OpenRead(name); }, kPoolSource, 106))
            << "count " << count;
        EXPECT_LT(memory.Peak(), 10000U);
        EXPECT_EQ(Map()->Length(), 0);
    }
}

TEST_F(FileImplLoad, RefusesDirectoriesThatTogetherAreLongerThanTheFile)
{
    // 320 bytes: 8 + 1 entries and one for `c` are 320 bytes, the one of `d` is too many.
    const VUKString name = mFolder.Write("a.sim", Overlapping(8, 1));
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { mFile.OpenRead(name); }, kPoolSource, 106));
    EXPECT_EQ(mFile.PoolCount(), 3U);

    VUKSimRpm_DocumentImpl other("TEST");
    VUKSimRpm_FileImpl file(other);
    const VUKString early = mFolder.Write("b.sim", Overlapping(8, 3)); // 352 bytes
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { file.OpenRead(early); }, kPoolSource, 106));
    EXPECT_EQ(file.PoolCount(), 1U);
}

TEST_F(FileImplLoad, CountsTheDirectoryBytesOfEachOpeningAnew)
{
    const VUKString name = mFolder.Write("a.sim", Overlapping(7, 1)); // 10 entries, 320 bytes
    for (int i = 0; i < 3; ++i) {
        VUKSimRpm_FileImpl file(mDocument);
        file.OpenRead(name);
        EXPECT_EQ(file.PoolCount(), 4U);
        file.Close();
    }
}

TEST_F(FileImplLoad, RunsOutOfMemoryForMoreSlotsThanAMapCanHave)
{
    const bytes::Pool pool{.count = 46337};
    const VUKString name = mFolder.Write("a.sim", pool.Bytes() + std::string(46337 * 32, 'u'));
    EXPECT_TRUE(RaisesBadAlloc([&] { mFile.OpenRead(name); }));
    EXPECT_EQ(Map()->Length(), 0);
}
