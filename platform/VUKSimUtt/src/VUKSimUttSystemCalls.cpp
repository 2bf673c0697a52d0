#include "VUKSimUttSystemCalls.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// Positions up to the signed 64-bit limit must pass through the calls unchanged.
static_assert(sizeof(off_t) == 8, "files beyond 2 GiB need a 64-bit off_t");

// open and fcntl take a variable number of arguments, so that their addresses do not fit.
constexpr VUKSimUttSystemCalls kSystem = {
    .open = [](const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); },
    .close = ::close,
    .fcntl = [](int descriptor, int command,
                int argument) { return ::fcntl(descriptor, command, argument); },
    .pread = ::pread,
    .pwrite = ::pwrite,
    .ftruncate = ::ftruncate,
    .fstat = ::fstat,
    .stat = ::stat,
    .fdatasync = ::fdatasync,
    .fsync = ::fsync,
    .syncfs = ::syncfs,
    .unlink = ::unlink,
    .getcwd = ::getcwd,
    .mmap = ::mmap,
    .munmap = ::munmap,
    .madvise = ::madvise,
    .sigaction = ::sigaction,
};

constinit VUKSimUttSystemCalls current = kSystem;

} // namespace

VUKSimUttSystemCalls& VUKSimUttSystemCalls::Current() noexcept
{
    return current;
}

const VUKSimUttSystemCalls& VUKSimUttSystemCalls::System() noexcept
{
    return kSystem;
}
