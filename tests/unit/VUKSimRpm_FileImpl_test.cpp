#include "VUKSimRpm_FileImpl.h"

#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";

class FileImpl : public FileFixture
{
protected:
    // 48 bytes of header, one entry, five bytes of data: 85 bytes.
    const bytes::Pool mHello{.directory = {bytes::Uuid('a')}, .data = "hello"};
    VUKSimRpm_FileImpl mFile{mDocument};
};

std::string ReadFile(VUKSimRpm_FileImpl& file, unsigned long long position, unsigned long length)
{
    std::string bytes(length, '?');
    bytes.resize(file.Read(position, length, bytes.data()));
    return bytes;
}
} // namespace

// Birth, and the five opens

TEST_F(FileImpl, IsBornWithoutPoolsAndBytes)
{
    EXPECT_EQ(mFile.PoolCount(), 0U);
    EXPECT_EQ(mFile.LogicalEnd(), 0U);
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)mFile.Pool(); }, "mCurrentPoolIndex >= 0", kSource, 270));
}

TEST_F(FileImpl, IsReadOnlyWhenOpenedForReadingAlone)
{
    mFile.OpenRead(mFolder.Write("read.sim", mHello.Bytes()));
    EXPECT_TRUE(mFile.ReadOnly());

    VUKSimRpm_DocumentImpl other("TEST");
    VUKSimRpm_FileImpl update(other);
    update.OpenUpdate(mFolder.Write("update.sim", mHello.Bytes()));
    EXPECT_FALSE(update.ReadOnly());
    VUKSimRpm_FileImpl write(mDocument);
    write.OpenWrite(mFolder.File("write.sim"), true);
    EXPECT_FALSE(write.ReadOnly());
    VUKSimRpm_FileImpl temporary(mDocument);
    temporary.CreateTemporary(mFolder.File("temporary"), true);
    EXPECT_FALSE(temporary.ReadOnly());
    VUKSimRpm_FileImpl generated(mDocument);
    generated.CreateGenerated(mFolder.File("generated"), ".sim", true);
    EXPECT_FALSE(generated.ReadOnly());
}

TEST_F(FileImpl, EndsWhereTheFileOnDiskEnds)
{
    mFile.OpenRead(mFolder.Write("a.sim", mHello.Bytes()));
    EXPECT_EQ(mFile.LogicalEnd(), 85U);
}

TEST_F(FileImpl, KeepsTheNameItWasOpenedWith)
{
    const VUKString name = mFolder.Write("a.sim", mHello.Bytes());
    mFile.OpenUpdate(name);
    EXPECT_STREQ(mFile.FileName().UTF8(), name.UTF8());
}

TEST_F(FileImpl, FailsToOpenAFileThatIsNotThereAndDoesNotMakeIt)
{
    EXPECT_TRUE(RaisesFileError([&] { mFile.OpenRead(mFolder.File("a.sim")); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { mFile.OpenUpdate(mFolder.File("a.sim")); }, "open", ENOENT));
    EXPECT_FALSE(mFolder.Has("a.sim"));
}

TEST_F(FileImpl, MakesAFileWithOneEmptyPool)
{
    mFile.OpenWrite(mFolder.File("a.sim"), true);
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(mFile.LogicalEnd(), 80U);
    EXPECT_EQ(mFolder.Size("a.sim"), 80U);
}

TEST_F(FileImpl, EmptiesAFileThatIsThereWhenOpenedForWriting)
{
    mFile.OpenWrite(mFolder.Write("a.sim", std::string(1000, 'x')), true);
    EXPECT_EQ(mFile.LogicalEnd(), 80U);
    EXPECT_EQ(mFolder.Size("a.sim"), 80U);
}

TEST_F(FileImpl, HandsItsFlagToTheFirstPool)
{
    Map()->NewSlot(bytes::Uuid('x').c_str());
    mFile.OpenWrite(mFolder.File("own.sim"), true);
    EXPECT_EQ(mFile.Pool(0).lock()->HeaderSize(), 80U); // itself

    VUKSimRpm_FileImpl write(mDocument);
    write.OpenWrite(mFolder.File("all.sim"), false);
    EXPECT_EQ(write.Pool(0).lock()->HeaderSize(), 144U); // itself and the two slots before
    VUKSimRpm_FileImpl temporary(mDocument);
    temporary.CreateTemporary(mFolder.File("temporary"), false);
    EXPECT_EQ(temporary.Pool(0).lock()->HeaderSize(), 176U);
    VUKSimRpm_FileImpl generated(mDocument);
    generated.CreateGenerated(mFolder.File("generated"), ".sim", false);
    EXPECT_EQ(generated.Pool(0).lock()->HeaderSize(), 208U);
    VUKSimRpm_FileImpl ownTemporary(mDocument);
    ownTemporary.CreateTemporary(mFolder.File("temporary"), true);
    EXPECT_EQ(ownTemporary.Pool(0).lock()->HeaderSize(), 80U);
}

TEST_F(FileImpl, RemovesATemporaryFileWhenItCloses)
{
    mFile.CreateTemporary(mFolder.File("scratch"), true);
    const std::string name = mFile.FileName().UTF8();
    EXPECT_EQ(name.rfind(mFolder.Path("scratch"), 0), 0U);
    EXPECT_GT(name.size(), mFolder.Path("scratch").size());
    EXPECT_EQ(mFolder.Count(), 1);
    mFile.Close();
    EXPECT_EQ(mFolder.Count(), 0);
}

TEST_F(FileImpl, KeepsAGeneratedFileWhateverTheFlag)
{
    for (const bool flag : {false, true}) {
        const TemporaryFolder folder;
        VUKSimRpm_FileImpl file(mDocument);
        file.CreateGenerated(folder.File("run"), ".sim", flag);
        const std::string name = file.FileName().UTF8();
        EXPECT_EQ(name.rfind(folder.Path("run"), 0), 0U);
        EXPECT_TRUE(name.ends_with(".sim"));
        EXPECT_GT(name.size(), folder.Path("run.sim").size());
        file.Close();
        EXPECT_EQ(folder.Count(), 1);
    }
}

// An empty file

TEST_F(FileImpl, HasNoPoolsInAnEmptyFileOpenedForReading)
{
    mFile.OpenRead(mFolder.Write("a.sim", ""));
    EXPECT_EQ(mFile.PoolCount(), 0U);
    EXPECT_EQ(mFile.LogicalEnd(), 0U);
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)mFile.Pool(); }, "mCurrentPoolIndex >= 0", kSource, 270));
}

TEST_F(FileImpl, HasNoPoolsInAnEmptyFileOpenedForUpdateAndWritesNothing)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", ""));
    EXPECT_EQ(mFile.PoolCount(), 0U);
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)mFile.Pool(); }, "mCurrentPoolIndex >= 0", kSource, 270));
    mFile.Flush();
    EXPECT_EQ(mFolder.Size("a.sim"), 0U);
    mFile.Close();
    EXPECT_EQ(mFolder.Size("a.sim"), 0U);
}

TEST_F(FileImpl, GivesAnEmptyFileItsFirstPoolByNewPool)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", ""));
    mFile.NewPool(true, bytes::Uuid('a').c_str());
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(mFile.Pool().lock()->Position(), 0U);
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::Pool{.directory = {bytes::Uuid('a')}}.Bytes());
}

// Pools by index

TEST_F(FileImpl, RefusesAPoolIndexAtOrBeyondTheCount)
{
    mFile.OpenRead(mFolder.Write("a.sim", mHello.Bytes()));
    EXPECT_EQ(mFile.Pool(0).lock()->Length(), 85U);
    const char* text = "index < mPools.size()";
    EXPECT_TRUE(RaisesValidation([&] { (void)mFile.Pool(1); }, text, kSource, 277));
    EXPECT_TRUE(RaisesValidation([&] { (void)mFile.Pool(0xFFFFFFFF); }, text, kSource, 277));
}

// Bytes

TEST_F(FileImpl, ReadsAtPositionsUpToTheEndOfTheFile)
{
    mFile.OpenRead(mFolder.Write("a.sim", mHello.Bytes()));
    EXPECT_EQ(ReadFile(mFile, 1, 3), "SIM");
    EXPECT_EQ(ReadFile(mFile, 80, 5), "hello");
    EXPECT_EQ(ReadFile(mFile, 83, 100), "lo");
    EXPECT_EQ(ReadFile(mFile, 85, 1), "");
    EXPECT_EQ(ReadFile(mFile, 0xFFFFFFFFFFFFFFFF, 1), "");
}

TEST_F(FileImpl, WritesAtPositionsAndLeavesTheLogicalEnd)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", mHello.Bytes()));
    EXPECT_EQ(mFile.Write(81, 3, "ipp"), 3U);
    EXPECT_EQ(mFile.Write(85, 2, "!!"), 2U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(80), "hippo!!");
    EXPECT_EQ(mFile.LogicalEnd(), 85U);
}

TEST_F(FileImpl, RefusesToWriteIntoAReadOnlyFile)
{
    mFile.OpenRead(mFolder.Write("a.sim", mHello.Bytes()));
    const auto write = [&](unsigned long length) { mFile.Write(80, length, "jelly"); };
    EXPECT_TRUE(Raises<VUKSimExcWriteReadOnly>([&] { write(5); }, kSource, 255));
    EXPECT_TRUE(Raises<VUKSimExcWriteReadOnly>([&] { write(0); }, kSource, 255));
    EXPECT_EQ(mFolder.Read("a.sim"), mHello.Bytes());
}

TEST_F(FileImpl, PassesOnWhatTheSystemSays)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", mHello.Bytes()));
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pread, {Fails(EIO)});
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { ReadFile(mFile, 0, 1); }, "read", EIO));
    EXPECT_TRUE(RaisesFileError([&] { mFile.Write(0, 1, "x"); }, "write", ENOSPC));
}

// Growth

TEST_F(FileImpl, ExtendsItsLogicalEndAndWritesNothing)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", mHello.Bytes()));
    const ScriptedSystemCalls calls;
    mFile.Extend(1000);
    EXPECT_EQ(mFile.LogicalEnd(), 1000U);
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_EQ(mFolder.Size("a.sim"), 85U);
}

TEST_F(FileImpl, IgnoresAnExtensionToItsEndOrBelow)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", mHello.Bytes()));
    mFile.Extend(85);
    mFile.Extend(84);
    mFile.Extend(0);
    EXPECT_EQ(mFile.LogicalEnd(), 85U);
}

TEST_F(FileImpl, RefusesToExtendAReadOnlyFile)
{
    mFile.OpenRead(mFolder.Write("a.sim", mHello.Bytes()));
    EXPECT_TRUE(Raises<VUKSimExcAllocReadOnly>([&] { mFile.Extend(86); }, kSource, 231));
    EXPECT_EQ(mFile.LogicalEnd(), 85U);
}

TEST_F(FileImpl, IgnoresAnExtensionToItsEndOrBelowWhenReadOnlyToo)
{
    mFile.OpenRead(mFolder.Write("a.sim", mHello.Bytes()));
    mFile.Extend(85);
    mFile.Extend(10);
    EXPECT_EQ(mFile.LogicalEnd(), 85U);
}

TEST_F(FileImpl, IsTruncatedInBothDirections)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", mHello.Bytes()));
    mFile.Truncate(82);
    EXPECT_EQ(mFile.LogicalEnd(), 82U);
    EXPECT_EQ(mFolder.Size("a.sim"), 82U);
    mFile.Truncate(90);
    EXPECT_EQ(mFile.LogicalEnd(), 90U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(80), std::string("he\0\0\0\0\0\0\0\0", 10));
}

TEST_F(FileImpl, KeepsItsEndWhenTheSystemRefusesToTruncate)
{
    mFile.OpenRead(mFolder.Write("a.sim", mHello.Bytes()));
    EXPECT_TRUE(RaisesFileError([&] { mFile.Truncate(10); }, "truncate", EBADF));
    EXPECT_EQ(mFile.LogicalEnd(), 85U);
    EXPECT_EQ(mFolder.Size("a.sim"), 85U);
}

// What it hands out

TEST_F(FileImpl, HandsOutTheDocumentsUserSignature)
{
    EXPECT_EQ(&mFile.Sig(), &mDocument.Sig());
    EXPECT_EQ(std::memcmp(&mFile.Sig(), "TEST", 4), 0);
}

TEST_F(FileImpl, MakesDirectLocatorsOfAbsolutePositions)
{
    mFile.OpenUpdate(mFolder.Write("a.sim", mHello.Bytes()));
    char bytes[3] = {};
    EXPECT_EQ(mFile.DirectLocator(1).Read(3, bytes), 3U);
    EXPECT_EQ(std::string(bytes, 3), "SIM");
    EXPECT_EQ(mFile.DirectLocator(80).Write(1, "j"), 1U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(80), "jello");
}
