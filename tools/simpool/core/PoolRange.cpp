#include "PoolRange.h"

#include "CommandFailure.h"
#include "EscapedText.h"

#include <algorithm>
#include <charconv>

namespace simpool {

std::uint64_t PoolRange::LengthWithin(std::uint64_t available) const noexcept
{
    return offset >= available ? 0 : std::min(length, available - offset);
}

std::uint64_t ParseNumber(std::string_view text, const std::string& what)
{
    const bool isHexadecimal = text.starts_with("0x");
    const std::string_view digits = isHexadecimal ? text.substr(2) : text;
    std::uint64_t value = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                                isHexadecimal ? 16 : 10);
    if (failure != std::errc() || end != digits.data() + digits.size()) {
        throw CommandFailure(what + " " + Quoted(text) + " is no number of 64 bits");
    }
    return value;
}

PoolRange ParsePoolRange(std::string_view text)
{
    PoolRange range;
    const std::size_t colon = text.find(':');
    range.pool = text.substr(0, colon);
    if (colon == std::string_view::npos) {
        return range;
    }
    const std::string_view rest = text.substr(colon + 1);
    const std::size_t plus = rest.find('+');
    range.isWhole = false;
    range.offset = ParseNumber(rest.substr(0, plus), "the offset");
    if (plus != std::string_view::npos) {
        range.length = ParseNumber(rest.substr(plus + 1), "the length");
    }
    return range;
}
} // namespace simpool
