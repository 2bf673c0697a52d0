// Every system call of an OS file is made to fail, and what it leaves behind is looked at.
#include <cerrno>
#include <functional>
#include <new>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "LimitedMemory.h"
#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

namespace {

TEST(OSFileFaults, InterruptedCallsAreRepeated)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "old");
    ScriptedSystemCalls calls;
    for (const SystemCall call :
         {SystemCall::Open, SystemCall::Stat, SystemCall::Fstat, SystemCall::Pread,
          SystemCall::Pwrite, SystemCall::Ftruncate, SystemCall::Fdatasync}) {
        calls.Script(call, {Fails(EINTR), Fails(EINTR)});
    }
    VUKSimUttOSFile file;
    file.OpenWrite(name);
    file.WriteAtomic(0, "12345", 5);
    EXPECT_EQ(ReadAt(file, 1, 3), "234");
    EXPECT_EQ(file.FileSize(), 5ULL);
    file.Flush();
    file.Close();
    EXPECT_EQ(folder.Read("a.sim"), "12345");
    EXPECT_EQ(calls.Count(SystemCall::Open), 3);
    EXPECT_EQ(calls.Count(SystemCall::Stat), 3);
    EXPECT_EQ(calls.Count(SystemCall::Fstat), 4);
    EXPECT_EQ(calls.Count(SystemCall::Ftruncate), 3);
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 3);
    EXPECT_EQ(calls.Count(SystemCall::Fdatasync), 3);
}

TEST(OSFileFaults, InterruptedCallsAroundACreatedFileAreRepeated)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.CreateGenerated(folder.File("run"), ".sim", true);
    file.Close();
    file.OpenWrite(folder.File("a.sim"));
    calls.Script(SystemCall::Open, {Fails(EINTR)});
    calls.Script(SystemCall::Fsync, {Fails(EINTR), Fails(EINVAL)});
    calls.Script(SystemCall::Syncfs, {Fails(EINTR)});
    file.Flush();
    EXPECT_EQ(calls.Count(SystemCall::Fsync), 2);
    EXPECT_EQ(calls.Count(SystemCall::Syncfs), 2);
    file.Close();
    file.CreateTemporary(folder.File("scratch"));
    calls.Script(SystemCall::Fstat, {Fails(EINTR)});
    calls.Script(SystemCall::Stat, {Fails(EINTR)});
    calls.Script(SystemCall::Unlink, {Fails(EINTR)});
    file.Close();
    EXPECT_EQ(folder.Count(), 1);
}

TEST(OSFileFaults, ShortTransfersAreContinued)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Moves(1), Fails(EINTR), Moves(2), Moves(1)});
    EXPECT_EQ(file.WriteAtomic(3, "abcdef", 6), 6UL);
    EXPECT_EQ(folder.Read("a.sim"), "123abcdef");
    ASSERT_EQ(calls.Count(SystemCall::Pwrite), 5);
    EXPECT_EQ(calls.Calls()[3].position, 6U);
    EXPECT_EQ(calls.Calls()[3].length, 3U);
    EXPECT_EQ(calls.Calls()[4].position, 7U);
    EXPECT_EQ(calls.Calls()[4].length, 2U);
    calls.Script(SystemCall::Pread, {Moves(2), Fails(EINTR), Moves(1), Moves(1)});
    EXPECT_EQ(ReadAt(file, 1, 7), "23abcde");
}

TEST(OSFileFaults, AReadThatFailsInTheMiddleThrowsAndDoesNotMoveOn)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "1234567");
    VUKSimUttOSFile file;
    file.OpenRead(name);
    ScriptedSystemCalls calls;
    std::string text = "????";
    ASSERT_EQ(file.Read(text.data(), 2), 2UL);
    calls.Script(SystemCall::Pread, {Moves(1), Fails(EIO)});
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 149}, [&] { (void)file.Read(text.data(), 4); }, "read", EIO, name.UTF8(), 2,
        4));
    EXPECT_EQ(file.Read(text.data(), 4), 4UL);
    EXPECT_EQ(text, "3456");
    calls.Script(SystemCall::Pread, {Fails(EIO)});
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 149}, [&] { (void)file.ReadAtomic(1, text.data(), 3); }, "read", EIO,
        name.UTF8(), 1, 3));
}

TEST(OSFileFaults, AFailedTruncationChangesNothing)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Ftruncate, {Fails(EIO)});
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 207}, [&] { file.Truncate(2); }, "truncate", EIO, name.UTF8(), 2));
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFileFaults, AFailedLookAtTheSizeIsReported)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    file.OpenRead(name);
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fstat, {Fails(EIO)});
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 127}, [&] { (void)file.FileSize(); }, "measure", EIO, name.UTF8()));
}

TEST(OSFileFaults, AnOpenWithoutDescriptorsOrPermissionIsReported)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    for (const int error : {EMFILE, ENFILE, EACCES, EROFS, EIO}) {
        const Site site{kOpenSource, 52};
        calls.Script(SystemCall::Open, {Fails(error), Fails(error), Fails(error)});
        EXPECT_TRUE(RaisesAt(
            site, [&] { file.OpenRead(name); }, "open", error, name.UTF8()));
        EXPECT_TRUE(RaisesAt(
            site, [&] { file.OpenUpdate(name); }, "open", error, name.UTF8()));
        EXPECT_TRUE(RaisesAt(
            site, [&] { file.OpenWrite(name); }, "open", error, name.UTF8()));
        calls.Script(SystemCall::Open, {Fails(error)});
        EXPECT_TRUE(RaisesFileError([&] { file.CreateTemporary(name); }, "create", error));
        EXPECT_FALSE(file.IsOpen());
    }
    EXPECT_EQ(folder.Read("a.sim"), "12345");
    EXPECT_EQ(folder.Count(), 1);
}

TEST(OSFileFaults, AnOpenedFileThatCannotBeLookedAtIsClosedAgain)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    const int before = OpenDescriptors();
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Fstat, EIO);
    VUKSimUttOSFile file;
    const Site site{kOpenSource, 58};
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenRead(name); }, "open", EIO, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenWrite(name); }, "open", EIO, name.UTF8()));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFileFaults, AFileThatCannotBeEmptiedKeepsItsContent)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    const int before = OpenDescriptors();
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Ftruncate, {Fails(EIO)});
    VUKSimUttOSFile file;
    EXPECT_TRUE(RaisesAt(
        {kOpenSource, 77}, [&] { file.OpenWrite(name); }, "open", EIO, name.UTF8()));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFileFaults, AFailedCloseIsReportedOnceAndClosesAllTheSame)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    const int before = OpenDescriptors();
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Close, EIO);
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 258}, [&] { file.Close(); }, "close", EIO, name.UTF8()));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(OpenDescriptors(), before);
    file.Close();
    EXPECT_EQ(calls.Count(SystemCall::Close), 1);
}

TEST(OSFileFaults, AnInterruptedCloseIsNotRepeatedAndNoError)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Close, EINTR);
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    file.Close();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(calls.Count(SystemCall::Close), 1);
}

TEST(OSFileFaults, ADestructorPassesOverAFailedClose)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    const int before = OpenDescriptors();
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Close, EIO);
    {
        VUKSimUttOSFile file;
        file.OpenUpdate(name);
    }
    EXPECT_EQ(calls.Count(SystemCall::Close), 1);
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(OSFileFaults, ATemporaryFileThatCannotBeRemovedIsReportedAndClosed)
{
    const TemporaryFolder folder;
    const int before = OpenDescriptors();
    for (const SystemCall call : {SystemCall::Unlink, SystemCall::Stat, SystemCall::Fstat}) {
        ScriptedSystemCalls calls;
        VUKSimUttOSFile file;
        file.CreateTemporary(folder.File("scratch"));
        calls.Script(call, {Fails(EACCES)});
        EXPECT_TRUE(RaisesAt(
            {kFileSource, 263}, [&] { file.Close(); }, "remove", EACCES, file.FileName().UTF8()));
        EXPECT_FALSE(file.IsOpen());
        EXPECT_EQ(OpenDescriptors(), before);
        EXPECT_EQ(unlink(file.FileName().UTF8()), 0);
    }
}

TEST(OSFileFaults, ATemporaryFileThatVanishesAtTheLastMomentIsNoError)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Unlink, {Fails(ENOENT)});
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    file.Close();
    EXPECT_FALSE(file.IsOpen());
}

TEST(OSFileFaults, AFailedCloseComesBeforeAFailedRemoval)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Unlink, EACCES);
    calls.FailAlways(SystemCall::Close, EIO);
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 258}, [&] { file.Close(); }, "close", EIO, file.FileName().UTF8()));
}

// Lets each call of a story fail in turn, until the story comes to its end without. Whatever
// failed, it is told with the file exception, and no descriptor is left. Returns how many calls
// there were to fail.
int FailEachCall(const std::function<void(const TemporaryFolder&, VUKSimUttOSFile&)>& story,
                 int errorNumber)
{
    for (int number = 1;; ++number) {
        const TemporaryFolder folder;
        const int before = OpenDescriptors();
        ScriptedSystemCalls calls;
        calls.FailCall(number, errorNumber);
        {
            VUKSimUttOSFile file;
            try {
                story(folder, file);
            } catch (const VUKSimUttOSFileException& raised) {
                EXPECT_EQ(raised.ErrorNumber(), errorNumber) << "call " << number;
            }
        }
        EXPECT_EQ(OpenDescriptors(), before) << "call " << number;
        if (!calls.CallFailed()) {
            return number - 1;
        }
    }
}

TEST(OSFileFaults, NoDescriptorIsLeftWhicheverCallFails)
{
    const auto write = [](const TemporaryFolder& folder, VUKSimUttOSFile& file) {
        file.OpenWrite(folder.File("a.sim"));
        file.WriteAtomic(0, "12345", 5);
        file.WriteAtomic(8, "9", 1);
        file.Truncate(3);
        file.Flush();
        file.Close();
    };
    const auto read = [](const TemporaryFolder& folder, VUKSimUttOSFile& file) {
        file.OpenRead(folder.Write("a.sim", "12345"));
        EXPECT_EQ(ReadAt(file, 0, 5), "12345");
        file.Close();
    };
    const auto generate = [](const TemporaryFolder& folder, VUKSimUttOSFile& file) {
        file.CreateGenerated(folder.File("run"), ".sim", false);
        file.Flush();
        file.Close();
    };
    for (const int error : {EIO, ENOSPC, EMFILE, EACCES}) {
        EXPECT_EQ(FailEachCall(write, error), 12);
        EXPECT_EQ(FailEachCall(read, error), 5);
        EXPECT_EQ(FailEachCall(generate, error), 6);
    }
}

// The same with each allocation of an open.
void FailEachAllocation(const std::function<void(const TemporaryFolder&, VUKSimUttOSFile&)>& open)
{
    for (int number = 0;; ++number) {
        const TemporaryFolder folder;
        const int before = OpenDescriptors();
        bool failed = false;
        {
            VUKSimUttOSFile file;
            const LimitedMemory memory(number);
            try {
                open(folder, file);
            } catch (const std::bad_alloc&) {
                failed = true;
                EXPECT_FALSE(file.IsOpen()) << "allocation " << number;
                EXPECT_EQ(folder.Count(), 0) << "allocation " << number;
            }
        }
        EXPECT_EQ(OpenDescriptors(), before) << "allocation " << number;
        if (!failed) {
            EXPECT_GT(number, 0);
            return;
        }
    }
}

TEST(OSFileFaults, AnOpenThatRunsOutOfMemoryLeavesNothing)
{
    FailEachAllocation([](const TemporaryFolder& folder, VUKSimUttOSFile& file) {
        file.OpenWrite(folder.Path("a.sim").c_str());
    });
    FailEachAllocation([](const TemporaryFolder& folder, VUKSimUttOSFile& file) {
        file.CreateTemporary(folder.Path("scratch").c_str());
    });
    const TemporaryFolder lasting;
    lasting.Write("a.sim", "12345");
    FailEachAllocation([&](const TemporaryFolder&, VUKSimUttOSFile& file) {
        file.OpenUpdate(lasting.Path("a.sim").c_str());
    });
}

TEST(OSFileFaults, AFlushThatRunsOutOfMemoryDoesTheRestTheNextTime)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    {
        const LimitedMemory memory(0);
        EXPECT_THROW(file.Flush(), std::bad_alloc);
    }
    EXPECT_EQ(calls.Count(SystemCall::Fsync), 0);
    file.Flush();
    EXPECT_EQ(calls.Count(SystemCall::Fsync), 1);
}

} // namespace
