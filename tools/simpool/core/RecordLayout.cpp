#include "RecordLayout.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "PoolRange.h"

#include <algorithm>
#include <array>

namespace simpool {
namespace {

struct TypeText
{
    const char* name;
    std::uint64_t size; // in bytes
};

constexpr std::array<TypeText, 14> kTypes = {{{"i8", 1},
                                              {"u8", 1},
                                              {"i16", 2},
                                              {"u16", 2},
                                              {"i32", 4},
                                              {"u32", 4},
                                              {"i64", 8},
                                              {"u64", 8},
                                              {"f32", 4},
                                              {"f64", 8},
                                              {"locator", kLocatorSize},
                                              {"string", 4},
                                              {"char", 1},
                                              {"skip", 1}}};
constexpr std::uint64_t kMostAtOnce = std::uint64_t{1} << 20; // bytes of one Char or Skip

bool IsOneField(FieldType type)
{
    return type == FieldType::Char || type == FieldType::Skip;
}

LayoutField ParseField(std::string_view text)
{
    const std::size_t cross = text.find('x');
    const std::string_view name = text.substr(0, cross);
    const auto* found = std::ranges::find(kTypes, name, &TypeText::name);
    if (found == kTypes.end()) {
        std::string names;
        for (const TypeText& type : kTypes) {
            names += std::string(names.empty() ? "" : ", ") + type.name;
        }
        throw CommandFailure(Quoted(name) + " is no type; there are " + names);
    }
    LayoutField field{static_cast<FieldType>(found - kTypes.begin())};
    if (cross != std::string_view::npos) {
        field.count = ParseNumber(text.substr(cross + 1), "the count");
    }
    if (field.count == 0 || (IsOneField(field.type) && field.count > kMostAtOnce)) {
        throw CommandFailure("the count of " + Quoted(text) + " must be from 1 to " +
                             (IsOneField(field.type) ? Grouped(kMostAtOnce) : "2^64 - 1"));
    }
    return field;
}
} // namespace

std::uint64_t LayoutField::Size() const noexcept
{
    const std::uint64_t one = kTypes[static_cast<std::size_t>(type)].size;
    return IsOneField(type) ? one * count : one;
}

std::uint64_t LayoutField::Times() const noexcept
{
    return IsOneField(type) ? 1 : count;
}

std::vector<LayoutField> ParseLayout(std::string_view text)
{
    std::vector<LayoutField> layout;
    for (;;) {
        const std::size_t comma = std::min(text.find(','), text.size());
        layout.push_back(ParseField(text.substr(0, comma)));
        if (comma == text.size()) {
            return layout;
        }
        text.remove_prefix(comma + 1);
    }
}

const char* NameOf(FieldType type) noexcept
{
    return kTypes[static_cast<std::size_t>(type)].name;
}

std::uint64_t LittleEndian(std::string_view bytes) noexcept
{
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        value = value << 8U | static_cast<unsigned char>(bytes[i]);
    }
    return value;
}

StoredLocator DecodeLocator(std::string_view bytes) noexcept
{
    return {LittleEndian(bytes.substr(0, 8)),
            static_cast<std::int32_t>(LittleEndian(bytes.substr(8, 4)))};
}

std::uint64_t PaddedLength(std::uint32_t length) noexcept
{
    return (std::uint64_t{length} + 3) / 4 * 4;
}
} // namespace simpool
