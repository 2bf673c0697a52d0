#pragma once

#include <string>
#include <vector>

namespace heat {

/// From 0, cold and dark, to 1, hot and bright; brightness grows all the way, so that the picture
/// can be read without its colours. Values outside are drawn as the nearer end.
[[nodiscard]] std::string ColourAt(double share);

/// Round numbers from `low` to `high`, some `wanted` of them, ascending; none outside. A range of
/// no width gives its one value.
[[nodiscard]] std::vector<double> RoundMarks(double low, double high, unsigned wanted);

} // namespace heat
