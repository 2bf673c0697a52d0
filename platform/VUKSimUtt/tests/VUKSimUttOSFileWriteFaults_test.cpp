// A write that fails leaves the file as long as it was.
#include <cerrno>
#include <csignal>
#include <string>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

namespace {

// The next write moves `done` bytes and then fails.
void FailWriteAfter(ScriptedSystemCalls& calls, std::size_t done, int errorNumber)
{
    if (done > 0) {
        calls.Script(SystemCall::Pwrite, {Moves(done)});
    }
    calls.Script(SystemCall::Pwrite, {Fails(errorNumber)});
}

TEST(OSFileWriteFaults, AnAppendThatFailsAfterAnyNumberOfBytesIsCutBack)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    ScriptedSystemCalls calls;
    for (const int error : {ENOSPC, EDQUOT, EFBIG, EIO}) {
        for (std::size_t done = 0; done < 7; ++done) {
            FailWriteAfter(calls, done, error);
            EXPECT_TRUE(RaisesAt(
                {kFileSource, 183}, [&] { file.WriteAtomic(5, "abcdefg", 7); }, "write", error,
                name.UTF8(), 5, 7));
            EXPECT_EQ(folder.Read("a.sim"), "12345");
        }
    }
    EXPECT_EQ(file.WriteAtomic(5, "abcdefg", 7), 7UL);
    EXPECT_EQ(folder.Read("a.sim"), "12345abcdefg");
}

TEST(OSFileWriteFaults, TheSentenceOfAFailedWriteSaysWhatWhereAndWhy)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("run42.sim", "12345"));
    ScriptedSystemCalls calls;
    FailWriteAfter(calls, 2, ENOSPC);
    try {
        file.WriteAtomic(5, "abcdefg", 7);
        ADD_FAILURE() << "raised nothing";
    } catch (const VUKSimUttOSFileException& raised) {
        EXPECT_EQ(raised.what(),
                  "VUKSimUttOSFileException at VUKSim/VUKSimUtt.m/src/VUKSimUttOSFile:183: "
                  "write 7 bytes at 5 of " +
                      folder.Path("run42.sim") + ": No space left on device (ENOSPC)");
    }
}

TEST(OSFileWriteFaults, AFailedWriteAcrossTheEndKeepsTheLength)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    const auto write = [&] { file.WriteAtomic(3, "abcdef", 6); };
    FailWriteAfter(calls, 1, ENOSPC);
    EXPECT_TRUE(RaisesFileError(write, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "123a5");
    FailWriteAfter(calls, 4, ENOSPC);
    EXPECT_TRUE(RaisesFileError(write, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "123ab");
}

TEST(OSFileWriteFaults, AFailedWriteInsideTheFileCutsNothing)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    FailWriteAfter(calls, 2, EIO);
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(0, "abc", 3); }, "write", EIO));
    EXPECT_EQ(folder.Read("a.sim"), "ab345");
    EXPECT_EQ(calls.Count(SystemCall::Ftruncate), 0);
}

TEST(OSFileWriteFaults, AFailedWriteBehindAHoleTakesTheHoleBackToo)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    FailWriteAfter(calls, 2, ENOSPC);
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(9000, "abc", 3); }, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFileWriteFaults, TheEndFollowsTruncations)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    file.Truncate(2);
    ScriptedSystemCalls calls;
    FailWriteAfter(calls, 1, ENOSPC);
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(2, "abc", 3); }, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12");
    file.Truncate(4);
    FailWriteAfter(calls, 2, ENOSPC);
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(3, "abc", 3); }, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), std::string("12\0a", 4));
}

TEST(OSFileWriteFaults, TheEndOfTheFileBeforeIsForgotten)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("before.sim", "123456789"));
    file.Close();
    file.OpenWrite(folder.File("a.sim"));
    ScriptedSystemCalls calls;
    FailWriteAfter(calls, 4, ENOSPC);
    EXPECT_THROW(file.WriteAtomic(0, "abcdefg", 7), VUKSimUttOSFileException);
    EXPECT_EQ(folder.Read("a.sim"), "");
}

TEST(OSFileWriteFaults, BytesThatAnotherAppendedAreNotCutOff)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    VUKSimUttOSFile other;
    other.OpenUpdate(name);
    other.WriteAtomic(5, "OTHERS", 6);
    ScriptedSystemCalls calls;
    FailWriteAfter(calls, 2, ENOSPC); // before the end of theirs
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(5, "abcdefghi", 9); }, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12345abHERS");
    FailWriteAfter(calls, 2, ENOSPC); // behind theirs, of which this object has not heard
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(11, "abcdefghi", 9); }, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12345abHERS");
    FailWriteAfter(calls, 2, ENOSPC); // behind a hole behind theirs
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(20, "abcdefghi", 9); }, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12345abHERS");
}

TEST(OSFileWriteFaults, AFileThatAnotherShortenedIsNotLengthened)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    VUKSimUttOSFile other;
    other.OpenUpdate(name);
    other.Truncate(2);
    ScriptedSystemCalls calls;
    FailWriteAfter(calls, 1, ENOSPC);
    EXPECT_TRUE(RaisesFileError([&] { file.WriteAtomic(2, "abc", 3); }, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12a");
}

TEST(OSFileWriteFaults, TheFirstErrorIsReportedWhenTheCutFailsToo)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    const auto write = [&] { file.WriteAtomic(5, "abcdef", 6); };
    FailWriteAfter(calls, 2, ENOSPC);
    calls.Script(SystemCall::Ftruncate, {Fails(EIO)});
    EXPECT_TRUE(RaisesFileError(write, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12345ab");
    FailWriteAfter(calls, 3, ENOSPC);
    calls.Script(SystemCall::Fstat, {Fails(EIO)});
    EXPECT_TRUE(RaisesFileError(write, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12345abc");
    FailWriteAfter(calls, 4, ENOSPC); // the cut that works takes what was left over as well
    EXPECT_TRUE(RaisesFileError(write, "write", ENOSPC));
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFileWriteFaults, AWriteThatMakesNoProgressIsAnError)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Moves(1), Moves(0)});
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 183}, [&] { file.WriteAtomic(5, "67", 2); }, "write", EIO, name.UTF8(), 5,
        2));
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFileWriteFaults, NothingIsWrittenBehindAnEndThatCannotBeLookedUp)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fstat, {Fails(EIO)});
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 174}, [&] { file.WriteAtomic(9, "ab", 2); }, "write", EIO, name.UTF8(), 9,
        2));
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 0);
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

// The system's own short write and error, at the limit that the process may write to.
TEST(OSFileWriteFaults, AWriteAgainstTheProcessesFileSizeLimitIsCutBack)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit{.rlim_cur = 100, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const ScriptedSystemCalls calls;
    const auto result = RaisesFileError(
        [&] { file.WriteAtomic(5, std::string(200, 'x').c_str(), 200); }, "write", EFBIG);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(result);
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 2); // 95 bytes, then the error
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

} // namespace
