// Records in a pool's data, taken for what the user says they are.
#pragma once

#include "StoredHeader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simpool {

enum class FieldType
{
    I8,
    U8,
    I16,
    U16,
    I32,
    U32,
    I64,
    U64,
    F32,
    F64,
    Locator,
    String,
    Char, // `count` characters without length or padding
    Skip  // `count` bytes that mean nothing
};

/// Some fields of one type in a row.
struct LayoutField
{
    FieldType type;
    std::uint64_t count = 1;

    /// Of one; of all for Char and Skip; 4 for String, whose length stands in these.
    [[nodiscard]] std::uint64_t Size() const noexcept;
    /// How often it is read: once for Char and Skip.
    [[nodiscard]] std::uint64_t Times() const noexcept;
};

/// Fields parted by commas, each a type's name, maybe followed by x and a count:
/// "u32,f64x3,locator". \throws CommandFailure when a part has another form.
[[nodiscard]] std::vector<LayoutField> ParseLayout(std::string_view text);

[[nodiscard]] const char* NameOf(FieldType type) noexcept;

/// `bytes`, little-endian, lowest first; at most eight.
[[nodiscard]] std::uint64_t LittleEndian(std::string_view bytes) noexcept;

/// The stored form of a locator.
struct StoredLocator
{
    std::uint64_t offset = 0;
    std::int32_t entry = -1; // of the storing pool's directory; negative names no pool
};
inline constexpr std::size_t kLocatorSize = 12;
[[nodiscard]] StoredLocator DecodeLocator(std::string_view bytes) noexcept;

/// Text and padding of a string whose stored length is `length`, in bytes.
[[nodiscard]] std::uint64_t PaddedLength(std::uint32_t length) noexcept;
} // namespace simpool
