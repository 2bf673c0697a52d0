// What several commands say of a file and its pools, once as a document and once as text.
#pragma once

#include "Json.h"
#include "LoadedFile.h"

#include <string>

namespace simpool {

/// The header that tells the file's version and user signature: its first pool's, be it whole or
/// not. Null when the file has none.
[[nodiscard]] const StoredHeader* FirstHeader(const LoadedFile& file) noexcept;

/// Whether the pools reach to the file's end and no further, as they do in a file that is whole.
[[nodiscard]] bool EndsWell(const LoadedFile& file) noexcept;

/// {"name", "size", "version", "userSignature"}; null what a file without a header does not tell.
[[nodiscard]] Json FileHead(const LoadedFile& file);

/// {"number", "uuid", "position", "headerSize", "references", "dataLength", "missing", "state"}:
/// sizes in bytes; references without the pool's own entry; missing are the data bytes that the
/// header claims behind the file's end.
[[nodiscard]] Json PoolSummary(const LoadedFile& file, std::size_t number);

/// {"position", "reason"} of a walk that was stopped; null when it came to the file's end.
[[nodiscard]] Json StopSummary(const LoadedFile& file);

/// "a.sim: version 6, signature 'DEMO', 2 pools, 228 bytes", without a line's end.
[[nodiscard]] std::string FileLine(const LoadedFile& file);

/// "stopped at position 92: there is no pool signature; 136 bytes lie behind".
[[nodiscard]] std::string StopLine(const LoadedFile& file);

/// Data bytes that a pool claims and the file does not have.
[[nodiscard]] std::uint64_t MissingBytes(const LoadedFile& file, const PoolInfo& pool) noexcept;
} // namespace simpool
