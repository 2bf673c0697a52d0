#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Numbers in columns of fixed width, as the result format has them: integers to the right of their
// column, reals in 12 characters with 6 significant digits ("-1.23456E-03"). Columns touch: a minus
// sign may follow the digits of the number before it.

namespace fe {

inline constexpr std::size_t kRealWidth = 12;

/// The integer in a column, blanks around it allowed; nothing when there is none or it is larger
/// than 64 bits.
[[nodiscard]] std::optional<std::int64_t> ParseInteger(std::string_view column) noexcept;

/// The real in a column: plain and exponential notation, NAN and INF, also the exponents of other
/// compilers ("1.00000D+00", "1.00000-100"). Nothing when there is none or it is out of range.
[[nodiscard]] std::optional<double> ParseReal(std::string_view column) noexcept;

/// Appends a number as the solver spells it. One that is too long for its column takes more.
void AppendInteger(std::string& line, std::int64_t value, std::size_t width);
void AppendReal(std::string& line, double value);

/// `text` without the blanks around it.
[[nodiscard]] std::string_view Trimmed(std::string_view text) noexcept;

/// Columns [from, from + width) of `line`; short or empty where the line ends earlier.
[[nodiscard]] std::string_view Column(std::string_view line, std::size_t from,
                                      std::size_t width) noexcept;

} // namespace fe
