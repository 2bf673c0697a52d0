#pragma once

#include "LoadedFile.h"
#include "NewFile.h"

#include <cstdint>
#include <string>

namespace simpool {

/// Where a file would have to be cut so that it opens, and what that costs.
struct TailCut
{
    std::uint64_t size = 0;        // of the file
    std::uint64_t position = 0;    // where it is cut; its size when there is nothing to cut
    std::size_t poolsKept = 0;     // that lie in front of it
    std::uint64_t poolsBehind = 0; // that a search finds behind it

    [[nodiscard]] std::uint64_t TailLength() const noexcept { return size - position; }
};

/// The cut where the walk of `file` stopped.
[[nodiscard]] TailCut PlanTailCut(const LoadedFile& file);

/// Saves the tail as the new file `tailName`, synced, and only then cuts the file itself and syncs
/// it. The one change that is ever made to a file that was given.
/// \throws CommandFailure when a step fails; the file is then as it was, but for the last two
/// steps.
void CutTail(const LoadedFile& file, const TailCut& cut, const std::string& tailName,
             NewFile::Existing existing);
} // namespace simpool
