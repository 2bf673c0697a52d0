// The stored form of a pool's beginning, written down independently of the library: what it reads
// is held against what the library reads.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace simpool {

inline constexpr std::size_t kHeaderSize = 48; // bytes, without the directory
inline constexpr std::size_t kEntrySize = 32;  // bytes of each directory entry
inline constexpr int kCurrentVersion = 6;      // the only one that is opened
inline constexpr std::array<char, 8> kSignature = {'\x89', 'S', 'I', 'M', '\r', '\n', '\x1A', '\n'};

using Uuid = std::array<char, kEntrySize>;
using UserSignature = std::array<char, 4>;

/// The 48 bytes, field by field in their order. The three numbers stand in the file in the order of
/// the host that wrote them, which is taken to be ours.
struct StoredHeader
{
    std::array<char, 8> signature = kSignature;
    signed char version = kCurrentVersion;
    std::array<char, 7> reserved = {};
    UserSignature userSignature = {};
    std::array<char, 16> lengthDigits = {};
    std::uint32_t reserved1 = 2;
    std::uint32_t reserved2 = 0;
    std::uint32_t directoryCount = 0;

    /// The sum over the 16 digits as the library takes it: a byte that is no digit adds its signed
    /// distance from '0', modulo 2^64. Zero means: up to the end of the file.
    [[nodiscard]] std::uint64_t LengthValue() const noexcept;
    [[nodiscard]] bool LengthIsDecimal() const noexcept;
    void SetLength(std::uint64_t length) noexcept;

    /// 48 and 32 for each directory entry.
    [[nodiscard]] std::uint64_t FullSize() const noexcept
    {
        return kHeaderSize + std::uint64_t{kEntrySize} * directoryCount;
    }
};

/// From and to kHeaderSize bytes.
[[nodiscard]] StoredHeader DecodeHeader(const char* bytes) noexcept;
void EncodeHeader(const StoredHeader& header, char* bytes) noexcept;

/// Whether all 32 characters are lowercase hexadecimal digits; and whether they are also marked as
/// a random UUID, version 4, as the library makes them.
[[nodiscard]] bool IsLowercaseHex(const Uuid& uuid) noexcept;
[[nodiscard]] bool IsVersion4(const Uuid& uuid) noexcept;
} // namespace simpool
