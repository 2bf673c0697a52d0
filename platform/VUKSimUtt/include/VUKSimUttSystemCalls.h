#pragma once

#include <csignal>
#include <cstddef>

#include <sys/stat.h>
#include <sys/types.h>

#include "VUKBas_Export.h"

/// What `fstat` and `stat` fill in.
using VUKSimUttFileStatus = struct stat;

/// Every system call of this module, in one place.
///
/// OS files and file helpers reach the operating system through `Current()` alone, so that a test
/// which replaces a member there sees, counts, cuts short or fails each call. Members are named as
/// in the C library and keep its contract: -1 (or null) and `errno` on failure. The table is plain
/// memory of the process: it is replaced and used by one thread at a time.
struct VUKBAS_EXPORT VUKSimUttSystemCalls
{
    int (*open)(const char* path, int flags, mode_t mode);
    int (*close)(int descriptor);
    int (*fcntl)(int descriptor, int command, int argument);
    ssize_t (*pread)(int descriptor, void* buffer, std::size_t length, off_t position);
    ssize_t (*pwrite)(int descriptor, const void* buffer, std::size_t length, off_t position);
    int (*ftruncate)(int descriptor, off_t size);
    int (*fstat)(int descriptor, VUKSimUttFileStatus* status);
    int (*stat)(const char* path, VUKSimUttFileStatus* status);
    int (*fdatasync)(int descriptor);
    int (*fsync)(int descriptor);
    int (*syncfs)(int descriptor);
    int (*unlink)(const char* path);
    char* (*getcwd)(char* buffer, std::size_t length);
    void* (*mmap)(void* address, std::size_t length, int protection, int flags, int descriptor,
                  off_t position);
    int (*munmap)(void* address, std::size_t length);
    int (*madvise)(void* address, std::size_t length, int advice);
    int (*sigaction)(int signal, const struct sigaction* action, struct sigaction* previous);

    /// The table in force; it starts as `System()`. Whoever replaces a member puts it back.
    [[nodiscard]] static VUKSimUttSystemCalls& Current() noexcept;

    /// The C library's own calls.
    [[nodiscard]] static const VUKSimUttSystemCalls& System() noexcept;
};
