#pragma once

#include "VUKBas_Export.h"

#include <csignal>
#include <cstddef>

/// Memory mapped from a file, whose pages may be gone when they are touched.
///
/// Another process shortens the file, the disk is full or fails: the system tells whoever touches
/// such a page of a shared mapping by SIGBUS. Inside a guarded range the signal does no harm: zeros
/// take the place of the rest of the range and `Lost` turns true. What was read from it or written
/// to it must then be done again by a system call, which says what is wrong.
///
/// A range stands from `Guard` to `Release`. The handler is installed with the first and taken away
/// with the last; bus errors elsewhere, and those that somebody sends, go to the handler that was
/// there before. A host that installs its own on top of ours must call the one that it replaced.
/// Guarding and releasing are for one thread at a time.
class VUKBAS_EXPORT VUKSimUttGuardedRange
{
public:
    VUKSimUttGuardedRange() noexcept = default;
    VUKSimUttGuardedRange(const VUKSimUttGuardedRange&) = delete;
    VUKSimUttGuardedRange& operator=(const VUKSimUttGuardedRange&) = delete;
    ~VUKSimUttGuardedRange() { Release(); }

    /// Guards `length` bytes from `begin`, the beginning of a page; both in bytes. Returns false,
    /// and guards nothing, when no handler can be installed or the host has put its own on top.
    [[nodiscard]] bool Guard(char* begin, std::size_t length) noexcept;

    /// Ends the guard; without one does nothing. The memory must not be touched after it.
    void Release() noexcept;

    /// Whether a page of the guarded memory was gone.
    [[nodiscard]] bool Lost() const noexcept { return mLost != 0; }

private:
    static void Answer(int signal, siginfo_t* information, void* context) noexcept;
    static bool InstallHandler() noexcept;
    static void RemoveHandler() noexcept;
    [[nodiscard]] bool ReplacePages(const void* address) noexcept;

    char* mBegin = nullptr; // null while nothing is guarded
    char* mEnd = nullptr;
    VUKSimUttGuardedRange* mNext = nullptr; // among all guarded ranges
    volatile std::sig_atomic_t mLost = 0;
};
