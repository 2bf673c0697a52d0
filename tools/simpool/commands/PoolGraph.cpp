#include "PoolGraph.h"

#include <algorithm>
#include <unordered_map>

namespace simpool {
namespace {

// The nodes reachable from one node, a bit for each.
class NodeSet
{
public:
    explicit NodeSet(std::size_t nodes) : mWords((nodes + 63) / 64) {}

    [[nodiscard]] bool Has(std::uint32_t node) const
    {
        return ((mWords[node / 64] >> (node % 64)) & 1U) != 0;
    }
    void Add(std::uint32_t node) { mWords[node / 64] |= std::uint64_t{1} << (node % 64); }
    void Add(const NodeSet& that)
    {
        for (std::size_t i = 0; i < mWords.size(); ++i) {
            mWords[i] |= that.mWords[i];
        }
    }

private:
    std::vector<std::uint64_t> mWords;
};

// Collects the nodes, then the arrows of one pool after the other.
class Builder
{
public:
    explicit Builder(const LoadedFiles& files) : mFiles(files)
    {
        for (std::size_t file = 0; file < files.Count(); ++file) {
            mFirstNode.push_back(static_cast<std::uint32_t>(mGraph.nodes.size()));
            for (std::size_t i = 0; i < files[file].Pools().size(); ++i) {
                const PoolInfo& pool = files[file].Pools()[i];
                mGraph.nodes.push_back({.file = file,
                                        .pool = i,
                                        .resolved = true,
                                        .uuid = pool.uuid,
                                        .dataLength = pool.DataInFile(files[file].bytes.Size()),
                                        .current = pool.IsCurrent()});
            }
        }
        mGraph.resolvedNodes = mGraph.nodes.size();
    }

    std::optional<PoolGraph> Build()
    {
        for (std::uint32_t from = 0; from < mGraph.resolvedNodes; ++from) {
            AddArrowsOf(from);
            if (mGraph.arrows.size() > kMostArrows) {
                return std::nullopt;
            }
        }
        return std::move(mGraph);
    }

private:
    void AddArrowsOf(std::uint32_t from)
    {
        const LoadedFile& file = mFiles[mGraph.nodes[from].file];
        const PoolInfo& pool = file.Pools()[mGraph.nodes[from].pool];
        std::vector<std::uint32_t> named;
        ForEachEntry(file.bytes, pool,
                     [&](std::uint32_t, const Uuid& uuid) { named.push_back(NodeOf(uuid)); });
        std::ranges::sort(named);
        for (const std::uint32_t to : named) {
            if (to == from) {
                continue;
            }
            const bool again = !mGraph.arrows.empty() && mGraph.arrows.back().from == from &&
                               mGraph.arrows.back().to == to;
            if (again) {
                ++mGraph.arrows.back().times;
            } else {
                mGraph.arrows.push_back({.from = from, .to = to});
            }
        }
    }

    std::uint32_t NodeOf(const Uuid& uuid)
    {
        if (const Together::Place* place = mFiles.Find(uuid); place != nullptr) {
            return mFirstNode[place->file] + static_cast<std::uint32_t>(place->pool);
        }
        const auto [entry, isNew] =
            mUnresolved.try_emplace(uuid, static_cast<std::uint32_t>(mGraph.nodes.size()));
        if (isNew) {
            mGraph.nodes.push_back({.uuid = uuid});
        }
        return entry->second;
    }

    const LoadedFiles& mFiles;
    PoolGraph mGraph;
    std::vector<std::uint32_t> mFirstNode; // of each file
    std::unordered_map<Uuid, std::uint32_t, UuidHash> mUnresolved;
};
} // namespace

std::size_t PoolGraph::ImpliedCount() const noexcept
{
    return static_cast<std::size_t>(std::ranges::count(arrows, true, &GraphArrow::implied));
}

std::optional<PoolGraph> BuildGraph(const LoadedFiles& files)
{
    return Builder(files).Build();
}

void MarkImplied(PoolGraph& graph)
{
    constexpr std::size_t kMostNodes = 20'000; // 50 MB of sets
    const std::size_t nodes = graph.nodes.size();
    if (nodes > kMostNodes) {
        return;
    }
    std::vector<NodeSet> reached;
    reached.reserve(graph.resolvedNodes);
    auto arrow = graph.arrows.begin();
    for (std::uint32_t from = 0; from < graph.resolvedNodes; ++from) {
        const auto begin = arrow;
        while (arrow != graph.arrows.end() && arrow->from == from) {
            ++arrow;
        }
        NodeSet& own = reached.emplace_back(nodes);
        // The nearest earlier pool first: it is the one that can lead on to the others.
        for (auto near = arrow; near != begin;) {
            --near;
            if (near->to < from) {
                near->implied = own.Has(near->to);
                if (!near->implied) {
                    own.Add(near->to);
                    own.Add(reached[near->to]);
                }
            }
        }
        for (auto loose = begin; loose != arrow; ++loose) {
            if (!graph.nodes[loose->to].resolved) {
                loose->implied = own.Has(loose->to);
                own.Add(loose->to);
            }
        }
    }
}
} // namespace simpool
