#pragma once

#include <string>

// Figures as a person likes to read them.

namespace fe {

/// 1234567 as "1,234,567".
[[nodiscard]] std::string Grouped(unsigned long long number);

/// "1 pool", "3 pools".
[[nodiscard]] std::string Counted(unsigned long long number, const std::string& noun);

/// "12.3 MB/s"; "too quick to tell" for a time below a millisecond.
[[nodiscard]] std::string Rate(unsigned long long bytes, double seconds);

} // namespace fe
