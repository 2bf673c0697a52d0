#include "VUKSimRpm_FileImpl.h"

#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"
#include "VUKSimRpm_UUID.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";

// A new file whose first pool, `a`, names itself alone, has slot 0 and is empty.
class NewPool : public FileFixture
{
protected:
    NewPool()
    {
        VUKSimRpm_UUID::TestForceUUID(mA.c_str());
        mFile.OpenWrite(mFolder.File("a.sim"), true);
    }

    // Gives the current pool data.
    void Append(const std::string& data)
    {
        const auto pool = mFile.Pool().lock();
        const unsigned long long offset = pool->DataLength();
        pool->Allocate(data.size());
        pool->Write(offset, data.size(), data.c_str());
    }

    const std::string mA = bytes::Uuid('a');
    const std::string mB = bytes::Uuid('b');
    VUKSimRpm_FileImpl mFile{mDocument};
};
} // namespace

// The pool it makes

TEST_F(NewPool, WritesHeaderAndDirectoryOfAFreshFilesFirstPool)
{
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool{.directory = {mA}}.Bytes()); // length zero
    EXPECT_EQ(mFile.Pool(0).lock()->Position(), 0U);
    EXPECT_EQ(mFile.Pool(0).lock()->HeaderSize(), 80U);
    EXPECT_EQ(mFile.LogicalEnd(), 80U);
}

TEST_F(NewPool, MakesThePoolTheCurrentOneAndLetsItGrow)
{
    Append("1234");
    const auto made = mFile.NewPool(true, mB.c_str()).lock();
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(mFile.Pool().lock(), made);
    EXPECT_FALSE(made->Immutable());
    made->Allocate(10);
    EXPECT_EQ(mFile.LogicalEnd(), 174U);
}

TEST_F(NewPool, PutsThePoolIntoItsNewSlotAtOnce)
{
    Append("1234");
    const auto made = mFile.NewPool(true, mB.c_str()).lock();
    EXPECT_EQ(Map()->Length(), 2);
    EXPECT_EQ(PoolIn(1), made);
}

TEST_F(NewPool, TakesTheUuidItIsGiven)
{
    const auto made = mFile.NewPool(true, "0123456789abcdef0123456789abcdefand more").lock();
    EXPECT_STREQ(made->Directory()->GetGUID().UTF8(), "0123456789abcdef0123456789abcdef");
}

TEST_F(NewPool, DrawsAUuidWhenItIsGivenNone)
{
    VUKSimRpm_UUID::TestForceUUID(mB.c_str());
    const auto made = mFile.NewPool(true, nullptr).lock();
    EXPECT_EQ(std::string(made->Directory()->GetGUID().UTF8()), mB);
}

TEST_F(NewPool, DoesNotKeepThePoolAliveByWhatItReturns)
{
    const auto made = mFile.NewPool(true, mB.c_str());
    mFile.NewPool(true, nullptr); // drops it, for it is empty
    EXPECT_TRUE(made.expired());
}

TEST_F(NewPool, NamesEverySlotOfTheMapBehindItsOwn)
{
    for (const char letter : {'p', 'q', 'r', 's'}) {
        Map()->NewSlot(bytes::Uuid(letter).c_str()); // slots 1 to 4
    }
    Append("1234");
    const auto made = mFile.NewPool(false, mB.c_str()).lock();
    EXPECT_EQ(made->OwnSlot(), 5);
    EXPECT_EQ(made->HeaderSize(), 240U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(84),
              bytes::Pool({.directory = {mB, mA, bytes::Uuid('p'), bytes::Uuid('q'),
                                         bytes::Uuid('r'), bytes::Uuid('s')}})
                  .Bytes());
}

TEST_F(NewPool, NamesItselfAloneWhenAskedSo)
{
    Append("1234");
    const auto made = mFile.NewPool(true, mB.c_str()).lock();
    EXPECT_EQ(made->HeaderSize(), 80U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(84), bytes::Pool{.directory = {mB}}.Bytes());
}

// The pool before it

TEST_F(NewPool, FreezesAPoolWithDataAndBeginsAtItsEnd)
{
    Append("1234");
    const auto before = mFile.Pool(0).lock();
    const auto made = mFile.NewPool(true, mB.c_str()).lock();
    EXPECT_TRUE(before->Immutable());
    EXPECT_EQ(made->Position(), 84U);
    EXPECT_EQ(mFolder.Read("a.sim"),
              bytes::File({{.length = "0000000000000084", .directory = {mA}, .data = "1234"},
                           {.directory = {mB}}}));
}

TEST_F(NewPool, FreezesAPoolWhoseDataWasNeverWritten)
{
    mFile.Pool().lock()->Allocate(1);
    mFile.NewPool(true, mB.c_str());
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(mFolder.Read("a.sim"),
              bytes::File(
                  {{.length = "0000000000000081", .directory = {mA}, .data = std::string(1, '\0')},
                   {.directory = {mB}}}));
}

TEST_F(NewPool, ReplacesAnEmptyPoolInItsPlace)
{
    const auto before = mFile.Pool(0);
    const auto made = mFile.NewPool(true, mB.c_str()).lock();
    EXPECT_TRUE(before.expired());
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(mFile.Pool().lock(), made);
    EXPECT_EQ(made->Position(), 0U);
    EXPECT_EQ(mFile.LogicalEnd(), 80U);
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool{.directory = {mB}}.Bytes());
}

TEST_F(NewPool, TakesAnEmptyPoolOutOfTheMapAndKeepsItsSlot)
{
    mFile.NewPool(true, mB.c_str());
    EXPECT_EQ(Map()->Length(), 2);
    EXPECT_FALSE(PoolIn(0));
    EXPECT_EQ(PoolIn(1), mFile.Pool().lock());
}

TEST_F(NewPool, TakesAnEmptyPoolOutOfTheMapEvenWhileSomebodyHoldsIt)
{
    const auto held = mFile.Pool(0).lock();
    mFile.NewPool(true, mB.c_str());
    EXPECT_FALSE(PoolIn(0));
}

TEST_F(NewPool, NamesTheEmptyPoolThatItReplaces)
{
    mFile.NewPool(false, mB.c_str()); // its slot was made before the empty pool was dropped
    EXPECT_EQ(mFile.Pool().lock()->HeaderSize(), 112U);
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool({.directory = {mB, mA}}).Bytes());
}

TEST_F(NewPool, CannotTakeTheUuidOfTheEmptyPoolThatItWouldReplace)
{
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mFile.NewPool(true, mA.c_str()); },
                                                  "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolMap", 21));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(PoolIn(0), mFile.Pool().lock());
}

TEST_F(NewPool, ReplacesAnEmptyPoolBehindOneWithData)
{
    Append("1234");
    mFile.NewPool(true, mB.c_str());
    mFile.NewPool(true, bytes::Uuid('c').c_str());
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(mFile.Pool().lock()->Position(), 84U);
    EXPECT_EQ(mFolder.Read("a.sim"),
              bytes::File({{.length = "0000000000000084", .directory = {mA}, .data = "1234"},
                           {.directory = {bytes::Uuid('c')}}}));
}

TEST_F(NewPool, ReplacesAnEmptyPoolThatWasLoaded)
{
    mFile.Close();
    VUKSimRpm_FileImpl again(mDocument);
    again.OpenUpdate(mFolder.File("a.sim"));
    again.NewPool(true, mB.c_str());
    EXPECT_EQ(again.PoolCount(), 1U);
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool{.directory = {mB}}.Bytes());
}

TEST_F(NewPool, DoesNotShortenTheFileSoThatStaleBytesBecomeDataLater)
{
    mFile.NewPool(false, mB.c_str()); // 112 bytes: itself and `a`
    mFile.NewPool(true, bytes::Uuid('c').c_str());
    EXPECT_EQ(mFile.LogicalEnd(), 80U);
    EXPECT_EQ(mFile.Pool().lock()->DataLength(), 0U);
    mFile.Close();
    EXPECT_EQ(mFolder.Size("a.sim"), 112U);

    VUKSimRpm_FileImpl again(mDocument);
    again.OpenUpdate(mFolder.File("a.sim"));
    EXPECT_EQ(again.Pool().lock()->DataLength(), 32U);
    EXPECT_EQ(ReadPool(*again.Pool().lock(), 0, 99), mA); // the dropped directory's second entry
}

// Failures

TEST_F(NewPool, RefusesAReadOnlyFileAndChangesNothing)
{
    mFile.Close();
    VUKSimRpm_FileImpl file(mDocument);
    file.OpenRead(mFolder.File("a.sim"));
    EXPECT_TRUE(
        Raises<VUKSimExcNewPoolReadOnly>([&] { file.NewPool(true, nullptr); }, kSource, 101));
    EXPECT_TRUE(
        Raises<VUKSimExcNewPoolReadOnly>([&] { file.NewPool(true, "short"); }, kSource, 101));
    EXPECT_EQ(Map()->Length(), 1);
    EXPECT_EQ(file.PoolCount(), 1U);
    EXPECT_EQ(PoolIn(0), file.Pool().lock());
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool{.directory = {mA}}.Bytes());
}

TEST_F(NewPool, RefusesAShortUuidAndChangesNothing)
{
    EXPECT_TRUE(Raises<VUKSimExcInvalidGUID>(
        [&] { mFile.NewPool(true, "0123456789abcdef0123456789abcde"); },
        "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl", 30));
    EXPECT_EQ(Map()->Length(), 1);
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(PoolIn(0), mFile.Pool().lock());
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool{.directory = {mA}}.Bytes());
}

TEST_F(NewPool, RefusesTheUuidOfAnotherOpenPoolAndChangesNothing)
{
    VUKSimRpm_FileImpl other(mDocument);
    VUKSimRpm_UUID::TestForceUUID(mB.c_str());
    other.OpenWrite(mFolder.File("b.sim"), true);
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mFile.NewPool(true, mB.c_str()); },
                                                  "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolMap", 21));
    EXPECT_EQ(Map()->Length(), 2);
    EXPECT_EQ(PoolIn(0), mFile.Pool().lock());
}

TEST_F(NewPool, LeavesItsSlotAndTheDroppedPoolDroppedWhenItCannotWrite)
{
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.NewPool(true, mB.c_str()); }, "write", ENOSPC));
    EXPECT_EQ(Map()->Length(), 2);
    EXPECT_FALSE(PoolIn(0));
    ASSERT_EQ(mFile.PoolCount(), 1U); // the new one: it is in the list before it is written
    EXPECT_EQ(PoolIn(1), mFile.Pool().lock());
    mFile.Flush(); // there is space again
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool{.directory = {mB}}.Bytes());
}

TEST_F(NewPool, LeavesThePoolBeforeFrozenWhenItCannotWriteItsLength)
{
    Append("1234");
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.NewPool(true, mB.c_str()); }, "write", ENOSPC));
    EXPECT_EQ(Map()->Length(), 2);
    EXPECT_FALSE(PoolIn(1));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_TRUE(mFile.Pool().lock()->Immutable());
    EXPECT_EQ(mFile.LogicalEnd(), 84U);
    mFile.NewPool(true, bytes::Uuid('c').c_str()); // goes on from there
    EXPECT_EQ(mFile.Pool().lock()->Position(), 84U);
}

TEST_F(NewPool, LeavesThePoolBeforeWithItsLengthWhenItCannotWriteTheNewOne)
{
    Append("1234");
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Passes(), Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.NewPool(true, mB.c_str()); }, "write", ENOSPC));
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(
        mFolder.Read("a.sim"),
        bytes::Pool({.length = "0000000000000084", .directory = {mA}, .data = "1234"}).Bytes());
}
