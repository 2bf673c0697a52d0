#pragma once

#include "FrdModel.h"
#include "ResultRecord.h"

#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fe {

/// What the locators between the blocks of one file of results crossed.
struct Walk
{
    std::uint64_t steps = 0;        // from block to block
    std::uint64_t poolChanges = 0;  // of them, into another pool
    std::uint64_t meshWays = 0;     // from a block to the mesh, in the other file
    std::uint64_t ownNodeLists = 0; // blocks that do not stand at all nodes of the mesh
};

/// Reads back what ResultStoreWriter stored, with nothing but the file of results in hand: its last
/// block is found at the file's end, and all else by locators. The document must hold the file of
/// the mesh too, and outlive the reader.
class ResultStoreReader
{
public:
    /// Walks from the last block to the first. \throws RecordError when the chain is not whole.
    explicit ResultStoreReader(const VUKSimRpm_File& results);

    [[nodiscard]] FrdMesh Mesh() const;

    [[nodiscard]] std::size_t Results() const noexcept { return mPlaces.size(); }

    /// Block `index`, counted from 0 in the order of the result file.
    [[nodiscard]] FrdResult Result(std::size_t index);

    [[nodiscard]] const FrdLines& Trailing() const noexcept { return mEnd.trailing; }
    [[nodiscard]] const Walk& Way() const noexcept { return mWalk; }

private:
    ResultEnd mEnd;
    std::vector<VUKSimRpm_Locator> mPlaces; // of the blocks, first to last
    Walk mWalk;
    VUKSimRpm_Locator mNodeList;      // last read
    std::vector<std::int64_t> mNodes; // its numbers
};

} // namespace fe
