#pragma once

#include "PoolGraph.h"

#include <string>

namespace simpool {

/// The graph as an SVG document: a panel for each file with a box for each pool, one below the
/// other, and beside them the arrows. All arrows to one pool share one upright line of their own,
/// so that they can be told apart however many there are.
///
/// Implied arrows are drawn only with `drawsImplied`; else the picture says how many it leaves out.
[[nodiscard]] std::string DrawGraph(const PoolGraph& graph, const LoadedFiles& files,
                                    bool drawsImplied);
} // namespace simpool
