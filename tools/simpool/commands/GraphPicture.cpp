#include "GraphPicture.h"

#include "EscapedText.h"
#include "SvgText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>

namespace simpool {
namespace {

// All in pixels.
constexpr double kMargin = 24;
constexpr double kHead = 104; // title, counts and legend
constexpr double kPadding = 12;
constexpr double kPanelTitle = 32;
constexpr double kPanelGap = 18;
constexpr double kBoxLeft = kMargin + kPadding;
constexpr double kBoxWidth = 420;
constexpr double kBoxRight = kBoxLeft + kBoxWidth;
constexpr double kPanelWidth = kBoxWidth + 2 * kPadding;
constexpr double kLeastWidth = 640;
constexpr double kPort = 4; // arrows leave a box above its middle and arrive below it

constexpr std::size_t kUuidCharacters = 32;

constexpr std::array<const char*, 7> kColours = {"#2f6db5", "#c9722b", "#3d8f6b", "#8a5aa8",
                                                 "#a8893a", "#2b96a6", "#b65486"};
constexpr const char* kUnresolvedColour = "#b23a3a";

constexpr const char* kStyle = R"(.panel { fill: #f4f6f9; stroke: #d9dee6 }
.file { font-size: 13px; font-weight: 600 }
.box { fill: #ffffff; stroke: #98a4b5 }
.current .box { stroke: #2f7d57; stroke-width: 1.6 }
.unresolved .box { stroke: #b23a3a; stroke-dasharray: 4 3 }
.share { fill: #d9e6f6 }
.current .share { fill: #d5ecdf }
.number { font-weight: 600; text-anchor: end }
.size { text-anchor: end }
.tag { fill: #2f7d57; font-size: 11px }
.unresolved .tag { fill: #b23a3a }
.arrow { fill: none; stroke-width: 1.5 }
.arrow.unresolved { stroke-dasharray: 4 3 }
.arrow:hover { stroke-width: 4 }
)";

// The upright line that all arrows to one pool share.
struct Trunk
{
    std::uint32_t target;
    double top;
    double bottom;
    std::size_t lane = 0; // 0 is next to the boxes
};

class Picture
{
public:
    Picture(const PoolGraph& graph, const LoadedFiles& files, bool drawsImplied)
        : mGraph(graph), mFiles(files), mDrawsImplied(drawsImplied),
          mRow(graph.nodes.size() > 60 ? 21 : 30), mBox(mRow - 5), mY(graph.nodes.size())
    {
        for (const GraphNode& node : graph.nodes) {
            mLargest = std::max(mLargest, node.dataLength);
        }
    }

    std::string Draw()
    {
        PlaceRows();
        PlaceLanes();
        const double right = LaneX(mLanes) + kMargin;
        Add("{}", SvgBeginning(std::max(right, kLeastWidth), mHeight, kStyle));
        DrawMarkers();
        DrawHead();
        Add("{}", mPanels);
        DrawArrows();
        for (std::uint32_t node = 0; node < mGraph.nodes.size(); ++node) {
            DrawBox(node);
        }
        Add("</svg>\n");
        return std::move(mSvg);
    }

private:
    template <class... Values>
    void Add(fmt::format_string<Values...> format, Values&&... values)
    {
        fmt::format_to(std::back_inserter(mSvg), format, std::forward<Values>(values)...);
    }

    [[nodiscard]] bool IsDrawn(const GraphArrow& arrow) const
    {
        return mDrawsImplied || !arrow.implied;
    }

    void PlaceRows()
    {
        double y = kHead;
        std::uint32_t node = 0;
        for (std::size_t file = 0; file < mFiles.Count(); ++file) {
            const std::size_t count = mFiles[file].Pools().size();
            PlacePanel(y, node, count, ShortName(mFiles[file].name), FileNote(mFiles[file]));
            node += static_cast<std::uint32_t>(count);
        }
        if (const std::size_t rest = mGraph.nodes.size() - node; rest > 0) {
            PlacePanel(y, node, rest, "in none of these files", Counted(rest, "pool"));
        }
        mHeight = y - kPanelGap + kMargin;
    }

    static std::string FileNote(const LoadedFile& file)
    {
        std::string note = fmt::format("{} \u00b7 {}", Counted(file.Pools().size(), "pool"),
                                       HumanSize(file.bytes.Size()));
        if (file.walk.stop != Stop::None) {
            note += fmt::format(" \u00b7 damaged at byte {}", Grouped(file.walk.position));
        }
        return note;
    }

    void PlacePanel(double& y, std::uint32_t first, std::size_t count, const std::string& title,
                    const std::string& note)
    {
        const double height =
            kPanelTitle + mRow * static_cast<double>(count) + (count > 0 ? kPadding - 5 : 0);
        fmt::format_to(std::back_inserter(mPanels),
                       R"(<rect class="panel" x="{:g}" y="{:g}" width="{:g}" height="{:g}" rx="8"/>
<text class="file" x="{:g}" y="{:g}">{}</text>
<text class="note size" x="{:g}" y="{:g}">{}</text>
)",
                       kMargin, y, kPanelWidth, height, kBoxLeft, y + 21, XmlText(title), kBoxRight,
                       y + 21, XmlText(note));
        for (std::size_t i = 0; i < count; ++i) {
            mY[first + i] = y + kPanelTitle + mRow * static_cast<double>(i) + mBox / 2;
        }
        y += height + kPanelGap;
    }

    // Short trunks lie next to the boxes; those that would touch lie beside each other.
    void PlaceLanes()
    {
        std::map<std::uint32_t, Trunk> trunks;
        for (const GraphArrow& arrow : mGraph.arrows) {
            if (IsDrawn(arrow)) {
                const double end = mY[arrow.to] + kPort;
                const double begin = mY[arrow.from] - kPort;
                Trunk& trunk =
                    trunks.try_emplace(arrow.to, Trunk{arrow.to, end, end}).first->second;
                trunk.top = std::min(trunk.top, begin);
                trunk.bottom = std::max(trunk.bottom, begin);
            }
        }
        std::vector<Trunk*> order;
        order.reserve(trunks.size());
        for (auto& [target, trunk] : trunks) {
            order.push_back(&trunk);
        }
        std::ranges::stable_sort(order, {}, [](const Trunk* t) { return t->bottom - t->top; });
        std::vector<std::map<double, double>> lanes; // top of each trunk by its bottom
        for (Trunk* trunk : order) {
            const auto isFree = [&](const std::map<double, double>& lane) {
                const auto below = lane.lower_bound(trunk->top);
                return below == lane.end() || below->second > trunk->bottom;
            };
            const auto lane = std::ranges::find_if(lanes, isFree);
            trunk->lane = static_cast<std::size_t>(lane - lanes.begin());
            if (lane == lanes.end()) {
                lanes.emplace_back();
            }
            lanes[trunk->lane].emplace(trunk->bottom, trunk->top);
        }
        mLanes = lanes.size();
        mLaneOf.resize(mGraph.nodes.size());
        for (const auto& [target, trunk] : trunks) {
            mLaneOf[target] = trunk.lane;
        }
    }

    [[nodiscard]] double LaneX(std::size_t lane) const
    {
        const double gap = mLanes > 60 ? 6 : 10;
        return kMargin + kPanelWidth + 16 + gap * static_cast<double>(lane);
    }

    void DrawMarkers()
    {
        Add("<defs>\n");
        const auto marker = [&](std::size_t id, const char* colour) {
            Add(R"(<marker id="head{}" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="8" )"
                R"(markerHeight="8" markerUnits="userSpaceOnUse" orient="auto">)"
                R"(<path d="M0 0.5 L8 4 L0 7.5 Z" fill="{}"/></marker>)"
                "\n",
                id, colour);
        };
        for (std::size_t i = 0; i < kColours.size(); ++i) {
            marker(i, kColours[i]);
        }
        marker(kColours.size(), kUnresolvedColour);
        Add("</defs>\n");
    }

    void DrawHead()
    {
        const std::size_t unresolved = mGraph.nodes.size() - mGraph.resolvedNodes;
        std::string counts = fmt::format("{}, {}, {}", Counted(mFiles.Count(), "file"),
                                         Counted(mGraph.resolvedNodes, "pool"),
                                         Counted(mGraph.arrows.size(), "reference"));
        if (unresolved > 0) {
            counts += fmt::format(", {} in none of the files", Counted(unresolved, "named pool"));
        }
        const std::size_t implied = mDrawsImplied ? 0 : mGraph.ImpliedCount();
        const std::string leftOut =
            implied == 0 ? "The coloured part of a box is its share of the largest data."
                         : fmt::format("{} that lead where others lead already are not drawn.",
                                       Counted(implied, "arrow"));
        Add(R"(<text class="title" x="{0:g}" y="36">Pools and references</text>
<text class="note" x="{0:g}" y="57">{1}</text>
<text class="note" x="{0:g}" y="74">{2}</text>
<text class="note" x="{0:g}" y="91">{3}</text>
)",
            kMargin, XmlText(counts), "An arrow leads from a pool to one that its directory names.",
            XmlText(leftOut));
    }

    // The farthest lanes first: where arrows leave one box on one line, the nearer covers it.
    void DrawArrows()
    {
        std::vector<const GraphArrow*> order;
        for (const GraphArrow& arrow : mGraph.arrows) {
            if (IsDrawn(arrow)) {
                order.push_back(&arrow);
            }
        }
        std::ranges::stable_sort(order, std::greater(),
                                 [&](const GraphArrow* arrow) { return mLaneOf[arrow->to]; });
        for (const GraphArrow* arrow : order) {
            DrawArrow(*arrow);
        }
    }

    void DrawArrow(const GraphArrow& arrow)
    {
        const bool isResolved = mGraph.nodes[arrow.to].resolved;
        const std::size_t colour =
            isResolved ? mLaneOf[arrow.to] % kColours.size() : kColours.size();
        const double x = LaneX(mLaneOf[arrow.to]);
        const double begin = mY[arrow.from] - kPort;
        const double end = mY[arrow.to] + kPort;
        const double bend = std::min(6.0, std::abs(end - begin) / 2);
        const double step = end > begin ? bend : -bend;
        Add(R"svg(<path class="arrow{}" stroke="{}" marker-end="url(#head{})" )svg"
            R"(d="M{:g} {:g} H{:g} Q{:g} {:g} {:g} {:g} V{:g} Q{:g} {:g} {:g} {:g} H{:g}">)"
            "<title>{} names {}{}</title></path>\n",
            isResolved ? "" : " unresolved", isResolved ? kColours[colour] : kUnresolvedColour,
            colour, kBoxRight, begin, x - bend, x, begin, x, begin + step, end - step, x, end,
            x - bend, end, kBoxRight + 1, NodeName(arrow.from), NodeName(arrow.to),
            arrow.times > 1 ? fmt::format(" {} times", Grouped(arrow.times)) : "");
    }

    [[nodiscard]] std::string NodeName(std::uint32_t number) const
    {
        const GraphNode& node = mGraph.nodes[number];
        if (!node.resolved) {
            return XmlText(UuidText(node.uuid));
        }
        return XmlText(fmt::format("pool {} of {}", node.pool, ShortName(mFiles[node.file].name)));
    }

    void DrawBox(std::uint32_t number)
    {
        const GraphNode& node = mGraph.nodes[number];
        const double top = mY[number] - mBox / 2;
        const double text = mY[number] + 4;
        const char* kind = !node.resolved ? " unresolved" : node.current ? " current" : "";
        Add(R"(<g class="pool{}"><title>{}{}</title>)"
            R"(<rect class="box" x="{:g}" y="{:g}" width="{:g}" height="{:g}" rx="4"/>)",
            kind, XmlText(UuidText(node.uuid)),
            node.resolved ? ": " + FullSize(node.dataLength) + " of data" : "", kBoxLeft, top,
            kBoxWidth, mBox);
        const double share =
            mLargest == 0 ? 0
                          : static_cast<double>(node.dataLength) / static_cast<double>(mLargest);
        if (share > 0) {
            Add(R"(<rect class="share" x="{:g}" y="{:g}" width="{:g}" height="{:g}" rx="3"/>)",
                kBoxLeft + 1, top + 1, std::max(1.0, share * (kBoxWidth - 2)), mBox - 2);
        }
        Add(R"(<text class="mono" x="{:g}" y="{:g}">{}</text>)", kBoxLeft + 48, text,
            XmlText(Shortened(UuidText(node.uuid), kUuidCharacters)));
        if (node.resolved) {
            Add(R"(<text class="number" x="{:g}" y="{:g}">{}</text>)"
                R"(<text class="size" x="{:g}" y="{:g}">{}</text>)",
                kBoxLeft + 36, text, node.pool, kBoxRight - 10, text, HumanSize(node.dataLength));
        }
        const char* tag = !node.resolved ? "unresolved" : node.current ? "current" : "";
        Add(R"(<text class="tag" x="{:g}" y="{:g}">{}</text></g>)"
            "\n",
            kBoxLeft + 272, text, tag);
    }

    const PoolGraph& mGraph;
    const LoadedFiles& mFiles;
    bool mDrawsImplied;
    double mRow;                // from one box to the next
    double mBox;                // height
    std::vector<double> mY;     // the middle of each node's box
    std::uint64_t mLargest = 0; // data length
    double mHeight = 0;
    std::size_t mLanes = 0;
    std::vector<std::size_t> mLaneOf = {}; // of the trunk that leads to each node
    std::string mPanels = {};
    std::string mSvg = {};
};
} // namespace

std::string DrawGraph(const PoolGraph& graph, const LoadedFiles& files, bool drawsImplied)
{
    return Picture(graph, files, drawsImplied).Draw();
}
} // namespace simpool
