#include "FrdField.h"

#include <array>
#include <charconv>
#include <system_error>

namespace fe {

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::string_view WithoutPlus(std::string_view text)
{
    return text.size() > 1 && text[0] == '+' ? text.substr(1) : text;
}

template <class T>
std::optional<T> ParseWhole(const char* begin, const char* end)
{
    T value{};
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (error != std::errc{} || stop != end) {
        return std::nullopt;
    }
    return value;
}

// "1.0D+00" and "1.0-100" as "1.0E+00" and "1.0E-100"; empty when the text is too long for a real.
std::string_view WithExponentLetter(std::string_view text, std::array<char, 40>& room)
{
    std::size_t size = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (size + 2 > room.size()) {
            return {};
        }
        const bool afterDigit = i > 0 && (IsDigit(text[i - 1]) || text[i - 1] == '.');
        if (afterDigit && (text[i] == 'D' || text[i] == 'd')) {
            room[size++] = 'E';
            continue;
        }
        if (afterDigit && (text[i] == '+' || text[i] == '-')) {
            room[size++] = 'E';
        }
        room[size++] = text[i];
    }
    return {room.data(), size};
}

} // namespace

std::optional<std::int64_t> ParseInteger(std::string_view column) noexcept
{
    const std::string_view text = WithoutPlus(Trimmed(column));
    return ParseWhole<std::int64_t>(text.data(), text.data() + text.size());
}

std::optional<double> ParseReal(std::string_view column) noexcept
{
    const std::string_view text = WithoutPlus(Trimmed(column));
    if (const auto value = ParseWhole<double>(text.data(), text.data() + text.size())) {
        return value;
    }
    std::array<char, 40> room{};
    const std::string_view other = WithExponentLetter(text, room);
    return ParseWhole<double>(other.data(), other.data() + other.size());
}

void AppendInteger(std::string& line, std::int64_t value, std::size_t width)
{
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    const auto size = static_cast<std::size_t>(end - digits.data());
    line.append(size < width ? width - size : 0, ' ');
    line.append(digits.data(), size);
}

void AppendReal(std::string& line, double value)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::scientific, 5)
                         .ptr;
    const auto size = static_cast<std::size_t>(end - digits.data());
    line.append(size < kRealWidth ? kRealWidth - size : 0, ' ');
    for (std::size_t i = 0; i < size; ++i) {
        const bool small = digits[i] >= 'a' && digits[i] <= 'z';
        line.push_back(small ? static_cast<char>(digits[i] - 'a' + 'A') : digits[i]);
    }
}

std::string_view Trimmed(std::string_view text) noexcept
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string_view Column(std::string_view line, std::size_t from, std::size_t width) noexcept
{
    return from < line.size() ? line.substr(from, width) : std::string_view{};
}

} // namespace fe
