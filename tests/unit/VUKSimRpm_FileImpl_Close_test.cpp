#include "VUKSimRpm_FileImpl.h"

#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

// A file for update of two pools: `a`, 84 bytes with the data `data`, and `b` behind it with
// `tail`.
class FileImplClose : public FileFixture
{
protected:
    FileImplClose() { mFile.OpenUpdate(mFolder.Write("a.sim", mBytes)); }

    const bytes::Pool mFirst{
        .length = "0000000000000084", .directory = {bytes::Uuid('a')}, .data = "data"};
    const bytes::Pool mLast{.directory = {bytes::Uuid('b')}, .data = "tail"};
    const std::string mBytes = bytes::File({mFirst, mLast});
    VUKSimRpm_FileImpl mFile{mDocument};
};
} // namespace

TEST_F(FileImplClose, FlushRewritesTheCurrentPoolsHeaderAlone)
{
    mFile.Write(84, 48, std::string(48, 'x').c_str()); // over the last header
    mFile.Write(20, 16, "0000000000000099");           // over the first pool's length
    mFile.Flush();
    std::string expected = mBytes;
    expected.replace(20, 16, "0000000000000099");
    EXPECT_EQ(mFolder.Read("a.sim"), expected);
}

TEST_F(FileImplClose, FlushLeavesAllocatedBytesUnwritten)
{
    mFile.Pool().lock()->Allocate(5);
    mFile.Flush();
    EXPECT_EQ(mFolder.Read("a.sim"), mBytes);
}

TEST_F(FileImplClose, FlushMakesTheBytesDurable)
{
    const ScriptedSystemCalls calls;
    mFile.Flush();
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 1);
    EXPECT_EQ(calls.Count(SystemCall::Fdatasync), 1);
    EXPECT_EQ(calls.Calls().back().call, SystemCall::Fdatasync);
}

TEST_F(FileImplClose, FlushOfAReadOnlyFileWritesNothing)
{
    VUKSimRpm_DocumentImpl document("TEST");
    VUKSimRpm_FileImpl file(document);
    file.OpenRead(mFolder.File("a.sim"));
    const ScriptedSystemCalls calls;
    file.Flush();
    EXPECT_TRUE(calls.Calls().empty());
}

TEST_F(FileImplClose, FlushPassesOnWhatTheSystemSays)
{
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.Flush(); }, "write", ENOSPC));
    calls.Script(SystemCall::Fdatasync, {Fails(EIO)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.Flush(); }, "flush", EIO));
}

TEST_F(FileImplClose, CloseFlushesFirst)
{
    mFile.Write(84, 48, std::string(48, 'x').c_str());
    mFile.Close();
    EXPECT_EQ(mFolder.Read("a.sim"), mBytes);
}

TEST_F(FileImplClose, CloseTakesEveryPoolOutOfTheMapAndKeepsTheSlots)
{
    EXPECT_TRUE(PoolIn(0));
    EXPECT_TRUE(PoolIn(1));
    mFile.Close();
    EXPECT_FALSE(PoolIn(0));
    EXPECT_FALSE(PoolIn(1));
    EXPECT_EQ(Map()->LookupByUUID(bytes::Uuid('a').c_str()), 0);
    EXPECT_EQ(Map()->LookupByUUID(bytes::Uuid('b').c_str()), 1);
}

TEST_F(FileImplClose, CloseLeavesThePoolListAsItIs)
{
    const auto first = mFile.Pool(0).lock();
    mFile.Close();
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(mFile.Pool(0).lock(), first);
    EXPECT_EQ(first->Length(), 84U);
}

TEST_F(FileImplClose, CloseClosesTheFileOfTheSystem)
{
    const ScriptedSystemCalls calls;
    mFile.Close();
    EXPECT_EQ(calls.Count(SystemCall::Close), 1);
    char byte = 0;
    EXPECT_TRUE(RaisesFileError([&] { (void)mFile.Read(0, 1, &byte); }, "read", EBADF));
}

TEST_F(FileImplClose, CloseLeavesAllOpenWhenItCannotFlush)
{
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
        EXPECT_TRUE(RaisesFileError([&] { mFile.Close(); }, "write", ENOSPC));
        EXPECT_EQ(calls.Count(SystemCall::Close), 0);
    }
    EXPECT_TRUE(PoolIn(0));
    EXPECT_TRUE(PoolIn(1));
    mFile.Close(); // there is space again
    EXPECT_FALSE(PoolIn(0));
    EXPECT_EQ(mFolder.Read("a.sim"), mBytes);
}

TEST_F(FileImplClose, CloseCountsAsDoneWhenTheSystemFailsToClose)
{
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Close, {Fails(EIO)});
        EXPECT_TRUE(RaisesFileError([&] { mFile.Close(); }, "close", EIO));
    }
    EXPECT_FALSE(PoolIn(0)); // the pools left the map before
    EXPECT_FALSE(PoolIn(1));
    const ScriptedSystemCalls calls;
    mFile.Close();
    EXPECT_TRUE(calls.Calls().empty());
}

TEST_F(FileImplClose, DestructionWritesNothing)
{
    VUKSimRpm_DocumentImpl document("TEST");
    mFile.Close();
    std::string damaged = mBytes;
    {
        VUKSimRpm_FileImpl file(document);
        file.OpenUpdate(mFolder.File("a.sim"));
        file.Pool().lock()->Allocate(5);
        file.Write(104, 16, "0000000000000099"); // the last pool's length
    }
    damaged.replace(104, 16, "0000000000000099");
    EXPECT_EQ(mFolder.Read("a.sim"), damaged);
}
