#include "VUKSimUttOSFile.h"

#include <cerrno>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"

namespace {

TEST(OSFile, IsClosedAndWritableAndNamelessAtFirst)
{
    const VUKSimUttOSFile file;
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.ReadOnly());
    EXPECT_STREQ(file.FileName().UTF8(), "");
}

TEST(OSFile, ReadsBackWhatItWrote)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    EXPECT_EQ(file.WriteAtomic(0, "abcdef", 6), 6UL);
    EXPECT_EQ(file.WriteAtomic(2, "XY", 2), 2UL);
    EXPECT_EQ(ReadAt(file, 0, 6), "abXYef");
    EXPECT_EQ(ReadAt(file, 3, 2), "Ye");
    EXPECT_EQ(folder.Read("a.sim"), "abXYef");
}

TEST(OSFile, OpenWriteMakesAnEmptyFile)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(file.FileSize(), 0ULL);
    EXPECT_EQ(folder.Size("a.sim"), 0U);
    EXPECT_EQ(file.FileName(), folder.File("a.sim"));
}

TEST(OSFile, OpenWriteEmptiesAFileThatIsThere)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "old content");
    VUKSimUttOSFile file;
    file.OpenWrite(name);
    EXPECT_EQ(file.FileSize(), 0ULL);
    EXPECT_EQ(folder.Read("a.sim"), "");
}

TEST(OSFile, OpenWriteGivesANewFileTheModeThatTheUserAskedFor)
{
    const TemporaryFolder folder;
    const mode_t before = umask(0027);
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    umask(before);
    struct stat status;
    ASSERT_EQ(stat(folder.Path("a.sim").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST(OSFile, OpenUpdateKeepsTheContentAndWrites)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    EXPECT_EQ(file.FileSize(), 5ULL);
    file.WriteAtomic(4, "678", 3);
    EXPECT_EQ(folder.Read("a.sim"), "1234678");
}

TEST(OSFile, OpenUpdateDoesNotCreate)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    EXPECT_TRUE(RaisesAt(
        {kOpenSource, 52}, [&] { file.OpenUpdate(folder.File("none.sim")); }, "open", ENOENT,
        folder.Path("none.sim")));
    EXPECT_FALSE(folder.Has("none.sim"));
    EXPECT_FALSE(file.IsOpen());
}

TEST(OSFile, OpenReadOfAMissingFileFails)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    EXPECT_TRUE(RaisesAt(
        {kOpenSource, 52}, [&] { file.OpenRead(folder.File("none.sim")); }, "open", ENOENT,
        folder.Path("none.sim")));
    EXPECT_TRUE(RaisesAt(
        {kOpenSource, 52}, [&] { file.OpenRead(""); }, "open", ENOENT, ""));
}

TEST(OSFile, AReadOnlyFileRefusesEveryChange)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", "12345"));
    const std::string name = folder.Path("a.sim");
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 118}, [&] { file.WriteAtomic(1, "xy", 2); }, "write", EBADF, name, 1, 2));
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 118}, [&] { file.Truncate(3); }, "truncate", EBADF, name, 3));
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFile, IsReadOnlyFromOpenReadUntilAnyOtherOpen)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile file;
    const auto readOnlyOnce = [&] {
        file.Close();
        file.OpenRead(name);
        EXPECT_TRUE(file.ReadOnly());
        file.Close();
        EXPECT_TRUE(file.ReadOnly());
    };
    readOnlyOnce();
    file.OpenUpdate(name);
    EXPECT_FALSE(file.ReadOnly());
    readOnlyOnce();
    file.OpenWrite(name);
    EXPECT_FALSE(file.ReadOnly());
    readOnlyOnce();
    file.CreateTemporary(folder.File("t"));
    EXPECT_FALSE(file.ReadOnly());
    readOnlyOnce();
    file.CreateGenerated(folder.File("g"), ".sim", false);
    EXPECT_FALSE(file.ReadOnly());
}

TEST(OSFile, AFailedOpenLeavesTheObjectAsItWas)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", "12345"));
    file.Close();
    EXPECT_TRUE(RaisesFileError([&] { file.OpenUpdate(folder.File("none.sim")); }, "open", ENOENT));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_TRUE(file.ReadOnly());
    EXPECT_EQ(file.FileName(), folder.File("a.sim"));
}

TEST(OSFile, FollowsALinkToARegularFile)
{
    const TemporaryFolder folder;
    folder.Write("a.sim", "12345");
    std::filesystem::create_symlink("a.sim", folder.Path("link.sim"));
    VUKSimUttOSFile file;
    file.OpenRead(folder.File("link.sim"));
    EXPECT_EQ(ReadAt(file, 0, 9), "12345");
    EXPECT_EQ(file.FileName(), folder.File("link.sim"));
}

TEST(OSFile, RefusesAFifoWithoutOpeningIt)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.Path("fifo").c_str(), 0600), 0);
    const ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    const VUKString name = folder.File("fifo");
    const Site site{kOpenSource, 63};
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenRead(name); }, "open", EINVAL, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenUpdate(name); }, "open", EINVAL, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenWrite(name); }, "open", EINVAL, name.UTF8()));
    EXPECT_EQ(calls.Count(SystemCall::Open), 0);
}

TEST(OSFile, RefusesAFifoThatCameAfterTheLookWithoutWaiting)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.Path("fifo").c_str(), 0600), 0);
    const int before = OpenDescriptors();
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Stat, ENOENT);
    VUKSimUttOSFile file;
    const VUKString name = folder.File("fifo");
    const Site site{kOpenSource, 63};
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenRead(name); }, "open", EINVAL, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenUpdate(name); }, "open", EINVAL, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenWrite(name); }, "open", EINVAL, name.UTF8()));
    EXPECT_EQ(calls.Count(SystemCall::Open), 3);
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(OSFile, RefusesAFolderAndADevice)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    const Site site{kOpenSource, 63};
    const VUKString name = folder.File("");
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenRead(name); }, "open", EISDIR, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenWrite(name); }, "open", EISDIR, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenRead("/dev/null"); }, "open", EINVAL, "/dev/null"));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenUpdate("/dev/null"); }, "open", EINVAL, "/dev/null"));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenWrite("/dev/null"); }, "open", EINVAL, "/dev/null"));
}

// The descriptor of the file that is open, as its reads use it.
int DescriptorOf(VUKSimUttOSFile& file, ScriptedSystemCalls& calls)
{
    calls.Forget();
    char byte;
    EXPECT_LE(file.ReadAtomic(0, &byte, 1), 1UL);
    return calls.Calls(SystemCall::Pread).at(0).descriptor;
}

TEST(OSFile, ChildrenThatExecuteAnotherProgramInheritNoDescriptor)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    ScriptedSystemCalls calls;
    const auto check = [&](const auto& open, int access) {
        VUKSimUttOSFile file;
        open(file);
        const int descriptor = DescriptorOf(file, calls);
        EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
        EXPECT_EQ(fcntl(descriptor, F_GETFL) & O_ACCMODE, access);
    };
    check([&](VUKSimUttOSFile& file) { file.OpenRead(name); }, O_RDONLY);
    check([&](VUKSimUttOSFile& file) { file.OpenUpdate(name); }, O_RDWR);
    check([&](VUKSimUttOSFile& file) { file.OpenWrite(name); }, O_RDWR);
    check([&](VUKSimUttOSFile& file) { file.CreateTemporary(name); }, O_RDWR);
    check([&](VUKSimUttOSFile& file) { file.CreateGenerated(name, "", false); }, O_RDWR);
}

TEST(OSFile, NeverTakesTheDescriptorOfAStandardStream)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    const int before = OpenDescriptors();
    for (const int stream : {STDIN_FILENO, STDERR_FILENO}) {
        ScriptedSystemCalls calls;
        const int saved = dup(stream);
        close(stream);
        {
            VUKSimUttOSFile file;
            file.OpenUpdate(name);
            EXPECT_EQ(calls.Calls(SystemCall::Fcntl).at(0).descriptor, stream);
            const int descriptor = DescriptorOf(file, calls);
            EXPECT_GT(descriptor, 2);
            EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
            EXPECT_EQ(fcntl(stream, F_GETFD), -1);
        }
        dup2(saved, stream);
        close(saved);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(OSFile, CloseMayBeRepeated)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.Close();
    file.OpenRead(folder.Write("a.sim", "12345"));
    const ScriptedSystemCalls calls;
    file.Close();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.FileName(), folder.File("a.sim"));
    file.Close();
    EXPECT_EQ(calls.Count(SystemCall::Close), 1);
}

TEST(OSFile, EveryUseOfAClosedFileFailsWithoutACall)
{
    const TemporaryFolder folder;
    const std::string name = folder.Path("a.sim");
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    file.Close();
    const ScriptedSystemCalls calls;
    const Site site{kFileSource, 112};
    char buffer[4];
    EXPECT_TRUE(RaisesAt(
        site, [&] { (void)file.FileSize(); }, "measure", EBADF, name));
    EXPECT_TRUE(RaisesAt(
        site, [&] { (void)file.Read(buffer, 4); }, "read", EBADF, name, 0, 4));
    EXPECT_TRUE(RaisesAt(
        site, [&] { (void)file.ReadAtomic(7, buffer, 4); }, "read", EBADF, name, 7, 4));
    EXPECT_TRUE(RaisesAt(
        site, [&] { (void)file.ReadAtomic(9223372036854775808ULL, buffer, 0); }, "read", EBADF,
        name, 9223372036854775808ULL, 0));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.WriteAtomic(7, "1234", 4); }, "write", EBADF, name, 7, 4));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.WriteAtomic(0, nullptr, 0); }, "write", EBADF, name, 0, 0));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.Truncate(3); }, "truncate", EBADF, name, 3));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.Flush(); }, "flush", EBADF, name));
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFile, AClosedFileDoesNotWriteIntoTheOneThatGotItsDescriptor)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile closed;
    closed.OpenUpdate(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    const int descriptor = DescriptorOf(closed, calls);
    closed.Close();
    VUKSimUttOSFile other;
    other.OpenUpdate(folder.Write("b.sim", "abcde"));
    ASSERT_EQ(DescriptorOf(other, calls), descriptor);
    EXPECT_TRUE(RaisesFileError([&] { closed.WriteAtomic(0, "X", 1); }, "write", EBADF));
    EXPECT_EQ(folder.Read("b.sim"), "abcde");
}

TEST(OSFile, RefusesASecondOpenAndKeepsTheFirst)
{
    const TemporaryFolder folder;
    const VUKString other = folder.Write("b.sim", "abcde");
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", "12345"));
    const Site site{kOpenSource, 41};
    const std::string name = folder.Path("b.sim");
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenRead(other); }, "open", EBUSY, name));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenUpdate(other); }, "open", EBUSY, name));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.OpenWrite(other); }, "open", EBUSY, name));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.CreateTemporary(other); }, "create", EBUSY, name));
    EXPECT_TRUE(RaisesAt(
        site, [&] { file.CreateGenerated(other, "x", false); }, "create", EBUSY, name + "x"));
    EXPECT_TRUE(file.ReadOnly());
    EXPECT_EQ(file.FileName(), folder.File("a.sim"));
    EXPECT_EQ(ReadAt(file, 0, 9), "12345");
    EXPECT_EQ(folder.Read("b.sim"), "abcde");
    EXPECT_EQ(folder.Count(), 2);
}

TEST(OSFile, MayBeOpenedAgainByTheNameThatItKeeps)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    file.WriteAtomic(0, "12345", 5);
    file.Close();
    file.OpenRead(file.FileName());
    EXPECT_EQ(ReadAt(file, 0, 9), "12345");
}

TEST(OSFile, GivesItsDescriptorBackWhenItDies)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    const int before = OpenDescriptors();
    {
        VUKSimUttOSFile file;
        file.OpenUpdate(name);
        EXPECT_EQ(OpenDescriptors(), before + 1);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

} // namespace
