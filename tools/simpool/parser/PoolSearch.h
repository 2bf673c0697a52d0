#pragma once

#include "FileBytes.h"
#include "PoolWalk.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace simpool {

/// Finds the plausible pools of a file wherever they lie, from front to back, and reads no byte
/// twice and no hole at all.
///
/// The file must outlive it.
class PoolSearch
{
public:
    /// `progress`, when given, is told from time to time up to which position all is searched.
    explicit PoolSearch(const FileBytes& file,
                        std::function<void(std::uint64_t)> progress = nullptr);

    /// The first plausible pool at `position` or behind it; null when there is none. Later calls
    /// must not ask for lower positions.
    [[nodiscard]] const PoolInfo* FirstFrom(std::uint64_t position);

private:
    void Advance(std::uint64_t position);
    [[nodiscard]] bool ReadChunk(std::uint64_t position);

    const FileBytes& mFile;
    std::function<void(std::uint64_t)> mProgress;
    std::vector<char> mChunk;
    std::uint64_t mChunkPosition = 0;    // of the chunk in the file
    std::size_t mChunkLength = 0;        // bytes of it that were read
    std::optional<PoolInfo> mFound = {}; // the last one; empty at the beginning and the end
    std::uint64_t mSearched = 0;         // every plausible pool in front of it was found
    bool mIsAtEnd = false;
};
} // namespace simpool
