#include <cerrno>
#include <filesystem>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttFileUtils.h"
#include "VUKSimUttOSFile.h"

namespace {

// Whether `name` is `before`, this process, a second, a call and `behind`.
bool IsUnique(const VUKString& name, const std::string& before, const std::string& behind)
{
    std::ostringstream process;
    process << std::hex << ::getpid();
    const std::string text = name.UTF8();
    const std::string begin = before + "-" + process.str() + "-";
    return text.starts_with(begin) && text.ends_with(behind) &&
           std::regex_match(text.substr(begin.size(), text.size() - begin.size() - behind.size()),
                            std::regex("[0-9a-f]{8}-[0-9a-f]+"));
}

mode_t ModeOf(const VUKString& name)
{
    struct stat status;
    return stat(name.UTF8(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

TEST(OSFileCreateTemporary, MakesAnEmptyFileOfAUniqueNameToReadAndWrite)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    EXPECT_TRUE(IsUnique(file.FileName(), folder.Path("scratch"), ""));
    EXPECT_TRUE(std::filesystem::exists(file.FileName().UTF8()));
    EXPECT_FALSE(file.ReadOnly());
    EXPECT_EQ(file.FileSize(), 0ULL);
    file.WriteAtomic(0, "12345", 5);
    EXPECT_EQ(ReadAt(file, 1, 3), "234");
}

TEST(OSFileCreateTemporary, IsForItsUserAlone)
{
    const TemporaryFolder folder;
    const mode_t before = umask(0);
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    umask(before);
    EXPECT_EQ(ModeOf(file.FileName()), 0600U);
}

TEST(OSFileCreateTemporary, IsRemovedWhenItCloses)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    EXPECT_EQ(folder.Count(), 1);
    file.Close();
    EXPECT_EQ(folder.Count(), 0);
}

TEST(OSFileCreateTemporary, IsRemovedWhenItDies)
{
    const TemporaryFolder folder;
    std::optional<VUKSimUttOSFile> file(std::in_place);
    file->CreateTemporary(folder.File("scratch"));
    EXPECT_EQ(folder.Count(), 1);
    file.reset();
    EXPECT_EQ(folder.Count(), 0);
}

TEST(OSFileCreateTemporary, TheFileOpenedNextIsNotRemoved)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    file.Close();
    file.OpenWrite(folder.File("kept.sim"));
    file.Close();
    EXPECT_TRUE(folder.Has("kept.sim"));
}

TEST(OSFileCreateTemporary, MayBeGoneBeforeItCloses)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    ASSERT_EQ(unlink(file.FileName().UTF8()), 0);
    file.Close();
    EXPECT_FALSE(file.IsOpen());
}

TEST(OSFileCreateTemporary, LeavesAnotherFileThatTookItsName)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    const std::string name = file.FileName().UTF8();
    std::filesystem::rename(name, folder.Path("kept"));
    folder.Write(std::filesystem::path(name).filename().string(), "of somebody else");
    file.Close();
    EXPECT_TRUE(folder.Has("kept"));
    EXPECT_TRUE(std::filesystem::exists(name));
}

TEST(OSFileCreateTemporary, LeavesAFileOfItsNumberOnAnotherDevice)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateTemporary(folder.File("scratch"));
    const ScriptedSystemCalls calls; // puts the table back
    VUKSimUttSystemCalls::Current().stat = [](const char* path, VUKSimUttFileStatus* status) {
        const int result = ::stat(path, status);
        ++status->st_dev;
        return result;
    };
    file.Close();
    EXPECT_EQ(folder.Count(), 1);
}

TEST(OSFileCreateTemporary, IsRemovedFromAnyWorkingFolder)
{
    const TemporaryFolder folder;
    const TemporaryFolder other;
    const WorkingFolder before(folder.Path(""));
    VUKSimUttOSFile file;
    file.CreateTemporary("scratch");
    EXPECT_TRUE(IsUnique(file.FileName(), "scratch", ""));
    EXPECT_EQ(folder.Count(), 1);
    std::filesystem::current_path(other.Path(""));
    file.Close();
    EXPECT_EQ(folder.Count(), 0);
}

TEST(OSFileCreateGenerated, MakesAFileThatStays)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateGenerated(folder.File("run"), ".sim", false);
    EXPECT_TRUE(IsUnique(file.FileName(), folder.Path("run"), ".sim"));
    EXPECT_FALSE(file.ReadOnly());
    file.WriteAtomic(0, "12345", 5);
    file.Close();
    VUKSimUttOSFile again;
    again.OpenRead(file.FileName());
    EXPECT_EQ(ReadAt(again, 0, 9), "12345");
}

TEST(OSFileCreateGenerated, HasTheModeThatTheUserAskedFor)
{
    const TemporaryFolder folder;
    const mode_t before = umask(0027);
    VUKSimUttOSFile file;
    file.CreateGenerated(folder.File("run"), ".sim", false);
    umask(before);
    EXPECT_EQ(ModeOf(file.FileName()), 0640U);
}

TEST(OSFileCreateGenerated, GoesWhenItClosesIfAskedTo)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.CreateGenerated(folder.File("run"), ".sim", true);
    EXPECT_EQ(folder.Count(), 1);
    file.Close();
    EXPECT_EQ(folder.Count(), 0);
}

TEST(OSFileCreateGenerated, NoTwoHaveTheSameName)
{
    const TemporaryFolder folder;
    std::set<std::string> names;
    for (int i = 0; i < 200; ++i) {
        VUKSimUttOSFile file;
        file.CreateGenerated(folder.File("run"), ".sim", false);
        names.insert(file.FileName().UTF8());
    }
    EXPECT_EQ(names.size(), 200U);
    EXPECT_EQ(folder.Count(), 200);
}

TEST(OSFileCreateGenerated, NamesDifferFromProcessToProcess)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    const pid_t child = ::fork();
    if (child == 0) {
        file.CreateGenerated(folder.File("child"), ".sim", false);
        ::_exit(0);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    file.CreateGenerated(folder.File("parent"), ".sim", false);
    const std::string unique =
        std::string(file.FileName().UTF8()).substr(folder.Path("parent").size());
    EXPECT_EQ(folder.Count(), 2);
    EXPECT_FALSE(folder.Has("child" + unique));
}

TEST(OSFileCreateGenerated, StepsOverNamesInUse)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Open, {Fails(EEXIST), Fails(EEXIST)});
    VUKSimUttOSFile file;
    file.CreateGenerated(folder.File("run"), ".sim", false);
    const auto opens = calls.Calls(SystemCall::Open);
    ASSERT_EQ(opens.size(), 3U);
    EXPECT_NE(opens[0].path, opens[1].path);
    EXPECT_NE(opens[1].path, opens[2].path);
    EXPECT_EQ(opens[2].path, file.FileName().UTF8());
    for (const auto& open : opens) {
        EXPECT_EQ(open.flags & (O_CREAT | O_EXCL), O_CREAT | O_EXCL);
    }
}

TEST(OSFileCreateGenerated, GivesUpAfterAHundredNamesInUse)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Open, EEXIST);
    VUKSimUttOSFile file;
    EXPECT_TRUE(Raises<VUKSimUttOSFileException>(
        [&] { file.CreateGenerated(folder.File("run"), ".sim", false); }, kOpenSource, 96));
    EXPECT_EQ(calls.Count(SystemCall::Open), 100);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(folder.Count(), 0);
}

TEST(OSFileCreateGenerated, FailsWhereThereIsNoFolder)
{
    const TemporaryFolder folder;
    const ScriptedSystemCalls calls;
    VUKSimUttOSFile file;
    const auto create = [&] { file.CreateGenerated(folder.File("none/run"), ".sim", false); };
    EXPECT_TRUE(RaisesFileError(create, "create", ENOENT));
    EXPECT_EQ(calls.Count(SystemCall::Open), 1);
    EXPECT_STREQ(file.FileName().UTF8(), "");
}

TEST(OSFileCreateGenerated, LeavesNoFileWhenNoDescriptorAboveTheStandardStreamsIsLeft)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fcntl, {Fails(EMFILE)});
    const int before = OpenDescriptors();
    const int saved = dup(STDIN_FILENO);
    ASSERT_GT(saved, 2);
    close(STDIN_FILENO);
    VUKSimUttOSFile file;
    const auto create = [&] { file.CreateGenerated(folder.File("run"), ".sim", false); };
    EXPECT_TRUE(Raises<VUKSimUttOSFileException>(create, kOpenSource, 103));
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
    dup2(saved, STDIN_FILENO);
    close(saved);
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(folder.Count(), 0);
}

} // namespace
