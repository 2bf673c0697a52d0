#pragma once

#include "FindingCode.h"
#include "LoadedFile.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace simpool {

/// One thing that is wrong, and where.
struct Finding
{
    FindingCode code;
    std::size_t file;                // by number; the first one for a finding about all together
    std::optional<std::size_t> pool; // in its file, also one that was refused
    std::uint64_t position;          // in the file, in bytes
    std::string what;                // a clause with numbers and names, Escaped
};

enum class VerifyDepth
{
    Errors,           // the headers alone
    ErrorsAndWarnings // also directories and all data
};

/// Looks at files as one document would, and at what opening leaves unchecked. The findings stand
/// in the order of files and, but for those about all files, of positions. `progress` is told bytes
/// of all files together. \throws CommandFailure when a file cannot be read.
[[nodiscard]] std::vector<Finding>
Verify(const LoadedFiles& files, VerifyDepth depth,
       const std::function<void(std::uint64_t)>& progress = nullptr);

/// Where the run of zero bytes begins that ends at `end`; `begin` at the earliest. Reads no holes.
[[nodiscard]] std::uint64_t TrailingZerosFrom(const FileBytes& file, std::uint64_t begin,
                                              std::uint64_t end);
} // namespace simpool
