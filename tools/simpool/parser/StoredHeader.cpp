#include "StoredHeader.h"

#include <algorithm>
#include <cstring>

namespace simpool {
namespace {

// Visits the fields in their stored order, each with its place among the 48 bytes.
template <class Header, class Visitor>
void ForEachField(Header& header, Visitor visit)
{
    std::size_t offset = 0;
    const auto field = [&](auto& value) {
        visit(offset, value);
        offset += sizeof(value);
    };
    field(header.signature);
    field(header.version);
    field(header.reserved);
    field(header.userSignature);
    field(header.lengthDigits);
    field(header.reserved1);
    field(header.reserved2);
    field(header.directoryCount);
}
} // namespace

StoredHeader DecodeHeader(const char* bytes) noexcept
{
    StoredHeader header;
    ForEachField(header, [&](std::size_t offset, auto& value) {
        std::memcpy(&value, bytes + offset, sizeof(value));
    });
    return header;
}

void EncodeHeader(const StoredHeader& header, char* bytes) noexcept
{
    ForEachField(header, [&](std::size_t offset, const auto& value) {
        std::memcpy(bytes + offset, &value, sizeof(value));
    });
}

std::uint64_t StoredHeader::LengthValue() const noexcept
{
    std::uint64_t value = 0;
    for (const char digit : lengthDigits) {
        const int distance = static_cast<signed char>(digit) - '0';
        value = value * 10 + static_cast<std::uint64_t>(static_cast<std::int64_t>(distance));
    }
    return value;
}

bool StoredHeader::LengthIsDecimal() const noexcept
{
    return std::ranges::all_of(lengthDigits, [](char c) { return c >= '0' && c <= '9'; });
}

void StoredHeader::SetLength(std::uint64_t length) noexcept
{
    for (std::size_t i = lengthDigits.size(); i-- > 0; length /= 10) {
        lengthDigits[i] = static_cast<char>('0' + static_cast<char>(length % 10));
    }
}

bool IsLowercaseHex(const Uuid& uuid) noexcept
{
    return std::ranges::all_of(
        uuid, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

bool IsVersion4(const Uuid& uuid) noexcept
{
    constexpr std::size_t kVersionDigit = 12;
    constexpr std::size_t kVariantDigit = 16;
    const char variant = uuid[kVariantDigit];
    return IsLowercaseHex(uuid) && uuid[kVersionDigit] == '4' &&
           (variant == '8' || variant == '9' || variant == 'a' || variant == 'b');
}
} // namespace simpool
