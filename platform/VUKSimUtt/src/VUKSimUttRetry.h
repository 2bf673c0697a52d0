#pragma once

#include <cerrno>

/// Repeats a system call for as long as a signal interrupts it before it did anything.
template <class Call>
[[nodiscard]] auto VUKSimUttRetry(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}
