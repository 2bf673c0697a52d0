#include "EscapedText.h"

#include <fmt/format.h>

#include <array>

namespace simpool {
namespace {

struct Character
{
    char32_t value = 0;
    std::size_t length = 0; // in bytes; 0 when there is none
};

// The UTF-8 character at the beginning of `bytes`, in its shortest form only.
Character DecodeUtf8(std::string_view bytes)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) {
        return {};
    }
    char32_t value = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return {};
        }
        value = value << 6U | (byte(i) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < kLeast[length] || value > 0x10FFFF || isSurrogate) {
        return {};
    }
    return {value, length};
}

struct Range
{
    char32_t first;
    char32_t last;
};

// Control characters, and those that are not seen or that turn the order of others around.
constexpr std::array<Range, 13> kUnsafe = {{
    {0x00, 0x1F},
    {0x7F, 0x9F},
    {0xAD, 0xAD},
    {0x61C, 0x61C},
    {0x180E, 0x180E},
    {0x200B, 0x200F},
    {0x2028, 0x202E},
    {0x2060, 0x206F},
    {0xFDD0, 0xFDEF},
    {0xFEFF, 0xFEFF},
    {0xFFF9, 0xFFFB},
    {0xFFFE, 0xFFFF},
    {0xE0000, 0x10FFFF}, // tags, selectors and private use
}};

bool IsSafe(char32_t value)
{
    for (const Range& range : kUnsafe) {
        if (value >= range.first && value <= range.last) {
            return false;
        }
    }
    return true;
}

int HexValue(char digit)
{
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}
} // namespace

std::string Escaped(std::string_view bytes)
{
    std::string text;
    while (!bytes.empty()) {
        const Character character = DecodeUtf8(bytes);
        if (character.value == '\\') {
            text += "\\\\";
            bytes.remove_prefix(1);
        } else if (character.length > 0 && IsSafe(character.value)) {
            text += bytes.substr(0, character.length);
            bytes.remove_prefix(character.length);
        } else {
            // A byte that follows of the same character is no UTF-8 by itself: it comes here too.
            text += fmt::format("\\x{:02x}", static_cast<unsigned char>(bytes.front()));
            bytes.remove_prefix(1);
        }
    }
    return text;
}

std::optional<std::string> Unescaped(std::string_view text)
{
    std::string bytes;
    while (!text.empty()) {
        std::size_t used = 1;
        char byte = text[0];
        if (byte == '\\' && text.substr(1, 1) == "\\") {
            used = 2;
        } else if (byte == '\\') {
            const int high = text.size() < 4 ? -1 : HexValue(text[2]);
            const int low = text.size() < 4 ? -1 : HexValue(text[3]);
            if (high < 0 || low < 0 || text[1] != 'x') {
                return std::nullopt;
            }
            used = 4;
            byte = static_cast<char>(high * 16 + low);
        }
        bytes += byte;
        text.remove_prefix(used);
    }
    return bytes;
}

std::string UuidText(const Uuid& uuid)
{
    return Escaped({uuid.data(), uuid.size()});
}

std::string Quoted(std::string_view name)
{
    return "'" + Escaped(name) + "'";
}

std::string Grouped(std::uint64_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3) {
        text.insert(i - 3, ",");
    }
    return text;
}

std::string HumanSize(std::uint64_t bytes)
{
    constexpr std::array<const char*, 6> kUnits = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    constexpr double kStep = 1024;
    if (bytes < 1024) {
        return std::to_string(bytes) + " B";
    }
    double size = static_cast<double>(bytes) / kStep;
    std::size_t unit = 0;
    // 1023.95 would be shown as 1024.0.
    while (size >= 1023.95 && unit + 1 < kUnits.size()) {
        size /= kStep;
        ++unit;
    }
    return fmt::format("{:.1f} {}", size, kUnits[unit]);
}

std::string FullSize(std::uint64_t bytes)
{
    const std::string exact = Counted(bytes, "byte");
    return bytes < 1024 ? exact : HumanSize(bytes) + " (" + exact + ")";
}

std::string Counted(std::uint64_t number, std::string_view noun)
{
    return Grouped(number) + " " + std::string(noun) + (number == 1 ? "" : "s");
}
} // namespace simpool
