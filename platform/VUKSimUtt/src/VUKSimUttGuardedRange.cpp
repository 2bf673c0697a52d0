#include "VUKSimUttGuardedRange.h"

#include "VUKSimUttSystemCalls.h"

#include <cerrno>
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace {

VUKSimUttGuardedRange* firstRange = nullptr;
struct sigaction previousHandler;
bool overlaid = false; // the host put a handler on top of ours, which may lead back to ours

VUKSimUttSystemCalls& Calls() noexcept
{
    return VUKSimUttSystemCalls::Current();
}

// What would have become of the signal without us.
void PassOn(int signal, siginfo_t* information, void* context) noexcept
{
    const bool fault = information->si_code > 0; // else somebody sent it
    if ((previousHandler.sa_flags & SA_SIGINFO) != 0) {
        previousHandler.sa_sigaction(signal, information, context);
    } else if (previousHandler.sa_handler == SIG_DFL ||
               (previousHandler.sa_handler == SIG_IGN && fault)) {
        // Once we return, the access faults again, or the signal sent again arrives, and the
        // system does what it does by default.
        ::signal(signal, SIG_DFL);
        if (!fault) {
            ::raise(signal);
        }
    } else if (previousHandler.sa_handler != SIG_IGN) {
        previousHandler.sa_handler(signal);
    }
}

} // namespace

bool VUKSimUttGuardedRange::Guard(char* begin, std::size_t length) noexcept
{
    if (!InstallHandler()) {
        return false;
    }
    mBegin = begin;
    mEnd = begin + length;
    mNext = firstRange;
    firstRange = this;
    return true;
}

void VUKSimUttGuardedRange::Release() noexcept
{
    if (mBegin == nullptr) {
        return;
    }
    VUKSimUttGuardedRange** link = &firstRange;
    while (*link != this) {
        link = &(*link)->mNext;
    }
    *link = mNext;
    mBegin = mEnd = nullptr;
    mLost = 0;
    if (firstRange == nullptr) {
        RemoveHandler();
    }
}

void VUKSimUttGuardedRange::Answer(int signal, siginfo_t* information, void* context) noexcept
{
    if (information->si_code > 0) {
        for (VUKSimUttGuardedRange* range = firstRange; range != nullptr; range = range->mNext) {
            if (range->ReplacePages(information->si_addr)) {
                return;
            }
        }
    }
    PassOn(signal, information, context);
}

// Puts zeros from the page of `address` to the end of the range, in one piece: pages replaced one
// by one would soon be more pieces than a process may have. False when the address is not ours, or
// the system has no memory for it.
bool VUKSimUttGuardedRange::ReplacePages(const void* address) noexcept
{
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    const auto begin = reinterpret_cast<std::uintptr_t>(mBegin);
    const auto end = reinterpret_cast<std::uintptr_t>(mEnd);
    if (at < begin || at >= end) {
        return false;
    }
    const int error = errno;
    const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const std::uintptr_t from = at - (at - begin) % page;
    // Not through the table of calls: what a test does there has no place in a signal handler.
    void* const zeros = ::mmap(mBegin + (from - begin), end - from, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED | MAP_NORESERVE, -1, 0);
    errno = error;
    mLost = 1;
    return zeros != MAP_FAILED;
}

bool VUKSimUttGuardedRange::InstallHandler() noexcept
{
    struct sigaction inForce;
    if (overlaid || Calls().sigaction(SIGBUS, nullptr, &inForce) != 0) {
        return false;
    }
    if (inForce.sa_sigaction == &Answer) {
        return true;
    }
    if (firstRange != nullptr) {
        overlaid = true;
        return false;
    }
    struct sigaction own = {};
    own.sa_sigaction = &Answer;
    own.sa_flags = SA_SIGINFO | SA_ONSTACK;
    ::sigemptyset(&own.sa_mask);
    return Calls().sigaction(SIGBUS, &own, &previousHandler) == 0;
}

// A handler that cannot be taken away stays, and answers for nothing.
void VUKSimUttGuardedRange::RemoveHandler() noexcept
{
    struct sigaction inForce;
    if (Calls().sigaction(SIGBUS, nullptr, &inForce) != 0) {
        return;
    }
    if (inForce.sa_sigaction != &Answer) {
        overlaid = true;
        return;
    }
    static_cast<void>(Calls().sigaction(SIGBUS, &previousHandler, nullptr));
}
