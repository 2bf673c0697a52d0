#include "SvgText.h"

#include "EscapedText.h"

#include <fmt/format.h>

#include <filesystem>

namespace simpool {

std::string XmlText(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string Shortened(std::string_view text, std::size_t most)
{
    const auto isFirstByte = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    };
    std::size_t characters = 0;
    std::size_t cut = 0; // where the last character that fits beside an ellipsis ends
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isFirstByte(text[i])) {
            continue;
        }
        if (characters + 1 == most) {
            cut = i;
        }
        if (++characters > most) {
            return std::string(text.substr(0, cut)) + "\u2026";
        }
    }
    return std::string(text);
}

std::string ShortName(const std::string& name)
{
    constexpr std::size_t kMostCharacters = 40;
    return Shortened(Escaped(std::filesystem::path(name).filename().string()), kMostCharacters);
}

std::string SvgBeginning(double width, double height, std::string_view style)
{
    return fmt::format(
        R"(<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" width="{0:g}" height="{1:g}" viewBox="0 0 {0:g} {1:g}">
<style>
text {{ font: 12px system-ui, "Segoe UI", "DejaVu Sans", sans-serif; fill: #222b38 }}
.title {{ font-size: 18px; font-weight: 600 }}
.note {{ fill: #5c6878 }}
.mono {{ font: 11px ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace }}
{2}</style>
<rect width="100%" height="100%" fill="#ffffff"/>
)",
        width, height, style);
}
} // namespace simpool
