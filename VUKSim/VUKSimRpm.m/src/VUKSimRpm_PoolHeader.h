#pragma once

#include "VUKSimRpm_UUID.h"

#include <cstddef>
#include <initializer_list>

/// The stored form of a pool's beginning, and so of a file's: a fixed header, then the directory,
/// one UUID for each entry. The data follows. No other file knows an offset in it.
namespace VUKSimRpm_PoolHeader {

struct Field
{
    std::size_t offset; // both in bytes
    std::size_t size;
};

inline constexpr Field kSignature{0, 8};       // kSignatureBytes, also the file's own
inline constexpr Field kVersion{8, 1};         // signed; see kCurrentVersion
inline constexpr Field kReserved{9, 7};        // zero when written, ignored when read
inline constexpr Field kUserSignature{16, 4};  // the document's
inline constexpr Field kLength{20, 16};        // decimal digits; zero: up to the end of the file
inline constexpr Field kReserved1{36, 4};      // 2 when made here; kept as it is
inline constexpr Field kReserved2{40, 4};      // 0 when made here; kept as it is
inline constexpr Field kDirectoryCount{44, 4}; // unsigned; entries of the directory

inline constexpr std::size_t kSize = 48;                           // without the directory
inline constexpr std::size_t kEntrySize = VUKSimRpm_UUID::kLength; // of the directory
inline constexpr std::size_t kVersionEnd = 9; // what a version query reads of a file

constexpr bool FieldsTileTheHeader()
{
    std::size_t end = 0;
    for (const Field& field : {kSignature, kVersion, kReserved, kUserSignature, kLength, kReserved1,
                               kReserved2, kDirectoryCount}) {
        if (field.offset != end) {
            return false;
        }
        end += field.size;
    }
    return end == kSize;
}
static_assert(FieldsTileTheHeader()); // each begins where the last ended
static_assert(kVersionEnd == kVersion.offset + kVersion.size);

inline constexpr char kSignatureBytes[kSignature.size] = {'\x89', 'S',  'I',    'M',
                                                          '\r',   '\n', '\x1A', '\n'};
inline constexpr signed char kCurrentVersion = 6;

/// What a header holds beside signature, version and the ignored bytes. The 32-bit words stand in
/// the file in the host's own order, the user signature as it lies in memory.
struct Values
{
    unsigned int userSignature;
    unsigned long long length; // bytes; 0: up to the end of the file
    unsigned int reserved1;
    unsigned int reserved2;
    unsigned int directoryCount;
};

/// Whether the kSize (or, for a version query, kVersionEnd) bytes at `header` begin as they must.
[[nodiscard]] bool HasSignature(const char* header) noexcept;

[[nodiscard]] signed char Version(const char* header) noexcept;

/// Reads the values out of kSize bytes. The length's bytes are not checked to be digits: each adds
/// its signed distance from '0', modulo 2^64.
[[nodiscard]] Values Decode(const char* header) noexcept;

/// Writes all kSize bytes. Of the length the last 16 decimal digits are kept.
void Encode(const Values& values, char* header) noexcept;

} // namespace VUKSimRpm_PoolHeader
