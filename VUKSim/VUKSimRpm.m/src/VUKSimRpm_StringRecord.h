#pragma once

/// The stored form of a string: its length in bytes (unsigned 32-bit, little-endian), its UTF-8
/// bytes, and zero bytes up to a multiple of 4.
namespace VUKSimRpm_StringRecord {

inline constexpr int kLengthSize = 4; // bytes

/// Text and padding together, in 64 bits: a length of 2^32 - 1 pads to 2^32.
[[nodiscard]] constexpr unsigned long long PaddedLength(unsigned int length) noexcept
{
    return (length + 3ULL) & ~3ULL;
}

/// Up to so many bytes a record needs no memory from the heap.
inline constexpr unsigned long long kSmall = 256;

} // namespace VUKSimRpm_StringRecord
