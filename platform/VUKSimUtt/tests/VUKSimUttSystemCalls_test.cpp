#include "VUKSimUttSystemCalls.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

namespace {

TEST(SystemCalls, StartAsTheSystemsOwn)
{
    const VUKSimUttSystemCalls& current = VUKSimUttSystemCalls::Current();
    const VUKSimUttSystemCalls& system = VUKSimUttSystemCalls::System();
    EXPECT_EQ(current.open, system.open);
    EXPECT_EQ(current.close, system.close);
    EXPECT_EQ(current.fcntl, system.fcntl);
    EXPECT_EQ(current.pread, system.pread);
    EXPECT_EQ(current.pwrite, system.pwrite);
    EXPECT_EQ(current.ftruncate, system.ftruncate);
    EXPECT_EQ(current.fstat, system.fstat);
    EXPECT_EQ(current.stat, system.stat);
    EXPECT_EQ(current.fdatasync, system.fdatasync);
    EXPECT_EQ(current.fsync, system.fsync);
    EXPECT_EQ(current.syncfs, system.syncfs);
    EXPECT_EQ(current.unlink, system.unlink);
    EXPECT_EQ(current.getcwd, system.getcwd);
}

// Each member does what its name says, so that no two are mixed up.
TEST(SystemCalls, ReachTheSystem)
{
    const TemporaryFolder folder;
    const std::string path = folder.Path("a.sim");
    const VUKSimUttSystemCalls& system = VUKSimUttSystemCalls::System();
    const int descriptor = system.open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0640);
    ASSERT_NE(descriptor, -1);
    EXPECT_EQ(system.pwrite(descriptor, "12345", 5, 2), 5);
    char buffer[3];
    EXPECT_EQ(system.pread(descriptor, buffer, 3, 3), 3);
    EXPECT_EQ(std::string(buffer, 3), "234");
    EXPECT_EQ(system.ftruncate(descriptor, 4), 0);
    VUKSimUttFileStatus byDescriptor;
    VUKSimUttFileStatus byName;
    ASSERT_EQ(system.fstat(descriptor, &byDescriptor), 0);
    ASSERT_EQ(system.stat(path.c_str(), &byName), 0);
    EXPECT_EQ(byDescriptor.st_size, 4);
    EXPECT_EQ(byDescriptor.st_ino, byName.st_ino);
    EXPECT_EQ(system.fdatasync(descriptor), 0);
    EXPECT_EQ(system.fsync(descriptor), 0);
    EXPECT_EQ(system.syncfs(descriptor), 0);
    const int copy = system.fcntl(descriptor, F_DUPFD_CLOEXEC, 100);
    EXPECT_GE(copy, 100);
    EXPECT_EQ(system.close(copy), 0);
    EXPECT_EQ(system.close(descriptor), 0);
    EXPECT_EQ(system.close(descriptor), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(system.unlink(path.c_str()), 0);
    EXPECT_FALSE(folder.Has("a.sim"));
    char here[4096];
    char expected[4096];
    EXPECT_STREQ(system.getcwd(here, sizeof here), getcwd(expected, sizeof expected));
}

TEST(SystemCalls, AReplacedMemberServesTheOSFiles)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", "12345"));
    VUKSimUttSystemCalls::Current().pread = [](int, void* buffer, std::size_t, off_t) {
        *static_cast<char*>(buffer) = 'R';
        return ssize_t{1};
    };
    char buffer[2];
    const unsigned long count = file.ReadAtomic(0, buffer, 2);
    VUKSimUttSystemCalls::Current() = VUKSimUttSystemCalls::System();
    EXPECT_EQ(count, 2UL);
    EXPECT_EQ(std::string(buffer, 2), "RR");
}

} // namespace
