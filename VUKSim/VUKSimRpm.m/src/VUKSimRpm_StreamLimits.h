#pragma once

#include <algorithm>

/// What the streams that buffer share: the least chunk and the limit.
namespace VUKSimRpm_StreamLimits {

[[nodiscard]] inline unsigned long ChunkSize(unsigned long wanted) noexcept
{
    return std::max(wanted, 16UL); // bytes
}

/// Whether `length` bytes from `position` on lead past `limit`, 0 being no limit. Compared as what
/// is left, since sums with lengths near 2^64 wrap.
[[nodiscard]] inline bool Exceeds(unsigned long long position, unsigned long long length,
                                  unsigned long long limit) noexcept
{
    return limit != 0 && (position > limit || length > limit - position);
}

} // namespace VUKSimRpm_StreamLimits
