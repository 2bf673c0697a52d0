#include <cerrno>
#include <string>

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttFileView.h"
#include "VUKSimUttOSFile.h"

// When an OS file is mapped, when its map ends, and what becomes of it where it cannot be.

namespace {

TEST(FileViewMap, AMapEndsOnceWhoeverClosesTheFile)
{
    const TemporaryFolder folder;
    ScriptedSystemCalls calls;
    {
        VUKSimUttOSFile file;
        file.OpenRead(folder.Write("a.sim", Pattern(131072)));
        ASSERT_EQ(ReadAt(file, 0, 1).size(), 1UL);
        file.Close();
        EXPECT_EQ(calls.Count(SystemCall::Munmap), 1);
        file.OpenRead(folder.File("a.sim"));
    }
    EXPECT_EQ(calls.Count(SystemCall::Munmap), 1);
}

TEST(FileViewMap, AClosedFileIsNotReadFromMemory)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", Pattern(131072));
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    ASSERT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    file.Close();
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 112}, [&] { static_cast<void>(ReadAt(file, 0, 4)); }, "read", EBADF,
        name.UTF8(), 0, 4));
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 112}, [&] { file.WriteAtomic(0, "x", 1); }, "write", EBADF, name.UTF8(), 0,
        1));
}

TEST(FileViewMap, WithoutAMapCallsDoTheWork)
{
    const TemporaryFolder folder;
    for (const SystemCall failing : {SystemCall::Mmap, SystemCall::Sigaction}) {
        VUKSimUttOSFile file;
        file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
        ScriptedSystemCalls calls;
        calls.FailAlways(failing, ENOMEM);
        EXPECT_EQ(ReadAt(file, 70000, 4), Pattern(131072).substr(70000, 4));
        EXPECT_EQ(ReadAt(file, 70000, 4), Pattern(131072).substr(70000, 4));
        file.WriteAtomic(8, "by call", 7);
        EXPECT_EQ(calls.Count(SystemCall::Pread), 2);
        EXPECT_EQ(calls.Count(SystemCall::Pwrite), 1);
        EXPECT_EQ(calls.Count(failing), 1); // a map that cannot be had is not asked for again
        EXPECT_EQ(calls.Count(SystemCall::Mmap),
                  calls.Count(SystemCall::Munmap) + (failing == SystemCall::Mmap ? 1 : 0));
        EXPECT_EQ(folder.Read("a.sim").substr(8, 7), "by call");
    }
}

TEST(FileViewMap, MapsNothingBelow64KiBNorBeyond32TiB)
{
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Mmap, ENOMEM);
    VUKSimUttFileView view;
    for (const unsigned long long size : {0ULL, 65535ULL, 35184372088833ULL, ~0ULL}) {
        EXPECT_FALSE(view.Map(-1, false, size));
        EXPECT_EQ(calls.Count(SystemCall::Mmap), 0) << size;
    }
    EXPECT_FALSE(view.Map(-1, false, 65536));
    EXPECT_FALSE(view.Map(-1, false, 35184372088832));
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 2);
}

TEST(FileViewMap, AnAddressSpaceWithoutRoomIsNoHindrance)
{
    const TemporaryFolder folder;
    const VUKString name = folder.File("a.sim");
    folder.Write("a.sim", "");
    ASSERT_EQ(::truncate(folder.Path("a.sim").c_str(), 1L << 40), 0); // sparse
    VUKSimUttOSFile file;
    file.OpenUpdate(name);
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit limit = {.rlim_cur = 1UL << 38, .rlim_max = 1UL << 38};
        bool well = ::setrlimit(RLIMIT_AS, &limit) == 0;
        well = well && file.WriteAtomic(1UL << 39, "far out", 7) == 7;
        ::_exit(well && ReadAt(file, (1UL << 39) + 4, 3) == "out" ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

} // namespace
