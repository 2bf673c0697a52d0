// Preloaded into a test program, this keeps files from being mapped, so that all they hold goes
// through read and write calls.
#include "VUKSimUttSystemCalls.h"

#include <cerrno>

#include <sys/mman.h>

namespace {

void* Refuse(void*, std::size_t, int, int, int, off_t)
{
    void* const failed = ::mmap(nullptr, 0, PROT_NONE, MAP_PRIVATE, -1, 0); // for it has no bytes
    errno = ENODEV;
    return failed;
}

struct WithoutMaps
{
    WithoutMaps() { VUKSimUttSystemCalls::Current().mmap = &Refuse; }
};

const WithoutMaps kWithoutMaps;
} // namespace
