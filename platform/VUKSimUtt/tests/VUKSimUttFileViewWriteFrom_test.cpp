#include <cerrno>
#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"
#include "VUKSimUttSystemCalls.h"

// Bytes that go from one file to another without a buffer in between. The source is 131,072 bytes
// long, of which 122,880 are served from memory.

namespace {

class FileViewWriteFrom : public testing::Test
{
protected:
    FileViewWriteFrom()
    {
        mSource.OpenRead(mFolder.Write("source.sim", mBytes));
        mTarget.OpenUpdate(mFolder.Write("target.sim", "0123456789"));
    }

    TemporaryFolder mFolder;
    const std::string mBytes = Pattern(131072);
    VUKSimUttOSFile mSource;
    VUKSimUttOSFile mTarget;
};

TEST_F(FileViewWriteFrom, WritesBytesOfAMappedFileByOneCallAndReadsNone)
{
    ScriptedSystemCalls calls;
    EXPECT_TRUE(mTarget.WriteFrom(5, mSource, 100, 70000));
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 1);
    EXPECT_EQ(calls.Count(SystemCall::Pread), 0);
    EXPECT_EQ(mFolder.Read("target.sim"), "01234" + mBytes.substr(100, 70000));
    EXPECT_EQ(mFolder.Read("source.sim"), mBytes);
}

TEST_F(FileViewWriteFrom, GoesFromMemoryToMemoryWhereBothAreMapped)
{
    VUKSimUttOSFile target;
    target.OpenUpdate(mFolder.Write("large.sim", std::string(131072, '-')));
    EXPECT_EQ(ReadAt(target, 0, 1), "-");
    ScriptedSystemCalls calls;
    EXPECT_TRUE(target.WriteFrom(8000, mSource, 100, 3000));
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 0);
    EXPECT_EQ(mFolder.Read("large.sim"),
              std::string(8000, '-') + mBytes.substr(100, 3000) + std::string(120072, '-'));
}

TEST_F(FileViewWriteFrom, ReachesToTheLastByteThatIsServedFromMemory)
{
    EXPECT_TRUE(mTarget.WriteFrom(0, mSource, 120000, 6976));
    EXPECT_EQ(mFolder.Read("target.sim"), mBytes.substr(120000, 6976));
    EXPECT_FALSE(mTarget.WriteFrom(0, mSource, 120000, 6977));
}

TEST_F(FileViewWriteFrom, WritesNothingWhereTheSourceIsNotServedFromMemory)
{
    VUKSimUttOSFile small;
    small.OpenRead(mFolder.Write("small.sim", std::string(65535, 'a')));
    ScriptedSystemCalls calls;
    EXPECT_FALSE(mTarget.WriteFrom(0, small, 0, 10));
    EXPECT_FALSE(mTarget.WriteFrom(0, mSource, 131062, 10));
    EXPECT_FALSE(mTarget.WriteFrom(0, mSource, 1048576, 10));
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 0);
    EXPECT_EQ(mFolder.Read("target.sim"), "0123456789");
}

TEST_F(FileViewWriteFrom, WritesNothingWithinOneFileWhateverItsName)
{
    std::filesystem::create_hard_link(mFolder.Path("source.sim"), mFolder.Path("link.sim"));
    VUKSimUttOSFile same;
    same.OpenUpdate(mFolder.File("link.sim"));
    EXPECT_FALSE(same.WriteFrom(1000, mSource, 0, 70000));
    EXPECT_FALSE(same.WriteFrom(1000, same, 0, 70000));
    EXPECT_EQ(mFolder.Read("source.sim"), mBytes);
}

TEST_F(FileViewWriteFrom, WritesNothingToAFileThatNobodyHasLookedAt)
{
    VUKSimUttOSFile created;
    created.CreateTemporary(mFolder.File("scratch"));
    EXPECT_FALSE(created.WriteFrom(0, mSource, 0, 10));
    EXPECT_EQ(created.FileSize(), 0U);
    created.Close();
    created.OpenWrite(mFolder.File("new.sim"));
    EXPECT_TRUE(created.WriteFrom(0, mSource, 0, 10));
    created.Close();
    created.CreateTemporary(mFolder.File("scratch"));
    EXPECT_FALSE(created.WriteFrom(0, mSource, 0, 10));
}

TEST_F(FileViewWriteFrom, WritesNothingOfAFileThatNobodyHasLookedAt)
{
    VUKSimUttOSFile created;
    created.CreateTemporary(mFolder.File("scratch"));
    created.WriteAtomic(0, mBytes.data(), mBytes.size());
    EXPECT_EQ(ReadAt(created, 0, 10), mBytes.substr(0, 10)); // mapped
    EXPECT_FALSE(mTarget.WriteFrom(0, created, 0, 10));
    EXPECT_EQ(mFolder.Read("target.sim"), "0123456789");
}

TEST_F(FileViewWriteFrom, TakesAFileOfTheSameNumberOnAnotherDeviceForAnotherFile)
{
    const ScriptedSystemCalls calls; // puts the table back
    VUKSimUttSystemCalls::Current().fstat = [](int descriptor, VUKSimUttFileStatus* status) {
        const int result = ::fstat(descriptor, status);
        ++status->st_dev;
        return result;
    };
    VUKSimUttOSFile elsewhere;
    elsewhere.OpenUpdate(mFolder.File("source.sim"));
    EXPECT_TRUE(elsewhere.WriteFrom(1000, mSource, 0, 10));
    EXPECT_EQ(mFolder.Read("source.sim").substr(1000, 10), mBytes.substr(0, 10));
}

TEST_F(FileViewWriteFrom, IsFalseWhenTheSourceHasBecomeShorter)
{
    EXPECT_EQ(ReadAt(mSource, 0, 1).size(), 1UL); // mapped as long as it was
    for (const long size : {100000L, 50000L, 0L}) {
        ASSERT_EQ(::truncate(mFolder.Path("source.sim").c_str(), size), 0);
        EXPECT_FALSE(mTarget.WriteFrom(0, mSource, 40000, 70000)) << size;
    }
    EXPECT_EQ(ReadAt(mSource, 0, 10), "");
}

// Behind the new end the page that holds it reads as zeros, which are no bytes of the source.
TEST_F(FileViewWriteFrom, WritesNothingOfASourceThatHadBecomeShorterBefore)
{
    EXPECT_EQ(ReadAt(mSource, 0, 1).size(), 1UL); // mapped as long as it was
    ASSERT_EQ(::truncate(mFolder.Path("source.sim").c_str(), 4), 0);
    ScriptedSystemCalls calls;
    EXPECT_FALSE(mTarget.WriteFrom(0, mSource, 0, 10));
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 0);
    EXPECT_EQ(mFolder.Read("target.sim"), "0123456789");
}

TEST_F(FileViewWriteFrom, IsFalseWhenTheSystemCannotReadTheMemory)
{
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(EFAULT)});
    EXPECT_FALSE(mTarget.WriteFrom(0, mSource, 0, 70000));
    EXPECT_TRUE(mTarget.WriteFrom(0, mSource, 0, 70000));
}

TEST_F(FileViewWriteFrom, FailsAsAnyWrite)
{
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Pwrite, ENOSPC);
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 183}, [&] { static_cast<void>(mTarget.WriteFrom(4, mSource, 0, 70000)); },
        "write", ENOSPC, mFolder.Path("target.sim"), 4, 70000));
    EXPECT_EQ(mFolder.Read("target.sim"), "0123456789");
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 118},
        [&] {
            VUKSimUttOSFile readOnly;
            readOnly.OpenRead(mFolder.File("target.sim"));
            static_cast<void>(readOnly.WriteFrom(4, mSource, 0, 10));
        },
        "write", EBADF, mFolder.Path("target.sim"), 4, 10));
}

} // namespace
