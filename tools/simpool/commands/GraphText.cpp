#include "GraphText.h"

#include "EscapedText.h"
#include "SvgText.h"

#include <iterator>
#include <string_view>

namespace simpool {
namespace {

constexpr std::size_t kShortUuid = 9; // characters, the ellipsis among them

// For text inside quotation marks.
std::string ForDot(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result;
}

std::string ForMermaid(std::string_view text)
{
    constexpr std::string_view kSpecial = "\"#&;<>`\\";
    std::string result;
    for (const char character : text) {
        if (kSpecial.find(character) == std::string_view::npos) {
            result += character;
        } else {
            result += fmt::format("#{};", static_cast<int>(character));
        }
    }
    return result;
}

// Lines of text, and one place where each of the kinds of line is written.
class Writer
{
public:
    template <class... Values>
    void Line(fmt::format_string<Values...> format, Values&&... values)
    {
        fmt::format_to(std::back_inserter(mText), format, std::forward<Values>(values)...);
        mText += '\n';
    }
    [[nodiscard]] std::string Text() { return std::move(mText); }

private:
    std::string mText;
};

std::string ShortUuid(const GraphNode& node)
{
    return Shortened(UuidText(node.uuid), kShortUuid);
}

// Calls `visit` with the number of each node of `file`.
template <class Visitor>
void ForEachNodeOf(std::size_t file, const PoolGraph& graph, Visitor visit)
{
    for (std::size_t i = 0; i < graph.resolvedNodes; ++i) {
        if (graph.nodes[i].file == file) {
            visit(i, graph.nodes[i]);
        }
    }
}
} // namespace

std::string GraphAsDot(const PoolGraph& graph, const LoadedFiles& files, bool drawsImplied)
{
    Writer out;
    out.Line("digraph simpool {{");
    out.Line("  rankdir=RL;");
    out.Line("  node [shape=box, style=\"rounded,filled\", fillcolor=white, fontname=Helvetica, "
             "fontsize=10];");
    out.Line("  edge [color=\"#2f6db5\", arrowsize=0.7];");
    for (std::size_t file = 0; file < files.Count(); ++file) {
        out.Line("  subgraph cluster_{} {{", file);
        out.Line("    label=\"{}\"; style=\"rounded,filled\"; color=\"#d9dee6\"; "
                 "fillcolor=\"#f4f6f9\"; fontname=Helvetica;",
                 ForDot(ShortName(files[file].name)));
        ForEachNodeOf(file, graph, [&](std::size_t i, const GraphNode& node) {
            out.Line("    n{} [label=\"{}  {}\\n{}\", tooltip=\"{}\"{}];", i, node.pool,
                     ForDot(ShortUuid(node)), HumanSize(node.dataLength),
                     ForDot(UuidText(node.uuid)), node.current ? ", color=\"#2f7d57\"" : "");
        });
        out.Line("  }}");
    }
    for (std::size_t i = graph.resolvedNodes; i < graph.nodes.size(); ++i) {
        out.Line("  n{} [label=\"{}\\nunresolved\", tooltip=\"{}\", style=\"rounded,dashed\", "
                 "color=\"#b23a3a\"];",
                 i, ForDot(ShortUuid(graph.nodes[i])), ForDot(UuidText(graph.nodes[i].uuid)));
    }
    for (const GraphArrow& arrow : graph.arrows) {
        if (drawsImplied || !arrow.implied) {
            const bool isResolved = graph.nodes[arrow.to].resolved;
            out.Line("  n{} -> n{}{};", arrow.from, arrow.to,
                     isResolved ? "" : " [style=dashed, color=\"#b23a3a\"]");
        }
    }
    out.Line("}}");
    return out.Text();
}

std::string GraphAsMermaid(const PoolGraph& graph, const LoadedFiles& files, bool drawsImplied)
{
    Writer out;
    out.Line("flowchart RL");
    for (std::size_t file = 0; file < files.Count(); ++file) {
        out.Line("  subgraph f{}[\"{}\"]", file, ForMermaid(ShortName(files[file].name)));
        ForEachNodeOf(file, graph, [&](std::size_t i, const GraphNode& node) {
            out.Line("    n{}[\"{} {}<br/>{}\"]", i, node.pool, ForMermaid(ShortUuid(node)),
                     HumanSize(node.dataLength));
        });
        out.Line("  end");
    }
    for (std::size_t i = graph.resolvedNodes; i < graph.nodes.size(); ++i) {
        out.Line("  n{}[\"{}<br/>unresolved\"]:::unresolved", i,
                 ForMermaid(ShortUuid(graph.nodes[i])));
    }
    for (const GraphArrow& arrow : graph.arrows) {
        if (drawsImplied || !arrow.implied) {
            out.Line("  n{} {} n{}", arrow.from, graph.nodes[arrow.to].resolved ? "-->" : "-.->",
                     arrow.to);
        }
    }
    out.Line("  classDef unresolved stroke:#b23a3a,stroke-dasharray:4 3");
    return out.Text();
}

Json GraphAsDocument(const PoolGraph& graph, const LoadedFiles& files)
{
    Json document = NewDocument("graph");
    Json names = Json::array();
    for (const LoadedFile& file : files) {
        names.push_back({{"name", Escaped(file.name)},
                         {"size", file.bytes.Size()},
                         {"whole", file.walk.stop == Stop::None}});
    }
    Json nodes = Json::array();
    for (const GraphNode& node : graph.nodes) {
        Json entry = {{"uuid", UuidText(node.uuid)}, {"resolved", node.resolved}};
        if (node.resolved) {
            entry["file"] = node.file;
            entry["pool"] = node.pool;
            entry["dataLength"] = node.dataLength;
            entry["current"] = node.current;
        }
        nodes.push_back(std::move(entry));
    }
    Json arrows = Json::array();
    for (const GraphArrow& arrow : graph.arrows) {
        arrows.push_back({{"from", arrow.from},
                          {"to", arrow.to},
                          {"times", arrow.times},
                          {"implied", arrow.implied}});
    }
    document["files"] = std::move(names);
    document["nodes"] = std::move(nodes);
    document["arrows"] = std::move(arrows);
    return document;
}
} // namespace simpool
