#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

namespace {

// What one flush asked of the system, a name a call; opened folders by their path.
std::vector<std::string> FlushCalls(VUKSimUttOSFile& file, ScriptedSystemCalls& calls)
{
    calls.Forget();
    file.Flush();
    std::vector<std::string> found;
    for (const auto& made : calls.Calls()) {
        switch (made.call) {
        case SystemCall::Open:
            found.push_back("open " + made.path);
            break;
        case SystemCall::Close:
            found.emplace_back("close");
            break;
        case SystemCall::Fdatasync:
            found.emplace_back("fdatasync");
            break;
        case SystemCall::Fsync:
            found.emplace_back("fsync");
            break;
        case SystemCall::Syncfs:
            found.emplace_back("syncfs");
            break;
        default:
            found.emplace_back("another");
        }
    }
    return found;
}

using Names = std::vector<std::string>;

TEST(OSFileFlush, OfACreatedFileSyncsItsFolderOnce)
{
    const TemporaryFolder folder;
    const Names first = {"fdatasync", "open " + folder.Path(""), "fsync", "close"};
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    EXPECT_EQ(FlushCalls(file, calls), first);
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
    file.Close();
    file.CreateGenerated(folder.File("run"), ".sim", false);
    EXPECT_EQ(FlushCalls(file, calls), first);
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
}

TEST(OSFileFlush, SyncsTheFileAndTheFolderAndNothingElse)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    file.WriteAtomic(0, "12345", 5);
    file.Flush();
    ASSERT_EQ(calls.Count(SystemCall::Fdatasync), 1);
    EXPECT_EQ(calls.Calls(SystemCall::Fdatasync)[0].descriptor,
              calls.Calls(SystemCall::Pwrite).at(0).descriptor);
    ASSERT_EQ(calls.Count(SystemCall::Fsync), 1);
    EXPECT_EQ(calls.Calls(SystemCall::Fsync)[0].descriptor,
              calls.Calls(SystemCall::Close).at(0).descriptor);
}

TEST(OSFileFlush, OfAFileThatWasThereSyncsTheFileAlone)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
    file.Close();
    file.OpenWrite(name);
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
}

TEST(OSFileFlush, OfAFileCreatedEarlierByTheSameObjectDoesNotCountForTheNext)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("b.sim"));
    file.Close();
    file.OpenUpdate(name);
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
}

TEST(OSFileFlush, OfATemporaryFileLeavesItsFolder)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
}

TEST(OSFileFlush, OfAReadOnlyFileDoesNothing)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.OpenRead(name);
    EXPECT_EQ(FlushCalls(file, calls), Names{});
}

TEST(OSFileFlush, FindsTheFolderFromAnyWorkingFolder)
{
    const TemporaryFolder folder;
    const TemporaryFolder other;
    const WorkingFolder before(folder.Path(""));
    const std::string path = std::filesystem::current_path().string();
    ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    file.OpenWrite("a.sim");
    EXPECT_EQ(file.FileName(), VUKString("a.sim"));
    std::filesystem::current_path(other.Path(""));
    EXPECT_EQ(FlushCalls(file, calls),
              (Names{"fdatasync", "open " + path + "/", "fsync", "close"}));
}

TEST(OSFileFlush, TakesTheWorkingFolderWhenItHasNoName)
{
    const TemporaryFolder folder;
    const WorkingFolder before(folder.Path(""));
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Getcwd, ERANGE);
    VUKSimUttOSFile file;
    file.OpenWrite("a.sim");
    EXPECT_EQ(FlushCalls(file, calls), (Names{"fdatasync", "open .", "fsync", "close"}));
}

TEST(OSFileFlush, TakesTheWorkingFolderWhenItsNameIsTooLongToOpen)
{
    const TemporaryFolder folder;
    const WorkingFolder before(folder.Path(""));
    ScriptedSystemCalls calls;
    VUKSimUttSystemCalls::Current().getcwd = [](char* buffer, std::size_t length) {
        std::memset(buffer, 'x', length);
        buffer[0] = '/';
        buffer[4090] = '\0'; // with "/a.sim" one byte too many for the system
        return buffer;
    };
    VUKSimUttOSFile file;
    file.OpenWrite("a.sim");
    EXPECT_EQ(FlushCalls(file, calls), (Names{"fdatasync", "open .", "fsync", "close"}));
    file.Close();
    file.OpenWrite("b");
    const std::string name = "open /" + std::string(4089, 'x') + "/";
    EXPECT_EQ(FlushCalls(file, calls), (Names{"fdatasync", name, "syncfs"}));
}

TEST(OSFileFlush, SyncsTheWholeFileSystemWhenTheFolderCannotBeOpened)
{
    const TemporaryFolder folder;
    for (const int reason : {EACCES, EMFILE, ENOENT}) {
        ScriptedSystemCalls calls;
        VUKSimUttOSFile file;
        file.CreateGenerated(folder.File("run"), ".sim", false);
        calls.Script(SystemCall::Open, {Fails(reason)});
        EXPECT_EQ(FlushCalls(file, calls),
                  (Names{"fdatasync", "open " + folder.Path(""), "syncfs"}));
        EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
    }
}

TEST(OSFileFlush, SyncsTheWholeFileSystemWhereAFolderCannotBeSyncedAlone)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fsync, {Fails(EINVAL)});
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    EXPECT_EQ(FlushCalls(file, calls),
              (Names{"fdatasync", "open " + folder.Path(""), "fsync", "syncfs", "close"}));
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
}

TEST(OSFileFlush, OnceFailedFailsForAsLongAsTheFileIsOpen)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fdatasync, {Fails(EIO)});
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 229}, [&] { file.Flush(); }, "flush", EIO, name.UTF8()));
    calls.Forget();
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(RaisesAt(
            {kFileSource, 223}, [&] { file.Flush(); }, "flush", EIO, name.UTF8()));
        file.WriteAtomic(0, "x", 1);
    }
    EXPECT_EQ(calls.Count(SystemCall::Fdatasync), 0);
    file.Close();
    file.OpenUpdate(name);
    EXPECT_EQ(FlushCalls(file, calls), Names{"fdatasync"});
}

TEST(OSFileFlush, AFailedSyncOfTheFolderStaysFailed)
{
    const TemporaryFolder folder;
    const VUKString name = folder.File("a.sim");
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fsync, {Fails(EIO)});
    VUKSimUttOSFile file;
    file.OpenWrite(name);
    const int before = OpenDescriptors();
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 236}, [&] { file.Flush(); }, "flush", EIO, name.UTF8()));
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 223}, [&] { file.Flush(); }, "flush", EIO, name.UTF8()));
    EXPECT_EQ(calls.Count(SystemCall::Syncfs), 0);
}

TEST(OSFileFlush, AFailedSyncOfTheWholeFileSystemStaysFailed)
{
    const TemporaryFolder folder;
    const VUKString name = folder.File("a.sim");
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fsync, {Fails(EINVAL)});
    calls.Script(SystemCall::Syncfs, {Fails(ENOSPC)});
    VUKSimUttOSFile file;
    file.OpenWrite(name);
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 236}, [&] { file.Flush(); }, "flush", ENOSPC, name.UTF8()));
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 223}, [&] { file.Flush(); }, "flush", ENOSPC, name.UTF8()));
}

} // namespace
