#pragma once

#include "FileMap.h"

#include <string>
#include <vector>

namespace simpool {

/// The file as an SVG document: one bar from the first byte to the last and, when there are many
/// pools, the same bar once more in several rows, like the lines of a page. All is true to scale,
/// except that nothing is narrower than can be seen: what is too small stands together with its
/// neighbours, stacked by kind.
[[nodiscard]] std::string DrawMap(const LoadedFile& file, const std::vector<Stretch>& stretches);
} // namespace simpool
