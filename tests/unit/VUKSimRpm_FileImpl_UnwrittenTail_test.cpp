#include "VUKSimRpm_FileImpl.h"

#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"
#include "Transfers.h"
#include "VUKSimRpm_UUID.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

using testing::ElementsAre;

// A new file whose first pool, `a`, names itself alone; its data begins at byte 80. What becomes of
// bytes that were allocated behind the physical end when the pool is frozen.
class UnwrittenTail : public FileFixture
{
protected:
    UnwrittenTail()
    {
        VUKSimRpm_UUID::TestForceUUID(mA.c_str());
        mFile.OpenWrite(mFolder.File("a.sim"), true);
        mFile.Pool().lock()->Allocate(4);
        mFile.Pool().lock()->Write(0, 4, "1234");
    }

    void AllocateAndWriteNothing() { mFile.Pool().lock()->Allocate(3); }

    const std::string mA = bytes::Uuid('a');
    const std::string mB = bytes::Uuid('b');
    VUKSimRpm_FileImpl mFile{mDocument};
};
} // namespace

TEST_F(UnwrittenTail, IsInTheFileBeforeThePoolsLength)
{
    AllocateAndWriteNothing();
    const ScriptedSystemCalls calls;
    mFile.NewPool(true, mB.c_str());
    const auto& made = calls.Calls();
    ASSERT_EQ(made.size(), 4U);
    EXPECT_EQ(made[0].call, SystemCall::Fstat);
    EXPECT_EQ(made[1].call, SystemCall::Ftruncate);
    EXPECT_EQ(made[1].position, 87U);
    EXPECT_EQ(made[2].call, SystemCall::Pwrite); // the length of the first pool
    EXPECT_EQ(made[2].position, 0U);
    EXPECT_EQ(made[3].call, SystemCall::Pwrite); // the second pool
    EXPECT_EQ(made[3].position, 87U);
}

TEST_F(UnwrittenTail, ReadsAsZerosWhateverBecomesOfTheNextPool)
{
    AllocateAndWriteNothing();
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Pwrite, {Passes(), Fails(ENOSPC)});
        EXPECT_TRUE(RaisesFileError([&] { mFile.NewPool(true, mB.c_str()); }, "write", ENOSPC));
    }
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool({.length = "0000000000000087",
                                                  .directory = {mA},
                                                  .data = std::string("1234\0\0\0", 7)})
                                         .Bytes());
    VUKSimRpm_DocumentImpl another("TEST");
    VUKSimRpm_FileImpl again(another);
    again.OpenRead(mFolder.File("a.sim"));
    EXPECT_EQ(ReadPool(*again.Pool().lock(), 0, 99), std::string("1234\0\0\0", 7));
    EXPECT_EQ(again.LogicalEnd(), 87U); // where its only pool ends
}

TEST_F(UnwrittenTail, LeavesTheBytesThatItAlwaysLeft)
{
    AllocateAndWriteNothing();
    mFile.NewPool(true, mB.c_str());
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::File({{.length = "0000000000000087",
                                                   .directory = {mA},
                                                   .data = std::string("1234\0\0\0", 7)},
                                                  {.directory = {mB}}}));
}

TEST_F(UnwrittenTail, CostsNothingWhereThereIsNone)
{
    const ScriptedSystemCalls calls;
    mFile.NewPool(true, mB.c_str());
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{0, 80}, Transfer{84, 80}));
    EXPECT_EQ(calls.Calls().size(), 2U);
}

TEST_F(UnwrittenTail, CostsNothingInAFileThatIsOpenedAgain)
{
    mFile.Close();
    VUKSimRpm_FileImpl again(mDocument);
    again.OpenUpdate(mFolder.File("a.sim"));
    const ScriptedSystemCalls calls;
    again.NewPool(true, mB.c_str());
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{0, 80}, Transfer{84, 80}));
    EXPECT_EQ(calls.Calls().size(), 2U);
}

TEST_F(UnwrittenTail, IsWrittenByAWriteOfItsLastByte)
{
    AllocateAndWriteNothing();
    mFile.Pool().lock()->Write(6, 1, "7");
    const ScriptedSystemCalls calls;
    mFile.NewPool(true, mB.c_str());
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{0, 80}, Transfer{87, 80}));
    EXPECT_EQ(calls.Calls().size(), 2U);
}

TEST_F(UnwrittenTail, IsNotWrittenByAWriteOfNothingAtItsEnd)
{
    AllocateAndWriteNothing();
    mFile.Pool().lock()->Write(7, 0, "");
    const ScriptedSystemCalls calls;
    mFile.NewPool(true, mB.c_str());
    EXPECT_EQ(calls.Count(SystemCall::Ftruncate), 1);
    EXPECT_EQ(mFolder.Size("a.sim"), 167U);
}

// Direct locators write past the file's own knowledge: its size is asked for and found enough.
TEST_F(UnwrittenTail, IsSeenToBeWrittenByADirectLocator)
{
    AllocateAndWriteNothing();
    EXPECT_EQ(mFile.Pool().lock()->DirectLocator(4).Write(3, "567"), 3U);
    const ScriptedSystemCalls calls;
    mFile.NewPool(true, mB.c_str());
    EXPECT_EQ(calls.Count(SystemCall::Fstat), 1);
    EXPECT_EQ(calls.Count(SystemCall::Ftruncate), 0);
}

TEST_F(UnwrittenTail, IsNoticedBehindATruncation)
{
    mFile.Truncate(82);
    mFile.Extend(84);
    const ScriptedSystemCalls calls;
    mFile.NewPool(true, mB.c_str());
    EXPECT_EQ(calls.Count(SystemCall::Ftruncate), 1);
    EXPECT_EQ(mFolder.Size("a.sim"), 164U);
}

TEST_F(UnwrittenTail, ShortensNoFileThatIsLongerThanItsPools)
{
    mFile.Write(84, 1000, std::string(1000, 's').c_str()); // behind the pool's end
    mFile.NewPool(true, mB.c_str());
    EXPECT_EQ(mFolder.Size("a.sim"), 1084U);
    EXPECT_EQ(mFile.LogicalEnd(), 164U);
}

TEST_F(UnwrittenTail, KeepsThePoolCurrentWhenTheFileCannotGrow)
{
    AllocateAndWriteNothing();
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Ftruncate, {Fails(EFBIG)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.NewPool(true, mB.c_str()); }, "truncate", EFBIG));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_FALSE(mFile.Pool().lock()->Immutable());
    EXPECT_EQ(mFile.LogicalEnd(), 87U);
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool({.directory = {mA}, .data = "1234"}).Bytes());
    EXPECT_EQ(Map()->Length(), 2); // the slot for the new pool was made and stays
    EXPECT_FALSE(PoolIn(1));
}

TEST_F(UnwrittenTail, IsInTheFileAfterAnImportToo)
{
    VUKSimRpm_DocumentImpl another("TEST");
    VUKSimRpm_FileImpl source(another);
    VUKSimRpm_UUID::TestForceUUID(mB.c_str());
    source.OpenWrite(mFolder.File("b.sim"), true);
    source.Pool().lock()->Allocate(1);
    source.Pool().lock()->Write(0, 1, "x");

    AllocateAndWriteNothing();
    const ScriptedSystemCalls calls;
    mFile.AppendPool(*source.Pool().lock());
    EXPECT_EQ(calls.Count(SystemCall::Ftruncate), 1); // the import's own, to its last byte
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::File({{.length = "0000000000000087",
                                                   .directory = {mA},
                                                   .data = std::string("1234\0\0\0", 7)},
                                                  {.directory = {mB}, .data = "x"}}));
}
