#include "VUKSimUttFileUtils.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"

namespace {

TEST(FileUtils, AFileThatIsThereExists)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(VUKSimUttFileUtils::FileExists(folder.Write("a.sim", "")));
    EXPECT_TRUE(VUKSimUttFileUtils::FileExists(folder.File("")));
}

TEST(FileUtils, WhatIsNotThereDoesNotExist)
{
    const TemporaryFolder folder;
    folder.Write("a.sim", "");
    std::filesystem::create_symlink("nowhere", folder.Path("link"));
    EXPECT_FALSE(VUKSimUttFileUtils::FileExists(folder.File("none.sim")));
    EXPECT_FALSE(VUKSimUttFileUtils::FileExists(""));
    EXPECT_FALSE(VUKSimUttFileUtils::FileExists(folder.File("link")));
    EXPECT_FALSE(VUKSimUttFileUtils::FileExists(folder.File("a.sim/b.sim")));
}

TEST(FileUtils, WhatCannotBeLookedUpMayExist)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    for (const int error : {EACCES, EIO, ENOMEM}) {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Stat, error);
        EXPECT_TRUE(VUKSimUttFileUtils::FileExists(name));
        EXPECT_TRUE(VUKSimUttFileUtils::SameFile(name, name));
        EXPECT_FALSE(VUKSimUttFileUtils::SameFile(name, folder.File("b.sim")));
    }
}

TEST(FileUtils, TheSameFileIsKnownByAnyPathAndLink)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    std::filesystem::create_directory(folder.Path("sub"));
    std::filesystem::create_symlink("../a.sim", folder.Path("sub/soft.sim"));
    std::filesystem::create_hard_link(folder.Path("a.sim"), folder.Path("hard.sim"));
    EXPECT_TRUE(VUKSimUttFileUtils::SameFile(name, name));
    EXPECT_TRUE(VUKSimUttFileUtils::SameFile(name, folder.File("sub/../a.sim")));
    EXPECT_TRUE(VUKSimUttFileUtils::SameFile(folder.File("sub/soft.sim"), name));
    EXPECT_TRUE(VUKSimUttFileUtils::SameFile(name, folder.File("hard.sim")));
}

TEST(FileUtils, EqualContentIsNotTheSameFile)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile(folder.Write("a.sim", "12345"),
                                              folder.Write("b.sim", "12345")));
}

TEST(FileUtils, TheSameNumberOnAnotherDeviceIsNotTheSameFile)
{
    const ScriptedSystemCalls calls; // puts the table back
    VUKSimUttSystemCalls::Current().stat = [](const char* path, VUKSimUttFileStatus* status) {
        *status = {};
        status->st_ino = 7;
        status->st_dev = path[0] == '/' ? 1 : 2;
        return 0;
    };
    EXPECT_TRUE(VUKSimUttFileUtils::SameFile("/a", "/b"));
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile("/a", "b"));
}

TEST(FileUtils, IsNotTheSameFileWhenEitherCannotBeLookedUp)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    const VUKString none = folder.File("none.sim");
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile(name, none));
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile(none, name));
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile(none, none));
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile("", ""));
    const VUKString other = folder.File("./a.sim");
    ScriptedSystemCalls calls; // the first look fails, none, then the second
    calls.Script(SystemCall::Stat, {Fails(EIO), Passes(), Passes(), Passes(), Fails(EIO)});
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile(name, other));
    EXPECT_TRUE(VUKSimUttFileUtils::SameFile(name, other));
    EXPECT_FALSE(VUKSimUttFileUtils::SameFile(name, other));
}

TEST(FileUtils, LooksAgainWhenASignalInterrupts)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Stat, {Fails(EINTR), Fails(EINTR), Passes(), Fails(EINTR)});
    EXPECT_TRUE(VUKSimUttFileUtils::FileExists(name));
    EXPECT_TRUE(VUKSimUttFileUtils::SameFile(name, folder.File("./a.sim")));
    EXPECT_EQ(calls.Count(SystemCall::Stat), 6);
}

} // namespace
