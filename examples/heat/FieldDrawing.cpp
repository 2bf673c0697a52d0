#include "FieldDrawing.h"

#include "ColourScale.h"
#include "IsoLines.h"
#include "SvgPage.h"
#include "Text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>

namespace heat {

namespace {

constexpr double kDrawingWidth = 760.0; // of the meshed region
constexpr double kLeft = 60.0;          // room around it, for texts and the scale
constexpr double kTop = 118.0;
constexpr double kRight = 226.0;
constexpr double kBottom = 86.0;
constexpr unsigned kBands = 64; // of one colour each, from the coldest value to the hottest
constexpr unsigned kMarks = 12; // on the scale, about; lines are drawn at the same values

constexpr char kStyleSheet[] =
    "text { font-family: 'DejaVu Sans', 'Segoe UI', Helvetica, Arial, sans-serif; fill: #23252b; "
    "}\n"
    ".title { font-size: 25px; font-weight: bold; }\n"
    ".subtitle { font-size: 14.5px; fill: #5a5e69; }\n"
    ".label { font-size: 13.5px; fill: #3b3e47; }\n"
    ".strong { font-size: 13.5px; font-weight: bold; }\n"
    ".mark { font-size: 13px; font-weight: bold; fill: #17181c; stroke: #ffffff;"
    " stroke-opacity: 0.85; stroke-width: 4px; stroke-linejoin: round; paint-order: stroke; }\n"
    ".line { font-size: 12px; font-weight: bold; fill: #ffffff; stroke: #17181c;"
    " stroke-opacity: 0.65; stroke-width: 3px; stroke-linejoin: round; paint-order: stroke; }\n";

// Where things stand on the page, and the field's range.
struct Layout
{
    Layout(const Mesh& mesh, const std::vector<double>& field) : low(mesh.nodes.front()), high(low)
    {
        for (const Point& node : mesh.nodes) {
            low = {std::min(low.x, node.x), std::min(low.y, node.y)};
            high = {std::max(high.x, node.x), std::max(high.y, node.y)};
        }
        scale = kDrawingWidth / (high.x - low.x);
        height = (high.y - low.y) * scale;
        const auto [coldest, hottest] = std::minmax_element(field.begin(), field.end());
        coldestNode = static_cast<std::size_t>(coldest - field.begin());
        hottestNode = static_cast<std::size_t>(hottest - field.begin());
        coldestValue = *coldest;
        hottestValue = *hottest;
    }

    [[nodiscard]] Point OnPage(Point point) const
    {
        return {kLeft + (point.x - low.x) * scale, kTop + (high.y - point.y) * scale};
    }

    [[nodiscard]] std::string Place(Point point) const
    {
        const Point place = OnPage(point);
        return Coordinate(place.x) + " " + Coordinate(place.y);
    }

    // 0 for the coldest value, 1 for the hottest; 0 throughout when all are the same.
    [[nodiscard]] double Share(double value) const
    {
        const double range = hottestValue - coldestValue;
        return range > 0.0 ? (value - coldestValue) / range : 0.0;
    }

    Point low, high;     // corners of the meshed region, in metres
    double scale = 1.0;  // pixels in a metre
    double height = 0.0; // of the meshed region, in pixels
    std::size_t coldestNode = 0;
    std::size_t hottestNode = 0;
    double coldestValue = 0.0;
    double hottestValue = 0.0;
};

void DrawTitle(SvgPage& page, const Model& model, std::uint32_t step, double time)
{
    page.Text(kLeft, 46, model.title, {"title", "start"});
    page.Text(kLeft, 72,
              model.fieldName + " after " + Decimal(time, 0) + " s (step " + Grouped(step) +
                  " of " + Grouped(model.steps) + ")   |   " + model.material.name + "   |   " +
                  Grouped(model.mesh.nodes.size()) + " nodes, " +
                  Grouped(model.mesh.elements.size()) + " elements",
              {"subtitle", "start"});
}

// One of `count` equal steps from the coldest value to the hottest.
double BandEdge(const Layout& layout, unsigned band)
{
    const double range = layout.hottestValue - layout.coldestValue;
    return layout.coldestValue + range * band / kBands;
}

// Cuts an element along the bands' edges and adds its pieces to the paths of the bands.
void AddElement(const Layout& layout, const std::vector<ValuedPoint>& element,
                std::map<unsigned, std::string>& paths)
{
    double low = element.front().value;
    double high = low;
    for (const ValuedPoint& corner : element) {
        low = std::min(low, corner.value);
        high = std::max(high, corner.value);
    }
    const auto first = static_cast<unsigned>(layout.Share(low) * kBands);
    const auto last = static_cast<unsigned>(layout.Share(high) * kBands);
    for (unsigned band = std::min(first, kBands - 1); band <= std::min(last, kBands - 1); ++band) {
        std::string path;
        for (const ValuedPoint& corner :
             ClipToBand(element, BandEdge(layout, band), BandEdge(layout, band + 1))) {
            path += (path.empty() ? "M" : "L") + layout.Place(corner.point);
        }
        if (!path.empty()) {
            paths[band] += path + "Z";
        }
    }
}

void DrawElements(SvgPage& page, const Layout& layout, const Mesh& mesh,
                  const std::vector<double>& field)
{
    std::map<unsigned, std::string> paths; // by band
    std::string outlines;
    for (const Quad& element : mesh.elements) {
        std::vector<ValuedPoint> corners;
        for (const std::uint32_t node : element.corner) {
            outlines += corners.empty() ? 'M' : 'L';
            outlines += layout.Place(mesh.nodes[node]);
            corners.push_back({mesh.nodes[node], field[node]});
        }
        AddElement(layout, corners, paths);
    }
    for (const auto& [band, path] : paths) {
        // The outline of the same colour closes the seams that smooth edges would leave.
        const std::string paint = "\"" + ColourAt((band + 0.5) / kBands) + "\"";
        std::string attributes = "fill=" + paint;
        attributes += " stroke=" + paint + " stroke-width=\"0.7\" stroke-linejoin=\"round\"";
        page.Path(path, attributes);
    }
    page.Path(outlines, "fill=\"none\" stroke=\"#ffffff\" stroke-opacity=\"0.10\" "
                        "stroke-width=\"0.5\"");
}

// On the piece nearest to a line across the upper part of the region, so that the numbers of
// neighbouring lines stand side by side.
void LabelLine(SvgPage& page, const Layout& layout, const std::vector<Segment>& segments,
               const std::string& text)
{
    const double labelsAt = layout.low.y + 0.86 * (layout.high.y - layout.low.y);
    const Segment& piece = *std::min_element(
        segments.begin(), segments.end(), [&](const Segment& a, const Segment& b) {
            return std::abs(a.from.y - labelsAt) < std::abs(b.from.y - labelsAt);
        });
    const Point place = layout.OnPage(piece.from);
    page.Text(place.x, place.y + 4, text, {"line", "middle"});
}

void DrawLines(SvgPage& page, const Layout& layout, const Mesh& mesh,
               const std::vector<double>& field)
{
    for (const double level : RoundMarks(layout.coldestValue, layout.hottestValue, kMarks)) {
        const std::vector<Segment> segments = IsoLine(mesh, field, level);
        if (segments.empty() || layout.Share(level) > 0.99) {
            continue; // a line along the hottest edge says nothing
        }
        std::string path;
        for (const Segment& segment : segments) {
            path += "M" + layout.Place(segment.from) + "L" + layout.Place(segment.to);
        }
        page.Path(path, "fill=\"none\" stroke=\"#ffffff\" stroke-opacity=\"0.85\" "
                        "stroke-width=\"1.3\" stroke-linecap=\"round\"");
        LabelLine(page, layout, segments, Decimal(level, 0));
    }
}

void DrawBoundaries(SvgPage& page, const Layout& layout, const Mesh& mesh)
{
    std::string path;
    for (const Boundary& boundary : mesh.boundaries) {
        for (const Edge& edge : boundary.edges) {
            path += "M" + layout.Place(mesh.nodes[edge.end[0]]) + "L" +
                    layout.Place(mesh.nodes[edge.end[1]]);
        }
    }
    page.Path(path, "fill=\"none\" stroke=\"#23252b\" stroke-width=\"1.6\" "
                    "stroke-linecap=\"round\"");
}

std::vector<std::string> Describe(const Model& model, std::size_t boundary)
{
    const Condition& condition = model.conditions[boundary];
    const std::string temperature = Decimal(condition.temperature, 0) + " " + model.fieldUnit;
    std::vector<std::string> words{model.mesh.boundaries[boundary].name};
    switch (condition.kind) {
    case ConditionKind::Insulated:
        words.emplace_back("insulated");
        break;
    case ConditionKind::FixedTemperature:
        words.push_back("kept at " + temperature);
        break;
    case ConditionKind::Convection:
        words.push_back("fluid at " + temperature);
        words.push_back(Decimal(condition.filmCoefficient, 0) + " W/(m\xC2\xB2 K)");
        break;
    }
    return words;
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string text = words.front() + ": " + words[1];
    for (std::size_t i = 2; i < words.size(); ++i) {
        text += ", " + words[i];
    }
    return text;
}

// Outside the region along its sides, in the middle of holes.
void LabelBoundary(SvgPage& page, const Layout& layout, const Model& model, std::size_t number)
{
    const Boundary& boundary = model.mesh.boundaries[number];
    if (boundary.edges.empty()) {
        return;
    }
    Point low = model.mesh.nodes[boundary.edges.front().end[0]];
    Point high = low;
    for (const Edge& edge : boundary.edges) {
        for (const std::uint32_t node : edge.end) {
            const Point& point = model.mesh.nodes[node];
            low = {std::min(low.x, point.x), std::min(low.y, point.y)};
            high = {std::max(high.x, point.x), std::max(high.y, point.y)};
        }
    }
    const Point middle = layout.OnPage({(low.x + high.x) / 2, (low.y + high.y) / 2});
    const std::vector<std::string> words = Describe(model, number);
    if (high.x <= layout.low.x) {
        page.Text(middle.x - 14, middle.y, Joined(words), {"label", "middle", -90});
    } else if (low.x >= layout.high.x) {
        page.Text(middle.x + 14, middle.y, Joined(words), {"label", "middle", 90});
    } else if (low.y >= layout.high.y) {
        page.Text(middle.x, middle.y - 12, Joined(words), {"label", "middle"});
    } else if (high.y <= layout.low.y) {
        page.Text(middle.x, middle.y + 22, Joined(words), {"label", "middle"});
    } else {
        double y = middle.y + 5 - 9.5 * static_cast<double>(words.size() - 1);
        for (std::size_t line = 0; line < words.size(); ++line, y += 19) {
            page.Text(middle.x, y, words[line], {line == 0 ? "strong" : "label", "middle"});
        }
    }
}

void MarkNode(SvgPage& page, const Layout& layout, Point node, const std::string& text)
{
    const Point place = layout.OnPage(node);
    page.Circle(place.x, place.y, 5, "fill=\"#ffffff\" stroke=\"#23252b\" stroke-width=\"1.8\"");
    const bool roomAtRight = place.x < kLeft + kDrawingWidth - 60;
    const double y = std::clamp(place.y + 4.5, kTop + 16, kTop + layout.height - 8);
    page.Text(place.x + (roomAtRight ? 11 : -11), y, text, {"mark", roomAtRight ? "start" : "end"});
}

void DrawScale(SvgPage& page, const Layout& layout, const Model& model)
{
    const double x = kLeft + kDrawingWidth + 62;
    const double width = 24;
    std::string stops;
    for (unsigned i = 0; i <= 32; ++i) {
        const double share = i / 32.0;
        stops +=
            "<stop offset=\"" + Decimal(share, 5) + "\" stop-color=\"" + ColourAt(share) + "\"/>";
    }
    page.Raw("<defs><linearGradient id=\"scale\" x1=\"0\" y1=\"1\" x2=\"0\" y2=\"0\">" + stops +
             "</linearGradient></defs>\n");
    page.Rectangle(x, kTop, width, layout.height,
                   "fill=\"url(#scale)\" stroke=\"#23252b\" stroke-width=\"1.2\"");
    page.Text(x, kTop - 18, model.fieldName + ", " + model.fieldUnit, {"strong", "start"});

    const double end = x + width;
    const auto mark = [&](double value, double length, const std::string& text,
                          const std::string& kind) {
        const double y = kTop + layout.height * (1.0 - layout.Share(value));
        page.Path("M" + Coordinate(end) + " " + Coordinate(y) + "h" + Coordinate(length),
                  "stroke=\"#23252b\" stroke-width=\"1.2\"");
        page.Text(end + length + 4, y + 4.5, text, {kind, "start"});
    };
    for (const double value : RoundMarks(layout.coldestValue, layout.hottestValue, kMarks)) {
        // The ends are labelled by themselves, and need the room.
        const double y = layout.height * layout.Share(value);
        if (y > 18 && y < layout.height - 18) {
            mark(value, 6, Decimal(value, 0), "label");
        }
    }
    mark(layout.hottestValue, 10, "max " + Decimal(layout.hottestValue, 1), "strong");
    if (layout.hottestValue > layout.coldestValue) {
        mark(layout.coldestValue, 10, "min " + Decimal(layout.coldestValue, 1), "strong");
    }
}

// A round length, about a sixth of the region's width.
void DrawRuler(SvgPage& page, const Layout& layout)
{
    const double length = RoundMarks(0.0, layout.high.x - layout.low.x, 6).at(1);
    const double y = kTop + layout.height + 54;
    page.Path("M" + Coordinate(kLeft) + " " + Coordinate(y - 5) + "v10M" + Coordinate(kLeft) + " " +
                  Coordinate(y) + "h" + Coordinate(length * layout.scale) + "M" +
                  Coordinate(kLeft + length * layout.scale) + " " + Coordinate(y - 5) + "v10",
              "fill=\"none\" stroke=\"#23252b\" stroke-width=\"1.6\"");
    page.Text(kLeft + length * layout.scale + 10, y + 4.5, Decimal(length * 1000.0, 0) + " mm",
              {"label", "start"});
}

void CheckNumbers(const Mesh& mesh, const std::vector<double>& field)
{
    if (mesh.elements.empty() || field.size() != mesh.nodes.size()) {
        throw std::invalid_argument("drawing: " + Grouped(field.size()) + " values for " +
                                    Grouped(mesh.nodes.size()) + " nodes and " +
                                    Grouped(mesh.elements.size()) + " elements");
    }
    for (std::size_t node = 0; node < field.size(); ++node) {
        const Point& place = mesh.nodes[node];
        if (!std::isfinite(place.x) || !std::isfinite(place.y) || !std::isfinite(field[node])) {
            throw std::invalid_argument("drawing: place or value of node " + Grouped(node) +
                                        " is no finite number");
        }
    }
}

} // namespace

std::string DrawField(const Model& model, std::uint32_t step, double time,
                      const std::vector<double>& field)
{
    const Mesh& mesh = model.mesh;
    CheckNumbers(mesh, field);
    const Layout layout(mesh, field);
    const double width = kLeft + kDrawingWidth + kRight;
    const double height = kTop + layout.height + kBottom;
    SvgPage page(width, height, kStyleSheet);
    page.Rectangle(0, 0, width, height, "fill=\"#ffffff\"");
    DrawTitle(page, model, step, time);
    DrawElements(page, layout, mesh, field);
    DrawLines(page, layout, mesh, field);
    DrawBoundaries(page, layout, mesh);
    for (std::size_t number = 0; number < mesh.boundaries.size(); ++number) {
        LabelBoundary(page, layout, model, number);
    }
    MarkNode(page, layout, mesh.nodes[layout.hottestNode], "max");
    MarkNode(page, layout, mesh.nodes[layout.coldestNode], "min");
    DrawScale(page, layout, model);
    DrawRuler(page, layout);
    return page.Finish();
}

} // namespace heat
