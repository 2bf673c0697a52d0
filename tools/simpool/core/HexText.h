#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simpool {

/// Two lowercase digits for each byte; `gap` stands between two bytes.
[[nodiscard]] std::string HexText(std::string_view bytes, std::string_view gap = "");

/// The bytes of pairs of digits without gaps; empty when it is anything else.
[[nodiscard]] std::optional<std::string> BytesOfHex(std::string_view text);
} // namespace simpool
