// Preloaded into a test program, this keeps files from being mapped, so that all they hold goes
// through read and write calls.
#include "VUKSimUttSystemCalls.h"

#include <cerrno>

namespace {

void* Refuse(void*, std::size_t, int, int, int, off_t)
{
    errno = ENODEV;
    return reinterpret_cast<void*>(-1);
}

struct WithoutMaps
{
    WithoutMaps() { VUKSimUttSystemCalls::Current().mmap = &Refuse; }
};

const WithoutMaps withoutMaps;
} // namespace
