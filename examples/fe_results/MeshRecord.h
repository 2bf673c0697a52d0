#pragma once

#include "FrdModel.h"

#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"

#include <cstdint>
#include <vector>

namespace fe {

// A list of node numbers, to which the mesh and all results at the same nodes lead:
//
//   "NODELIST", length, 8 n, 8n numbers
//
// A mesh, with strings as VUKSimRpm_BStreamWrite stores them:
//
//   "FRD MESH", length
//   12  locator of its node list
//       source, line end
//   texts before the nodes, "2C" record, 4 layout
//    8  n, then 8*3n coordinates
//       spellings
//   texts before the elements, "3C" record (empty: there are none), 4 layout
//    8  m, then 8m numbers, 4m types, 4m groups, 4m materials
//    8  k, then 8k node numbers of all elements
//       spellings
//
// Texts are 4 count, then the strings; spellings 8 count, then for each 8 field and the string.

VUKSimRpm_Locator WriteNodeList(const VUKSimRpm_Pool& pool,
                                const std::vector<std::int64_t>& numbers);
[[nodiscard]] std::vector<std::int64_t> ReadNodeList(const VUKSimRpm_Locator& place);

/// `nodeList` leads to the numbers of the mesh's nodes.
VUKSimRpm_Locator WriteMesh(const VUKSimRpm_Pool& pool, const FrdMesh& mesh,
                            const VUKSimRpm_Locator& nodeList);
[[nodiscard]] FrdMesh ReadMesh(const VUKSimRpm_Locator& place);

} // namespace fe
