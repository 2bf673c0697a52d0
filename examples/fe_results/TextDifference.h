#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace fe {

/// The first line in which two files differ.
struct TextDifference
{
    std::uint64_t line = 0;
    std::string first; // that line of each, empty when the file has ended
    std::string second;
};

/// Compares two files byte for byte; nothing when they are equal.
/// \throws std::runtime_error when one of them cannot be read.
[[nodiscard]] std::optional<TextDifference> FindDifference(const std::string& first,
                                                           const std::string& second);

} // namespace fe
