#pragma once

#include "Operation.h"
#include "Tally.h"

#include <cstddef>
#include <optional>
#include <string>

/// Where the library and the model went different ways.
struct Difference
{
    std::size_t step; // the script's operation after which it was seen
    std::string what;
};

/// Plays `script` in the empty `folder`, and counts in `tally` what was done and seen.
std::optional<Difference> RunScript(const Script& script, const std::string& folder, Tally& tally);

/// As few and as plain operations as still show a difference. `script` shows one.
Script Shrink(const Script& script, const std::string& folder);
