// Bytes from files and from the command line as text that is safe to show: a pool's UUID and a
// file's name may hold anything.
#pragma once

#include "StoredHeader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simpool {

/// `bytes` as UTF-8 without control characters. A backslash is doubled; what is no UTF-8, no
/// visible character, or would change the order or width of others becomes \xNN, byte by byte.
[[nodiscard]] std::string Escaped(std::string_view bytes);

/// The bytes that Escaped took; empty when a backslash is followed by neither a backslash nor xNN.
[[nodiscard]] std::optional<std::string> Unescaped(std::string_view text);

/// A UUID, Escaped; and a name, Escaped and in quotation marks, for messages.
[[nodiscard]] std::string UuidText(const Uuid& uuid);
[[nodiscard]] std::string Quoted(std::string_view name);

/// 1268432 as "1,268,432"; as "1.2 MiB"; and both: "1.2 MiB (1,268,432 bytes)", "228 bytes".
[[nodiscard]] std::string Grouped(std::uint64_t number);
[[nodiscard]] std::string HumanSize(std::uint64_t bytes);
[[nodiscard]] std::string FullSize(std::uint64_t bytes);

/// "1 pool", "1,200 pools".
[[nodiscard]] std::string Counted(std::uint64_t number, std::string_view noun);
} // namespace simpool
