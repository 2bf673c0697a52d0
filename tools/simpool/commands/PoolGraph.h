// Which pool's directory names which other pool, over several files.
#pragma once

#include "LoadedFile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace simpool {

/// A pool that is there, or one that is only named.
struct GraphNode
{
    std::size_t file = 0; // both as they were added; no meaning when the pool is unresolved
    std::size_t pool = 0;
    bool resolved = false;
    Uuid uuid = {};
    std::uint64_t dataLength = 0; // bytes that the file really has
    bool current = false;
};

/// The directory of `from` names `to`. Numbers of nodes.
struct GraphArrow
{
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    std::uint32_t times = 1; // entries of the directory that say the same
    bool implied = false;    // other arrows lead the same way
};

/// Nodes in the order of files and pools, unresolved ones last; arrows by `from`, each pair once.
/// An entry that names its own pool is no arrow.
struct PoolGraph
{
    std::vector<GraphNode> nodes = {};
    std::vector<GraphArrow> arrows = {};
    std::size_t resolvedNodes = 0;

    [[nodiscard]] std::size_t ImpliedCount() const noexcept;
};

/// More arrows than anybody could look at; where they end, so does the memory for them.
inline constexpr std::size_t kMostArrows = 4'000'000;

/// The graph of `files`, walked as one document. Nothing when there are more than kMostArrows.
/// Directory entries that cannot be read are left out.
[[nodiscard]] std::optional<PoolGraph> BuildGraph(const LoadedFiles& files);

/// Marks arrows between whose ends a longer way of other arrows leads. Only ways from later to
/// earlier pools count, as pools are made; so every mark is right also where pools refer to each
/// other in a ring. Above some 20,000 nodes nothing is marked.
void MarkImplied(PoolGraph& graph);
} // namespace simpool
