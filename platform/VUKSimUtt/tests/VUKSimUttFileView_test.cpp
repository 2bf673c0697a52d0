#include <algorithm>
#include <cerrno>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

// OS files of 64 KiB and more, which are served from memory that is mapped from them.

namespace {

void Resize(const TemporaryFolder& folder, const char* name, long size)
{
    ASSERT_EQ(::truncate(folder.Path(name).c_str(), size), 0);
}

TEST(FileView, ReadsOfALargeFileMakeNoCallsOnceItIsMapped)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(131072)));
    ScriptedSystemCalls calls;
    EXPECT_EQ(ReadAt(file, 0, 8), Pattern(131072).substr(0, 8));
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 1);
    calls.Forget();
    EXPECT_EQ(ReadAt(file, 70000, 5000), Pattern(131072).substr(70000, 5000));
    EXPECT_EQ(ReadAt(file, 126975, 1), Pattern(131072).substr(126975, 1));
    EXPECT_TRUE(calls.Calls().empty());
}

TEST(FileView, FilesBelow64KiBAreNotMapped)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(65535)));
    ScriptedSystemCalls calls;
    EXPECT_EQ(ReadAt(file, 0, 8).size(), 8UL);
    file.WriteAtomic(16, "12345678", 8);
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 0);
}

TEST(FileView, ReadsThatReachTheLastTwoPagesGoThroughCalls)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(69632))); // 17 pages
    EXPECT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    ScriptedSystemCalls calls;
    EXPECT_EQ(ReadAt(file, 65535, 1), Pattern(69632).substr(65535, 1));
    EXPECT_EQ(calls.Count(SystemCall::Pread), 0);
    EXPECT_EQ(ReadAt(file, 65535, 2), Pattern(69632).substr(65535, 2));
    EXPECT_EQ(calls.Count(SystemCall::Pread), 1);
}

TEST(FileView, NoMapIsMadeForNoBytesAtTheEndOfWhatItWouldCover)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(69632))); // 17 pages, of which 16 are covered
    ScriptedSystemCalls calls;
    char untouched = '?';
    EXPECT_EQ(file.ReadAtomic(65536, &untouched, 0), 0UL);
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 0);
    EXPECT_EQ(file.ReadAtomic(65535, &untouched, 0), 0UL);
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 1);
}

TEST(FileView, ReadsAreShortAtTheEndOfAMappedFile)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(100000)));
    EXPECT_EQ(ReadAt(file, 0, 4).size(), 4UL);
    EXPECT_EQ(ReadAt(file, 99990, 20), Pattern(100000).substr(99990));
    EXPECT_EQ(ReadAt(file, 10, 200000), Pattern(100000).substr(10));
    EXPECT_EQ(ReadAt(file, 100000, 1), "");
}

TEST(FileView, AReadBehindTheEndIsNoSignOfALongerFile)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(131072)));
    char untouched[] = "????????";
    EXPECT_EQ(file.ReadAtomic(1048576, untouched, 8), 0UL);
    EXPECT_EQ(file.ReadAtomic(200000, untouched, 8), 0UL);
    EXPECT_STREQ(untouched, "????????");
}

TEST(FileView, WritesInPlaceMakeNoCallAndAreSeenByOthersAtOnce)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
    EXPECT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    ScriptedSystemCalls calls;
    EXPECT_EQ(file.WriteAtomic(5000, "in place", 8), 8UL);
    EXPECT_TRUE(calls.Calls().empty());
    std::string expected = Pattern(131072);
    expected.replace(5000, 8, "in place");
    EXPECT_EQ(folder.Read("a.sim"), expected);
}

TEST(FileView, WritesOfMoreThan16KiBAreOneCall)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
    file.WriteAtomic(0, "1", 1);
    const std::string bytes(16385, 'x');
    ScriptedSystemCalls calls;
    file.WriteAtomic(4096, bytes.data(), 16384);
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 0);
    file.WriteAtomic(4096, bytes.data(), 16385);
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 1);
    EXPECT_EQ(ReadAt(file, 4096, 16386), bytes + Pattern(131072)[4096 + 16385]);
}

TEST(FileView, BytesThatOthersWriteAreSeenAtOnce)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", Pattern(131072));
    VUKSimUttOSFile file;
    VUKSimUttOSFile other;
    file.OpenRead(name);
    other.OpenUpdate(name);
    EXPECT_EQ(ReadAt(file, 5000, 8), Pattern(131072).substr(5000, 8));
    other.WriteAtomic(5000, "by another", 10);
    EXPECT_EQ(ReadAt(file, 5000, 10), "by another");
    other.WriteAtomic(131072, "appended", 8);
    EXPECT_EQ(ReadAt(file, 131072, 10), "appended");
}

TEST(FileView, AWriteBehindTheEndMakesTheFileExactlySoLong)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
    EXPECT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    file.WriteAtomic(131070, "12345", 5);
    EXPECT_EQ(folder.Size("a.sim"), 131075U);
    EXPECT_EQ(folder.Read("a.sim"), Pattern(131070) + "12345");
}

TEST(FileView, AFileThatGrowsIsMappedAgainOnlyWhenItHasDoubled)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
    ScriptedSystemCalls calls;
    std::string all = Pattern(131072);
    for (int step = 0; step < 896; ++step) { // to 1 MiB, 1 KiB at a time
        const std::string more(1024, static_cast<char>('a' + step % 26));
        file.WriteAtomic(all.size(), more.data(), 1024);
        all += more;
        ASSERT_EQ(ReadAt(file, all.size() - 20000, 16), all.substr(all.size() - 20000, 16));
    }
    EXPECT_EQ(calls.Count(SystemCall::Mmap), 3); // at 128, 256 and 512 KiB
    EXPECT_EQ(folder.Read("a.sim"), all);
}

TEST(FileView, AShorterFileIsSeenAsShortAtEveryLength)
{
    const std::string pattern = Pattern(102400); // 25 pages
    std::vector<long> sizes = {0, 1, 100};
    for (long page = 1; page <= 25; ++page) {
        sizes.insert(sizes.end(), {page * 4096 - 1, page * 4096, page * 4096 + 1});
    }
    for (const long size : sizes) {
        if (size > 102400) {
            continue;
        }
        for (const unsigned long position : {0UL, 50UL, 4090UL, 40955UL, 94200UL, 98300UL}) {
            const TemporaryFolder folder;
            VUKSimUttOSFile file;
            file.OpenRead(folder.Write("a.sim", pattern));
            ASSERT_EQ(ReadAt(file, 0, 4), pattern.substr(0, 4));
            Resize(folder, "a.sim", size);
            const std::string left = pattern.substr(0, static_cast<std::size_t>(size));
            const std::string expected = position < left.size() ? left.substr(position, 12) : "";
            ASSERT_EQ(ReadAt(file, position, 12), expected) << size << " bytes, at " << position;
            ASSERT_EQ(ReadAt(file, position, 12), expected) << "again";
        }
    }
}

TEST(FileView, AWriteIntoAFileThatOthersMadeShorterStillReachesIt)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
    ASSERT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    Resize(folder, "a.sim", 10000);
    EXPECT_EQ(file.WriteAtomic(50000, "late", 4), 4UL);
    EXPECT_EQ(folder.Read("a.sim"), Pattern(10000) + std::string(40000, '\0') + "late");
    EXPECT_EQ(ReadAt(file, 49998, 100), std::string(2, '\0') + "late");
}

TEST(FileView, AReadOfWhatOthersCutOffLeavesTheBufferAlone)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(131072)));
    EXPECT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    Resize(folder, "a.sim", 50000);
    char buffer[] = "????????";
    EXPECT_EQ(file.ReadAtomic(100000, buffer, 8), 0UL);
    EXPECT_STREQ(buffer, "????????");
    EXPECT_EQ(file.ReadAtomic(49996, buffer, 8), 4UL);
    EXPECT_STREQ(buffer, (Pattern(50000).substr(49996) + "????").c_str());
}

TEST(FileView, WhatOthersCutOffBeforeTheFirstReadIsNotRead)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(131072)));
    Resize(folder, "a.sim", 100);
    EXPECT_EQ(ReadAt(file, 90, 20), Pattern(100).substr(90));
    EXPECT_EQ(ReadAt(file, 60000, 4), "");
}

TEST(FileView, AFileThatOthersMadeLongAgainIsReadAsItIsNow)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", Pattern(131072)));
    ASSERT_EQ(ReadAt(file, 60000, 4).size(), 4UL);
    Resize(folder, "a.sim", 100);
    Resize(folder, "a.sim", 131072);
    EXPECT_EQ(ReadAt(file, 90, 20), Pattern(100).substr(90) + std::string(10, '\0'));
    EXPECT_EQ(ReadAt(file, 60000, 4), std::string(4, '\0'));
}

TEST(FileView, OwnTruncationIsFollowed)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
    ASSERT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    file.Truncate(70000);
    EXPECT_EQ(ReadAt(file, 69990, 20), Pattern(70000).substr(69990));
    file.Truncate(131072);
    EXPECT_EQ(ReadAt(file, 69998, 4), Pattern(70000).substr(69998) + std::string(2, '\0'));
    EXPECT_EQ(folder.Size("a.sim"), 131072U);
}

TEST(FileView, AReadOnlyFileIsNotWrittenInPlace)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", Pattern(131072));
    VUKSimUttOSFile file;
    file.OpenRead(name);
    ASSERT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 118}, [&] { file.WriteAtomic(16, "x", 1); }, "write", EBADF, name.UTF8(), 16,
        1));
    EXPECT_EQ(folder.Read("a.sim"), Pattern(131072));
}

// Reads, writes, growth and truncation, by this object and by another, against an array in memory.
TEST(FileView, AnyAccessesInAnyOrderAgreeWithAPlainArray)
{
    std::mt19937 random(20261121);
    const auto draw = [&](std::size_t most) { return random() % (most + 1); };
    for (int round = 0; round < 20; ++round) {
        const TemporaryFolder folder;
        std::string expected = Pattern(65536 + draw(65536));
        VUKSimUttOSFile file;
        VUKSimUttOSFile other;
        file.OpenUpdate(folder.Write("a.sim", expected));
        other.OpenUpdate(folder.File("a.sim"));
        for (int step = 0; step < 400; ++step) {
            const std::size_t kind = draw(99);
            VUKSimUttOSFile& one = draw(3) == 0 ? other : file;
            const std::size_t position = draw(expected.size() + 100);
            const std::size_t length = draw(kind % 3 == 0 ? 20000 : 40);
            if (kind < 2) {
                expected.resize(draw(300000), '\0');
                one.Truncate(expected.size());
            } else if (kind < 40) {
                const std::string bytes(length, static_cast<char>(step));
                one.WriteAtomic(position, bytes.data(), bytes.size());
                if (length > 0) {
                    expected.resize(std::max(expected.size(), position + length), '\0');
                    expected.replace(position, length, bytes);
                }
            } else {
                const std::string there =
                    position < expected.size() ? expected.substr(position, length) : "";
                ASSERT_EQ(ReadAt(one, position, length), there) << round << ", " << step;
            }
        }
        ASSERT_EQ(folder.Read("a.sim"), expected) << round;
    }
}

// In a child with a mount of its own: 0 when the full disk was met as it must be, 77 when this
// process may mount nothing.
int FillSmallDisk(const TemporaryFolder& folder)
{
    const uid_t user = ::getuid();
    if (::unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) != 0 ||
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", folder.Path("").c_str(), "tmpfs", 0, "size=128k") != 0) {
        return 77;
    }
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("a.sim"));
    file.Truncate(1048576); // holes
    unsigned long long position = 0;
    try {
        for (; position < 1000000; position += 4096) {
            file.WriteAtomic(position, "x", 1);
        }
    } catch (const VUKSimUttOSFileException& failure) {
        const bool full = failure.ErrorNumber() == ENOSPC && failure.Position() == position;
        const bool well = position > 65536 && ReadAt(file, 4096, 1) == "x";
        return full && well ? 0 : 1;
    }
    return 2; // it was never full
}

TEST(FileView, AFullDiskIsReportedByTheWriteThatMeetsIt)
{
    const TemporaryFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(FillSmallDisk(folder));
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    if (WEXITSTATUS(status) == 77) {
        GTEST_SKIP() << "this process may not mount a small disk";
    }
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(FileView, AChildProcessReadsAndWritesTheSameBytes)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", Pattern(131072)));
    ASSERT_EQ(ReadAt(file, 0, 1).size(), 1UL);
    const pid_t child = ::fork();
    if (child == 0) {
        file.WriteAtomic(300, "child", 5);
        ::_exit(ReadAt(file, 8192, 4) == Pattern(8196).substr(8192) ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(ReadAt(file, 300, 5), "child");
}

TEST(FileView, AThousandFilesAreMappedAtOnce)
{
    const TemporaryFolder folder;
    std::vector<VUKSimUttOSFile> files(1000);
    rlimit limit;
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_max < 1100) {
        GTEST_SKIP() << "this process may open only " << limit.rlim_max << " files";
    }
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string name = "f" + std::to_string(i);
        files[i].OpenUpdate(folder.Write(name, ""));
        files[i].Truncate(81920);
        files[i].WriteAtomic(i, name.data(), 3);
    }
    Resize(folder, "f500", 0);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string name = "f" + std::to_string(i);
        EXPECT_EQ(ReadAt(files[i], i, 2), i == 500 ? "" : name.substr(0, 2));
    }
}

} // namespace
