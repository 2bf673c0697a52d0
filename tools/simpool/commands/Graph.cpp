#include "Graph.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "GraphPicture.h"
#include "GraphText.h"
#include "Graphviz.h"
#include "PictureFile.h"

namespace simpool {
namespace {

constexpr std::size_t kMostPoolsOfOurs = 400; // above it graphviz draws, where it is installed
constexpr std::size_t kMostArrowsWithoutAsking = 60; // above it implied ones are left out
} // namespace

CommandText Graph::Text() const
{
    return {"graph", "Draw pools and their references",
            "Draws the pools of all files, grouped by file, and an arrow for each pool that a "
            "pool's directory names. Pools that are in none of the files are dashed.\n\n"
            "Directories mostly name every pool that was there before. Where there are more than "
            "60 arrows, those are left out that lead where a way of other arrows leads already; "
            "--arrows all draws them too. The JSON form always has all, and marks these.\n\n"
            "Pictures with up to 400 pools are made by this program alone. Larger ones are left "
            "to graphviz if it is installed and ends within a minute; --engine chooses.",
            "simpool graph run.sim -o run.svg\n"
            "simpool graph rank0.sim rank1.sim --format mermaid\n"};
}

void Graph::AddOptions(CLI::App& options)
{
    options.add_option("files", mNames, "The files to draw")->required()->type_name("FILE");
    options.add_option("--format", mFormat, "svg, dot, mermaid or json (svg)")
        ->check(CLI::IsMember({"svg", "dot", "mermaid", "json"}))
        ->type_name("FORMAT");
    options.add_option("--arrows", mArrows, "auto, all, or direct: without implied ones (auto)")
        ->check(CLI::IsMember({"auto", "all", "direct"}))
        ->type_name("WHICH");
    options.add_option("--engine", mEngine, "Who draws SVG: auto, own or graphviz (auto)")
        ->check(CLI::IsMember({"auto", "own", "graphviz"}))
        ->type_name("ENGINE");
    AddPictureOptions(options, mOutput, mIsForced);
}

std::string Graph::DrawSvg(const PoolGraph& graph, const LoadedFiles& files,
                           bool drawsImplied) const
{
    const bool isLarge = graph.nodes.size() > kMostPoolsOfOurs;
    if (mEngine == "graphviz" || (mEngine == "auto" && isLarge)) {
        if (const auto svg = DrawWithGraphviz(GraphAsDot(graph, files, drawsImplied))) {
            return *svg;
        }
        if (mEngine == "graphviz") {
            throw CommandFailure("graphviz is not installed, failed, or took over a minute");
        }
    }
    return DrawGraph(graph, files, drawsImplied);
}

std::string Graph::Draw(PoolGraph& graph, const LoadedFiles& files) const
{
    MarkImplied(graph);
    const bool drawsImplied =
        mArrows == "all" || (mArrows == "auto" && graph.arrows.size() <= kMostArrowsWithoutAsking);
    if (mFormat == "json") {
        return GraphAsDocument(graph, files).dump(2) + "\n";
    }
    if (mFormat == "dot") {
        return GraphAsDot(graph, files, drawsImplied);
    }
    if (mFormat == "mermaid") {
        return GraphAsMermaid(graph, files, drawsImplied);
    }
    return DrawSvg(graph, files, drawsImplied);
}

ExitCode Graph::Run(const Surroundings& surroundings)
{
    if (surroundings.json) {
        mFormat = "json";
    }
    const LoadedFiles files(mNames, LoadedFiles::Walk::AsOneDocument);
    std::optional<PoolGraph> graph = BuildGraph(files);
    if (!graph) {
        throw CommandFailure(
            fmt::format("there are more than {} references to draw", Grouped(kMostArrows)));
    }
    WritePicture(Draw(*graph, files), files, {mOutput, mIsForced}, surroundings.out);
    return TellDamage(files, surroundings.err) ? ExitCode::Finding : ExitCode::Fine;
}
} // namespace simpool
