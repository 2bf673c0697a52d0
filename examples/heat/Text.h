#pragma once

#include <string>

// Numbers as a person likes to read them.

namespace heat {

/// 1234567 as "1,234,567".
[[nodiscard]] std::string Grouped(unsigned long long number);

/// With `digits` behind the point.
[[nodiscard]] std::string Decimal(double number, int digits);

/// "1 pool", "3 pools".
[[nodiscard]] std::string Counted(unsigned long long number, const std::string& noun);

} // namespace heat
