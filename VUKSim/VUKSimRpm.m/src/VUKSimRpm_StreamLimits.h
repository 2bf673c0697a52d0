#pragma once

#include <algorithm>

/// The limit of a stream over a pool, in bytes from where it starts; 0 is no limit.
namespace VUKSimRpm_StreamLimits {

/// Whether `length` bytes from `position` on lead past `limit`. Compared as what is left, since
/// sums with lengths near 2^64 wrap.
[[nodiscard]] inline bool Exceeds(unsigned long long position, unsigned long long length,
                                  unsigned long long limit) noexcept
{
    return limit != 0 && (position > limit || length > limit - position);
}

/// How many of `length` bytes from `position` on do not.
[[nodiscard]] inline unsigned long long
Allowed(unsigned long long position, unsigned long long length, unsigned long long limit) noexcept
{
    if (limit == 0) {
        return length;
    }
    return position < limit ? std::min(length, limit - position) : 0;
}

} // namespace VUKSimRpm_StreamLimits
