#pragma once

#include "LoadedFile.h"

#include <cstdint>
#include <vector>

namespace simpool {

/// Where a file's bytes go, and what its directories hold. In a damaged file pools may overlap, and
/// the kinds add up to more than its size.
struct FileStatistics
{
    std::uint64_t size = 0;        // all sizes in bytes
    std::uint64_t headers = 0;     // 48 for each pool
    std::uint64_t directories = 0; // 32 for each entry
    std::uint64_t data = 0;        // that the file really has
    std::uint64_t rest = 0;        // behind the last pool that could be walked to
    std::uint64_t pools = 0;
    std::uint64_t references = 0; // entries but each pool's own
};

struct Statistics
{
    std::vector<FileStatistics> files = {};
    FileStatistics sum = {};
    std::uint64_t distinctReferences = 0;      // pools that are referred to
    std::uint64_t unresolved = 0;              // of these, in none of the files
    std::uint64_t uuids = 0;                   // that opening all in one document meets
    std::uint64_t cacheBytes = 0;              // that opening reserves for its cache
    bool isRefused = false;                    // opening fails: too many UUIDs
    std::vector<Together::Place> largest = {}; // by data, the largest first
};

/// \throws CommandFailure when a file cannot be read.
[[nodiscard]] Statistics ComputeStatistics(const LoadedFiles& files, std::size_t largestCount);
} // namespace simpool
