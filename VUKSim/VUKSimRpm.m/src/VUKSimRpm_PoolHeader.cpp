#include "VUKSimRpm_PoolHeader.h"

#include <cstring>

namespace VUKSimRpm_PoolHeader {
namespace {

// The header's words are kept in the host's order: they are copied, never converted.
unsigned int GetWord(const char* header, Field field) noexcept
{
    unsigned int word = 0;
    static_assert(sizeof word == kReserved1.size);
    std::memcpy(&word, header + field.offset, sizeof word);
    return word;
}

void PutWord(unsigned int word, Field field, char* header) noexcept
{
    std::memcpy(header + field.offset, &word, sizeof word);
}

unsigned long long ParseLength(const char* digits) noexcept
{
    unsigned long long length = 0;
    for (std::size_t i = 0; i < kLength.size; ++i) {
        const int digit = static_cast<signed char>(digits[i]) - '0';
        length = length * 10 + static_cast<unsigned long long>(digit);
    }
    return length;
}

void RenderLength(unsigned long long length, char* digits) noexcept
{
    for (std::size_t i = kLength.size; i-- > 0; length /= 10) {
        digits[i] = static_cast<char>('0' + length % 10);
    }
}
} // namespace

bool HasSignature(const char* header) noexcept
{
    return std::memcmp(header + kSignature.offset, kSignatureBytes, kSignature.size) == 0;
}

signed char Version(const char* header) noexcept
{
    return static_cast<signed char>(header[kVersion.offset]);
}

Values Decode(const char* header) noexcept
{
    return {GetWord(header, kUserSignature), ParseLength(header + kLength.offset),
            GetWord(header, kReserved1), GetWord(header, kReserved2),
            GetWord(header, kDirectoryCount)};
}

void Encode(const Values& values, char* header) noexcept
{
    std::memcpy(header + kSignature.offset, kSignatureBytes, kSignature.size);
    header[kVersion.offset] = kCurrentVersion;
    std::memset(header + kReserved.offset, 0, kReserved.size);
    PutWord(values.userSignature, kUserSignature, header);
    RenderLength(values.length, header + kLength.offset);
    PutWord(values.reserved1, kReserved1, header);
    PutWord(values.reserved2, kReserved2, header);
    PutWord(values.directoryCount, kDirectoryCount, header);
}

} // namespace VUKSimRpm_PoolHeader
