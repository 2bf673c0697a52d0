#include "FuzzSupport.h"

#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimUttAssert.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

// What is read of each pool, so that a small file with a huge claim costs little time.
constexpr unsigned long kMostBytes = 4096;
constexpr int kMostRecords = 64;

[[noreturn]] void Give(const char* what)
{
    std::perror(what);
    std::abort();
}

// A few bytes of a damaged header let a writable file grow to any size, all of it holes, and its
// content then takes the memory that its size allows: no file grows beyond 64 MiB here.
void BoundFiles()
{
    static const bool bound = [] {
        const rlimit limit = {.rlim_cur = 67108864, .rlim_max = 67108864};
        return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }();
    if (!bound) {
        Give("setrlimit");
    }
}

void FollowLocators(const VUKSimRpm_Locator& start)
{
    VUKSimRpm_BStreamReadLocator stream(start, 0, 64);
    for (int i = 0; i < kMostRecords; ++i) {
        VUKSimRpm_Locator locator;
        if (!Survives([&] { locator.InternalizeImpl(stream); })) {
            return;
        }
        Survives([&] {
            char bytes[16];
            static_cast<void>(locator.Read(sizeof bytes, bytes));
            static_cast<void>(locator.GetGUID());
        });
    }
}

void ReadStrings(const VUKSimRpm_Locator& start)
{
    VUKSimRpm_BStreamReadLocator stream(start, 0, 64);
    VUKString text;
    for (int i = 0; i < kMostRecords && Survives([&] { stream.Read(text); }); ++i) {
    }
}

void WalkPool(const VUKSimRpm_Pool& pool)
{
    static_cast<void>(pool.GetGUID());
    static_cast<void>(pool.DirectorySizeBytes());
    const VUKSimRpm_Locator start = pool.Start();
    char bytes[kMostBytes];
    const auto wanted = std::min<unsigned long long>(pool.Length(), sizeof bytes);
    static_cast<void>(start.Read(wanted, bytes));
    static_cast<void>(pool.End().Read(sizeof bytes, bytes));
    FollowLocators(start);
    ReadStrings(start);
}
} // namespace

MemoryFile::MemoryFile(const std::uint8_t* bytes, std::size_t size)
    : mDescriptor(memfd_create("fuzz", MFD_CLOEXEC)),
      mName("/proc/self/fd/" + std::to_string(mDescriptor))
{
    if (mDescriptor == -1) {
        Give("memfd_create");
    }
    BoundFiles();
    for (std::size_t done = 0; done < size;) {
        const ssize_t count = write(mDescriptor, bytes + done, size - done);
        if (count <= 0) {
            Give("write");
        }
        done += static_cast<std::size_t>(count);
    }
}

MemoryFile::~MemoryFile()
{
    close(mDescriptor);
}

void SilenceAssertions()
{
    VUKSimUttAssert::SetHandler([](VUKSimUttAssert::Kind, const char*, const char*, int) {});
}

void WalkFile(const VUKSimRpm_File& file)
{
    static_cast<void>(file.FileName());
    for (unsigned int index = 0; index < file.PoolCount(); ++index) {
        Survives([&] { WalkPool(file.Pool(index)); });
    }
}

void CopyPool(const VUKSimRpm_File& from, unsigned int index, VUKSimRpm_File& to)
{
    constexpr unsigned long long kMostCopied = 1024ULL * 1024; // bytes
    const VUKSimRpm_Pool pool = from.Pool(index);
    if (pool.Length() <= kMostCopied) {
        to.AppendPool(pool);
    }
}
