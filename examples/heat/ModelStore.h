#pragma once

#include "Model.h"

#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"

namespace heat {

// A stored model takes three pools: the nodes, the elements, and a model record, which names
// everything and finds the other two by locators. Records begin with eight characters that say
// what follows; numbers are 32-bit unsigned or 64-bit floating, little-endian.
//
//   nodes     "HEATNODE"  count  x, y of each
//   elements  "HEATELEM"  count  four node numbers of each
//   model     "HEATMODL"  title, field name, field unit (string records)
//             locator of the nodes, locator of the elements
//             boundary count; of each: name (string record), kind of condition, temperature,
//                 film coefficient, edge count, two node numbers of each edge
//             material name (string record), conductivity, density, specific heat
//             initial temperature, time step, number of steps

/// Stores `model` in a file that was just created for writing and returns where its record lies,
/// which is what a frame of results refers to. Nothing is flushed yet.
[[nodiscard]] VUKSimRpm_Locator StoreModel(VUKSimRpm_File file, const Model& model);

/// The model record of a file that StoreModel filled.
/// \throws std::runtime_error when the file has no pools.
[[nodiscard]] VUKSimRpm_Locator ModelRecord(const VUKSimRpm_File& file);

/// Reads a model back from its record.
/// \throws std::runtime_error when there is no such record or its numbers contradict each other;
/// the library's exceptions when it ends too early.
[[nodiscard]] Model LoadModel(const VUKSimRpm_Locator& record);

} // namespace heat
