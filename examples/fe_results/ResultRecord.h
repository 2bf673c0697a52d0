#pragma once

#include "FrdModel.h"

#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"

#include <cstdint>
#include <vector>

namespace fe {

/// Where a block of results leads to.
struct ResultLinks
{
    VUKSimRpm_Locator mesh;     // a mesh record, in another file
    VUKSimRpm_Locator previous; // the block before; null at the first
    VUKSimRpm_Locator nodeList; // the mesh's own, or one in the file of results
};

/// The last record of a file of results.
struct ResultEnd
{
    VUKSimRpm_Locator mesh;
    VUKSimRpm_Locator last;  // the last block; null when there is none
    std::uint64_t count = 0; // of blocks
    FrdLines trailing;       // texts behind the last block
};

// A block of results:
//
//   "FRDBLOCK", length
//   12  locator of the mesh
//   12  locator of the block before
//   12  locator of the node list
//    8  value: time, load factor or frequency, floating
//    4  analysis type, signed
//    4  step, signed
//    4  layout
//       name
//    4  c, number of components, then for each: name, unit, 4 whether it is stored, "-5" record
//       texts before the block, "100C" record, "-4" record
//    8  v, number of values, then 8v values, floating, node by node
//       spellings
//
// The end of a file of results, at the very end of its last pool:
//
//   "FRD TAIL", length
//   12  locator of the mesh
//   12  locator of the last block
//    8  number of blocks
//       texts behind the last block
//   12  locator of this record

VUKSimRpm_Locator WriteResult(const VUKSimRpm_Pool& pool, const FrdResult& result,
                              const ResultLinks& links);

/// Only the links: enough to walk from block to block.
[[nodiscard]] ResultLinks ReadResultLinks(const VUKSimRpm_Locator& place);

/// All but the node numbers, which `links` lead to.
[[nodiscard]] FrdResult ReadResult(const VUKSimRpm_Locator& place, ResultLinks& links);

void WriteResultEnd(const VUKSimRpm_Pool& pool, const ResultEnd& end);

/// The end record of a whole file of results, whose last pool is `pool`.
[[nodiscard]] ResultEnd ReadResultEnd(const VUKSimRpm_Pool& pool);

} // namespace fe
