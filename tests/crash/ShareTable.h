#pragma once

#include "Tally.h"

#include <string>

/// The counts and shares that docs/reliability.md publishes, as a Markdown table and a line below.
///
/// Shares are of the states in which a pool was being made or imported. Where a file that is not
/// extended before a freeze fares otherwise, the share without stands before an arrow. Numbers are
/// the same on every machine, for the same scenarios and seed.
[[nodiscard]] std::string ShareTable(const Tally& now, const Tally& unextended);
