#include <cerrno>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

// What many writes in place do to the pages of a file that is served from memory: of 4 MiB, which
// are 1,024 pages, 1,023 are covered, and 31 writes are one in 32 of them.

namespace {

constexpr unsigned long kSize = 4194304;

// KiB of the file that the page tables of this process hold; -1 when it is not mapped.
int MappedKiB(const std::string& path)
{
    std::ifstream maps("/proc/self/smaps");
    std::string line;
    bool inside = false;
    while (std::getline(maps, line)) {
        inside = inside || line.ends_with(path);
        if (inside && line.starts_with("Rss:")) {
            return std::stoi(line.substr(4));
        }
    }
    return -1;
}

class FileViewWrites : public testing::Test
{
protected:
    // Written a page at a time: what is written at once may be one folio, and comes back at once.
    FileViewWrites()
    {
        VUKSimUttOSFile made;
        made.OpenWrite(mFolder.File("a.sim"));
        const std::string page(4096, 'a');
        for (unsigned long at = 0; at < kSize; at += 4096) {
            made.WriteAtomic(at, page.data(), 4096);
        }
        mFile.OpenUpdate(mFolder.File("a.sim"));
        for (unsigned long at = 0; at < kSize; at += 4096) {
            EXPECT_EQ(ReadAt(mFile, at, 1), "a");
        }
    }

    // Each to a page of its own.
    void WriteInPlace(unsigned long writes, unsigned long length)
    {
        const std::string bytes(length, 'b');
        for (unsigned long i = 0; i < writes; ++i) {
            mFile.WriteAtomic(i * 65536, bytes.data(), length);
        }
    }

    [[nodiscard]] int Mapped() const { return MappedKiB(mFolder.Path("a.sim")); }

    TemporaryFolder mFolder;
    VUKSimUttOSFile mFile;
};

TEST_F(FileViewWrites, TakeThePagesOutOfTheMapWhenOneInThirtyTwoWasWritten)
{
    EXPECT_GE(Mapped(), 4092);
    WriteInPlace(30, 8);
    EXPECT_GE(Mapped(), 4092);
    WriteInPlace(1, 8);
    EXPECT_LE(Mapped(), 1024); // what the last write brought back
}

TEST_F(FileViewWrites, TakeThePagesOutOnceBetweenSyncs)
{
    ScriptedSystemCalls calls;
    WriteInPlace(31, 8);
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 1);
    for (int i = 0; i < 100; ++i) {
        WriteInPlace(31, 8);
    }
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 1);
    mFile.Flush();
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 1);
    WriteInPlace(30, 8);
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 1);
    WriteInPlace(1, 8);
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 2);
}

TEST_F(FileViewWrites, AreCountedAnewBehindEachSync)
{
    ScriptedSystemCalls calls;
    for (int i = 0; i < 3; ++i) {
        WriteInPlace(30, 8);
        mFile.Flush();
    }
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 0);
}

TEST_F(FileViewWrites, AreCountedWhateverTheirLength)
{
    ScriptedSystemCalls calls;
    WriteInPlace(30, 5000);
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 0);
    WriteInPlace(1, 5000);
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 1);
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 0);
}

TEST_F(FileViewWrites, DoNotCountWhenCallsMakeThem)
{
    ScriptedSystemCalls calls;
    for (int i = 0; i < 100; ++i) {
        mFile.WriteAtomic(kSize - 8, "the end.", 8);
    }
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 100);
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 0);
}

TEST_F(FileViewWrites, OfASmallFileAreSixteenBeforeItsPagesAreTakenOut)
{
    VUKSimUttOSFile small;
    small.OpenUpdate(mFolder.Write("b.sim", std::string(65536, 'a')));
    ScriptedSystemCalls calls;
    for (int i = 0; i < 15; ++i) {
        small.WriteAtomic(4096, "b", 1);
    }
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 0);
    small.WriteAtomic(4096, "b", 1);
    EXPECT_EQ(calls.Count(SystemCall::Madvise), 1);
}

TEST_F(FileViewWrites, KeepEveryByteAndGoOnInPlace)
{
    for (const bool refused : {false, true}) {
        ScriptedSystemCalls calls;
        if (refused) {
            calls.FailAlways(SystemCall::Madvise, ENOMEM);
        }
        WriteInPlace(31, 8);
        EXPECT_EQ(calls.Count(SystemCall::Madvise), 1);
        EXPECT_EQ(ReadAt(mFile, 65530, 20), "aaaaaabbbbbbbbaaaaaa");
        EXPECT_EQ(mFile.WriteAtomic(65534, "in place", 8), 8UL);
        EXPECT_EQ(calls.Count(SystemCall::Pread) + calls.Count(SystemCall::Pwrite), 0);
        EXPECT_EQ(mFolder.Read("a.sim").substr(65530, 20), "aaaain placebbaaaaaa");
        mFile.WriteAtomic(65530, "aaaaaa", 6);
        mFile.Flush();
    }
}

} // namespace
