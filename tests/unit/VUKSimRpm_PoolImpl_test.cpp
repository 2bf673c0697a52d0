#include "VUKSimRpm_PoolImpl.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
constexpr char kFileSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";

// A file of two pools: `a` at 0, 84 bytes, and `b` at 84, the current one, 90 bytes.
class PoolImpl : public FileFixture
{
protected:
    void OpenUpdate()
    {
        mFile.OpenUpdate(mFolder.Write("a.sim", bytes::File({mStoredA, mStoredB})));
    }
    void OpenRead() { mFile.OpenRead(mFolder.Write("a.sim", bytes::File({mStoredA, mStoredB}))); }

    VUKSimRpm_PoolImpl& A() { return *mFile.Pool(0).lock(); }
    VUKSimRpm_PoolImpl& B() { return *mFile.Pool(1).lock(); }

    // A new directory of this document for a pool of that UUID, which gets a new slot.
    VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> Directory(bool ownEntryOnly, char letter)
    {
        auto directory = VUKBasMakeShared<VUKSimRpm_PoolDirectoryImpl>(mDocument.PoolMap());
        directory->Init(ownEntryOnly, bytes::Uuid(letter).c_str());
        return directory;
    }

    const bytes::Pool mStoredA{
        .length = "0000000000000084", .directory = {bytes::Uuid('a')}, .data = "1234"};
    const bytes::Pool mStoredB{.directory = {bytes::Uuid('b')}, .data = "0123456789"};
    VUKSimRpm_FileImpl mFile{mDocument};
};
} // namespace

// A new pool

TEST_F(PoolImpl, IsBornImmutableAndWithoutBytes)
{
    const ScriptedSystemCalls calls;
    const VUKSimRpm_PoolImpl pool(mFile, Directory(true, 'n'), 4096);
    EXPECT_TRUE(pool.Immutable());
    EXPECT_EQ(pool.Position(), 4096U);
    EXPECT_EQ(pool.Length(), 0U);
    EXPECT_EQ(pool.HeaderSize(), 0U);
    EXPECT_EQ(&pool.File(), &mFile);
    EXPECT_TRUE(calls.Calls().empty());
}

TEST_F(PoolImpl, SharesItsDirectory)
{
    const auto directory = Directory(true, 'n');
    {
        const VUKSimRpm_PoolImpl pool(mFile, directory, 0);
        EXPECT_EQ(directory.UseCount(), 2);
    }
    EXPECT_EQ(directory.UseCount(), 1);
}

TEST_F(PoolImpl, HasNoDataWhenNew)
{
    VUKSimRpm_PoolImpl pool(mFile, Directory(true, 'n'), 0);
    pool.Init();
    EXPECT_EQ(pool.HeaderSize(), 80U);
    EXPECT_EQ(pool.Length(), 80U);
    EXPECT_EQ(pool.DataLength(), 0U);
    EXPECT_EQ(pool.Start(), LocatorTo(0, 0));
    EXPECT_EQ(pool.End(), LocatorTo(0, 0));
}

TEST_F(PoolImpl, HasAHeaderOf32BytesMoreForEachEntry)
{
    for (const char letter : {'p', 'q', 'r', 's', 't'}) {
        Map()->NewSlot(bytes::Uuid(letter).c_str());
    }
    VUKSimRpm_PoolImpl pool(mFile, Directory(false, 'n'), 0);
    pool.Init();
    EXPECT_EQ(pool.HeaderSize(), 240U);
    EXPECT_EQ(pool.Length(), 240U);
}

TEST_F(PoolImpl, WritesItsHeaderAtItsPositionAndRaisesTheFilesEnd)
{
    OpenUpdate();
    VUKSimRpm_PoolImpl pool(mFile, Directory(true, 'n'), 174);
    pool.Init();
    pool.Dump();
    EXPECT_EQ(mFolder.Read("a.sim").substr(174), // an immutable pool stands with its length
              bytes::Pool({.length = "0000000000000080", .directory = {bytes::Uuid('n')}}).Bytes());
    EXPECT_EQ(mFile.LogicalEnd(), 254U);
}

// Where it lies

TEST_F(PoolImpl, BeginsAndEndsInItsOwnSlot)
{
    Map()->NewSlot(bytes::Uuid('x').c_str());
    OpenRead();
    EXPECT_EQ(B().OwnSlot(), 2);
    EXPECT_EQ(B().Start(), LocatorTo(2, 0));
    EXPECT_EQ(B().End(), LocatorTo(2, 10));
    EXPECT_EQ(B().Start().IMPool(), nullptr);
    EXPECT_EQ(B().End().IMPool(), nullptr);
}

TEST_F(PoolImpl, IsReadOnlyAsItsFileIs)
{
    OpenUpdate();
    EXPECT_FALSE(A().ReadOnly()); // although immutable
    EXPECT_FALSE(B().ReadOnly());
    VUKSimRpm_DocumentImpl document("TEST");
    VUKSimRpm_FileImpl file(document);
    file.OpenRead(mFolder.File("a.sim"));
    EXPECT_TRUE(file.Pool(0).lock()->ReadOnly());
    EXPECT_TRUE(file.Pool(1).lock()->ReadOnly());
}

TEST_F(PoolImpl, MakesDirectLocatorsToItsData)
{
    OpenRead();
    char bytes[3] = {};
    EXPECT_EQ(B().DirectLocator(2).Read(3, bytes), 3U);
    EXPECT_EQ(std::string(bytes, 3), "234");
}

// Growth

TEST_F(PoolImpl, GrowsByExactlyTheBytesAskedForAndWritesNothing)
{
    OpenUpdate();
    const ScriptedSystemCalls calls;
    EXPECT_EQ(B().Allocate(3), LocatorTo(1, 10));
    EXPECT_EQ(B().Allocate(1), LocatorTo(1, 13));
    EXPECT_EQ(B().End(), LocatorTo(1, 14));
    EXPECT_EQ(B().Length(), 94U);
    EXPECT_EQ(mFile.LogicalEnd(), 178U);
    EXPECT_TRUE(calls.Calls().empty());
}

TEST_F(PoolImpl, GivesItsEndForNoBytesAtAll)
{
    OpenUpdate();
    const std::string before = mFolder.Read("a.sim");
    EXPECT_EQ(B().Allocate(0), LocatorTo(1, 10));
    EXPECT_EQ(B().End(), LocatorTo(1, 10));
    EXPECT_EQ(mFile.LogicalEnd(), 174U);
    mFile.Flush();
    EXPECT_EQ(mFolder.Read("a.sim"), before);
}

TEST_F(PoolImpl, DoesNotGrowUnlessItIsItsFilesCurrentPool)
{
    OpenUpdate();
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { A().Allocate(1); }, kSource, 163));
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { A().Allocate(0); }, kSource, 163));
    EXPECT_EQ(A().Length(), 84U);
    EXPECT_EQ(mFile.LogicalEnd(), 174U);
}

TEST_F(PoolImpl, LooksAtItsImmutabilityBeforeTheFileWhenReadOnly)
{
    OpenRead();
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { B().Allocate(1); }, kSource, 163));
    EXPECT_EQ(B().Length(), 90U);
}

TEST_F(PoolImpl, StaysLongerWhenTheFileRefusesToGrow)
{
    OpenRead();
    B().SetImmutable(false); // only so does the file come to refuse
    EXPECT_TRUE(Raises<VUKSimExcAllocReadOnly>([&] { B().Allocate(5); }, kFileSource, 231));
    EXPECT_EQ(B().Length(), 95U);
    EXPECT_EQ(mFile.LogicalEnd(), 174U);
}

TEST_F(PoolImpl, RefusesToGrowBeyond64BitsAndChangesNothing)
{
    OpenUpdate();
    // The length alone would wrap; then the end of the file, by one byte.
    EXPECT_TRUE(RaisesIOBounds([&] { B().Allocate(0xFFFFFFFFFFFFFFFF); }, 10, 9, 10, kSource, 168));
    EXPECT_TRUE(RaisesIOBounds([&] { B().Allocate(0xFFFFFFFFFFFFFFFF - 173); }, 10,
                               0xFFFFFFFFFFFFFFFF - 163, 10, kSource, 168));
    EXPECT_EQ(B().Length(), 90U);
    EXPECT_EQ(mFile.LogicalEnd(), 174U);
}

TEST_F(PoolImpl, GrowsUpToTheLastByteThat64BitsName)
{
    OpenUpdate();
    EXPECT_EQ(B().Allocate(0xFFFFFFFFFFFFFFFF - 174), LocatorTo(1, 10));
    EXPECT_EQ(mFile.LogicalEnd(), 0xFFFFFFFFFFFFFFFF);
    EXPECT_EQ(B().End(), LocatorTo(1, 0xFFFFFFFFFFFFFFFF - 164));
}

// Bytes

TEST_F(PoolImpl, ReadsItsData)
{
    OpenRead();
    EXPECT_EQ(ReadPool(A(), 0, 4), "1234");
    EXPECT_EQ(ReadPool(B(), 3, 4), "3456");
}

TEST_F(PoolImpl, ReadsPastItsEndWhatTheFileHoldsThere)
{
    OpenRead();
    EXPECT_EQ(ReadPool(A(), 2, 6), "34\x89SIM");
    EXPECT_EQ(ReadPool(B(), 8, 100), "89");
    EXPECT_EQ(ReadPool(B(), 10, 1), "");
    EXPECT_EQ(ReadPool(B(), 100000, 1), "");
}

TEST_F(PoolImpl, WritesUpToTheEndOfItsData)
{
    OpenUpdate();
    EXPECT_EQ(B().Write(0, 10, "abcdefghij"), 10U);
    EXPECT_EQ(B().Write(6, 4, "GHIJ"), 4U);
    EXPECT_EQ(B().Write(10, 0, ""), 0U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(164), "abcdefGHIJ");
}

TEST_F(PoolImpl, RefusesToWritePastTheEndOfItsData)
{
    OpenUpdate();
    const std::string before = mFolder.Read("a.sim");
    EXPECT_TRUE(RaisesIOBounds([&] { B().Write(7, 4, "GHIJ"); }, 7, 11, 10, kSource, 186));
    EXPECT_TRUE(RaisesIOBounds([&] { B().Write(11, 0, ""); }, 11, 11, 10, kSource, 186));
    EXPECT_TRUE(RaisesIOBounds([&] { A().Write(0, 5, "12345"); }, 0, 5, 4, kSource, 186));
    EXPECT_EQ(mFolder.Read("a.sim"), before);
    EXPECT_EQ(ReadPool(B(), 7, 4), "789"); // reading there is no failure
}

TEST_F(PoolImpl, WritesIntoBytesThatWereOnlyAllocated)
{
    OpenUpdate();
    B().Allocate(5);
    EXPECT_EQ(B().Write(13, 2, "!!"), 2U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(164), std::string("0123456789\0\0\0!!", 15));
}

TEST_F(PoolImpl, IsWrittenWhenImmutableToo)
{
    OpenUpdate();
    EXPECT_EQ(A().Write(1, 2, "xx"), 2U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(80, 4), "1xx4");
}

TEST_F(PoolImpl, IsNotWrittenInAReadOnlyFile)
{
    OpenRead();
    EXPECT_TRUE(Raises<VUKSimExcWriteReadOnly>([&] { B().Write(0, 1, "x"); }, kFileSource, 255));
    EXPECT_TRUE(RaisesIOBounds([&] { B().Write(10, 1, "x"); }, 10, 11, 10, kSource, 186));
}

TEST_F(PoolImpl, AddsOffsetAndLengthWithoutALookAtTheCarry)
{
    OpenUpdate();
    // 80 bytes before the data: the sum wraps to 0, and the pool's own first byte is written.
    EXPECT_EQ(B().Write(0xFFFFFFFFFFFFFFFF - 79, 80, mStoredA.Bytes().c_str()), 80U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(84, 80), mStoredA.Bytes().substr(0, 80));
    EXPECT_EQ(ReadPool(B(), 0xFFFFFFFFFFFFFFFF - 3, 8), "aaaa0123");
}

// Its header

TEST_F(PoolImpl, StandsWithLengthZeroWhileItMayGrow)
{
    OpenUpdate();
    B().Allocate(5);
    B().Dump();
    EXPECT_EQ(mFolder.Read("a.sim").substr(84 + 20, 16), "0000000000000000");
    B().SetImmutable(true);
    B().Dump();
    EXPECT_EQ(mFolder.Read("a.sim").substr(84 + 20, 16), "0000000000000095");
}

TEST_F(PoolImpl, KeepsTheLowSixteenDigitsOfItsLength)
{
    OpenUpdate();
    B().Allocate(10000000000000000 - 83); // and 90
    B().SetImmutable(true);
    B().Dump();
    EXPECT_EQ(mFolder.Read("a.sim").substr(84 + 20, 16), "0000000000000007");
}

TEST_F(PoolImpl, WritesHeaderAndDirectoryInOnePiece)
{
    OpenUpdate();
    const ScriptedSystemCalls calls;
    B().Dump();
    ASSERT_EQ(calls.Count(SystemCall::Pwrite), 1);
    EXPECT_EQ(calls.Calls().front().position, 84U);
    EXPECT_EQ(calls.Calls().front().length, 80U);
}

TEST_F(PoolImpl, LeavesTheFilesEndWhenItIsDumpedInside)
{
    OpenUpdate();
    A().Dump();
    EXPECT_EQ(mFile.LogicalEnd(), 174U);
}

TEST_F(PoolImpl, RaisesTheFilesEndBeforeItWritesItsHeader)
{
    OpenUpdate();
    VUKSimRpm_PoolImpl pool(mFile, Directory(true, 'n'), 174);
    pool.Init();
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { pool.Dump(); }, "write", ENOSPC));
    EXPECT_EQ(mFile.LogicalEnd(), 254U);
    EXPECT_EQ(mFolder.Size("a.sim"), 174U);
}

TEST_F(PoolImpl, HasNoHeaderWrittenIntoAReadOnlyFile)
{
    OpenRead();
    EXPECT_TRUE(Raises<VUKSimExcWriteReadOnly>([&] { B().Dump(); }, kFileSource, 255));
    VUKSimRpm_PoolImpl behind(mFile, Directory(true, 'n'), 174); // would have to extend it
    behind.Init();
    EXPECT_TRUE(Raises<VUKSimExcAllocReadOnly>([&] { behind.Dump(); }, kFileSource, 231));
}

TEST_F(PoolImpl, FreesItsBufferWhenAHeaderCannotBeWritten)
{
    OpenUpdate();
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    VUKSimRpm_PoolImpl& pool = B();
    const CountedMemory memory;
    EXPECT_TRUE(RaisesFileError([&] { pool.Dump(); }, "write", ENOSPC));
    EXPECT_GE(memory.Allocations(), 1);
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST_F(PoolImpl, WritesNothingWhenItDies)
{
    OpenUpdate();
    const std::string before = mFolder.Read("a.sim");
    const ScriptedSystemCalls calls;
    {
        VUKSimRpm_PoolImpl pool(mFile, Directory(true, 'n'), 174);
        pool.Init();
        pool.SetImmutable(false);
        pool.Allocate(10);
    }
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_EQ(mFolder.Read("a.sim"), before);
}
