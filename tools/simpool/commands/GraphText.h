#pragma once

#include "Json.h"
#include "PoolGraph.h"

#include <string>

namespace simpool {

/// The graph for graphviz, and for Mermaid. Both leave implied arrows out unless told otherwise.
[[nodiscard]] std::string GraphAsDot(const PoolGraph& graph, const LoadedFiles& files,
                                     bool drawsImplied);
[[nodiscard]] std::string GraphAsMermaid(const PoolGraph& graph, const LoadedFiles& files,
                                         bool drawsImplied);

/// Every node and every arrow.
[[nodiscard]] Json GraphAsDocument(const PoolGraph& graph, const LoadedFiles& files);
} // namespace simpool
