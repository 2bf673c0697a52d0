#pragma once

#include "PoolWalk.h"

#include <cstdint>
#include <unordered_set>

namespace simpool {

/// The memory that the library reserves for its cache of directory indices when it opens files: a
/// square with a row for each UUID, of which untouched rows cost address space only.
class OpeningCost
{
public:
    /// Before the entries of a directory, as opening makes room for all of them at once.
    void BeginDirectory(std::uint32_t count);

    /// True when this UUID is met for the first time.
    bool AddEntry(const Uuid& uuid);

    [[nodiscard]] std::uint64_t DistinctUuids() const noexcept { return mUuids.size(); }

    /// Of the square, in bytes.
    [[nodiscard]] std::uint64_t CacheBytes() const noexcept { return mRows * (mRows * 4 + 8); }

    /// Whether the square would have more entries than it may: opening fails for want of memory.
    [[nodiscard]] bool IsRefused() const noexcept { return mIsRefused; }

private:
    void Grow(std::uint64_t required);

    std::unordered_set<Uuid, UuidHash> mUuids = {};
    std::uint64_t mRows = 0;
    bool mIsRefused = false;
};
} // namespace simpool
