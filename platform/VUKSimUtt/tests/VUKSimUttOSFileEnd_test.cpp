// What an OS file makes of the ends that it sees.
#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

namespace {

TEST(OSFileEnd, AReadBeforeTheEndIsNotTakenForTheEnd)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", std::string(131072, 'x'))); // 32 pages
    ASSERT_EQ(ReadAt(file, 0, 1), "x");
    ASSERT_EQ(ReadAt(file, 126976, 1), "x"); // by a call: the last two pages are not covered
    const ScriptedSystemCalls calls;
    EXPECT_EQ(ReadAt(file, 122880, 4096), std::string(4096, 'x'));
    EXPECT_TRUE(calls.Calls().empty());
}

TEST(OSFileEnd, AReadBehindTheEndLastSeenTellsHowLongTheFileHasBecome)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", std::string(4096, 'x')));
    folder.Write("a.sim", std::string(131072, 'y'));
    ASSERT_EQ(ReadAt(file, 126976, 4096), std::string(4096, 'y'));
    const ScriptedSystemCalls calls;
    EXPECT_EQ(ReadAt(file, 122880, 4096), std::string(4096, 'y'));
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 1);
    EXPECT_EQ(calls.Count(SystemCall::Pread), 0);
}

TEST(OSFileEnd, WhatCouldNotBeMappedIsForgottenWhenTheFileIsClosed)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", std::string(131072, 'x'));
    VUKSimUttOSFile file;
    file.OpenRead(name);
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Mmap, ENOMEM);
        ASSERT_EQ(ReadAt(file, 0, 1), "x");
    }
    file.Close();
    file.OpenRead(name);
    const ScriptedSystemCalls calls;
    EXPECT_EQ(ReadAt(file, 0, 1), "x");
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 1);
}

TEST(OSFileEnd, TheLargestSizeOfAllIsLeftToTheSystemToRefuse)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    const VUKString name = folder.Write("a.sim", "12345");
    file.OpenUpdate(name);
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Ftruncate, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 207}, [&] { file.Truncate(9223372036854775807); }, "truncate", ENOSPC,
        name.UTF8(), 9223372036854775807));
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 201}, [&] { file.Truncate(9223372036854775808U); }, "truncate", EFBIG,
        name.UTF8(), 9223372036854775808U));
    EXPECT_EQ(calls.Count(SystemCall::Ftruncate), 1);
}

} // namespace
