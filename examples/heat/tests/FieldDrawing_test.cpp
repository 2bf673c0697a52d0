#include "ColourScale.h"
#include "FieldDrawing.h"
#include "IsoLines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>

namespace heat {
namespace {

Mesh UnitSquare()
{
    Mesh mesh;
    mesh.nodes = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    mesh.elements = {{{0, 1, 2, 3}}};
    return mesh;
}

double AreaOf(const std::vector<Point>& polygon)
{
    double twice = 0.0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point& a = polygon[i];
        const Point& b = polygon[(i + 1) % polygon.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return std::abs(twice) / 2.0;
}

std::size_t Count(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// The polygons of all paths that are filled with a colour, in pixels.
std::vector<std::vector<Point>> FilledPolygons(const std::string& svg)
{
    std::vector<std::vector<Point>> polygons;
    for (std::size_t at = svg.find("<path d=\""); at != std::string::npos;
         at = svg.find("<path d=\"", at + 1)) {
        const char* text = svg.c_str() + at + 9;
        const std::string attributes = svg.substr(svg.find('"', at + 9), 12);
        if (attributes.find("fill=\"#") == std::string::npos) {
            continue;
        }
        while (*text != '"') {
            if (*text == 'M') {
                polygons.emplace_back();
            }
            if (*text == 'Z') {
                ++text;
                continue;
            }
            char* end = nullptr;
            const double x = std::strtod(text + 1, &end);
            const double y = std::strtod(end, &end);
            polygons.back().push_back({x, y});
            text = end;
        }
    }
    return polygons;
}

TEST(ColourScale, RunsFromDarkToBright)
{
    EXPECT_EQ(ColourAt(0.0), "#16103c");
    EXPECT_EQ(ColourAt(1.0), "#fdf0ac");
    EXPECT_EQ(ColourAt(-3.0), "#16103c");
    EXPECT_EQ(ColourAt(7.0), "#fdf0ac");

    double before = -1.0;
    for (int i = 0; i <= 100; ++i) {
        const std::string colour = ColourAt(i / 100.0);
        const auto channel = [&](std::size_t at) {
            return static_cast<double>(std::stoul(colour.substr(at, 2), nullptr, 16));
        };
        const double brightness = 0.2126 * channel(1) + 0.7152 * channel(3) + 0.0722 * channel(5);
        EXPECT_GT(brightness, before - 0.5) << "at " << i; // half a step of rounding
        before = brightness;
    }
}

TEST(ColourScale, MarksStandAtRoundNumbersInside)
{
    EXPECT_EQ(RoundMarks(65.7, 300.0, 12),
              (std::vector<double>{80, 100, 120, 140, 160, 180, 200, 220, 240, 260, 280, 300}));
    EXPECT_EQ(RoundMarks(-1.0, 1.0, 4), (std::vector<double>{-1.0, -0.5, 0.0, 0.5, 1.0}));
    EXPECT_EQ(RoundMarks(5.0, 5.0, 4), (std::vector<double>{5.0}));
}

TEST(IsoLine, CrossesAnElementWhereTheFieldHasTheLevel)
{
    const auto segments = IsoLine(UnitSquare(), {0.0, 4.0, 4.0, 0.0}, 1.0);

    ASSERT_EQ(segments.size(), 1u);
    EXPECT_EQ(segments[0].from, (Point{0.25, 0.0}));
    EXPECT_EQ(segments[0].to, (Point{0.25, 1.0}));
}

TEST(IsoLine, GivesTwoPiecesAtASaddleAndNoneOutside)
{
    EXPECT_EQ(IsoLine(UnitSquare(), {0.0, 1.0, 0.0, 1.0}, 0.5).size(), 2u);
    EXPECT_TRUE(IsoLine(UnitSquare(), {0.0, 1.0, 0.0, 1.0}, 2.0).empty());
    EXPECT_TRUE(IsoLine(UnitSquare(), {3.0, 3.0, 3.0, 3.0}, 3.0).empty());
}

TEST(ClipToBand, KeepsThePartBetweenTheLevels)
{
    const auto part =
        ClipToBand({{{0, 0}, 0.0}, {{1, 0}, 4.0}, {{1, 1}, 4.0}, {{0, 1}, 0.0}}, 1.0, 3.0);

    std::vector<Point> corners;
    corners.reserve(part.size());
    for (const ValuedPoint& corner : part) {
        corners.push_back(corner.point);
    }
    EXPECT_EQ(corners, (std::vector<Point>{{0.25, 0.0}, {0.75, 0.0}, {0.75, 1.0}, {0.25, 1.0}}));
}

TEST(ClipToBand, KeepsNothingOfAPolygonOutside)
{
    EXPECT_TRUE(ClipToBand({{{0, 0}, 0.0}, {{1, 0}, 1.0}, {{1, 1}, 2.0}}, 3.0, 4.0).empty());
}

TEST(FieldDrawing, CoversThePlateAndLeavesTheHoleFree)
{
    const Model model = PlateModel({24, 16, 8, 1});
    std::vector<double> field;
    double area = 0.0; // in pixels: 760 of them for 0.3 m
    for (const Point& node : model.mesh.nodes) {
        field.push_back(20.0 + 1000.0 * node.x - 300.0 * node.y);
    }
    for (const Quad& element : model.mesh.elements) {
        area += Area(model.mesh, element) * (760.0 / 0.3) * (760.0 / 0.3);
    }

    double drawn = 0.0;
    for (const auto& polygon : FilledPolygons(DrawField(model, 1, 2.5, field))) {
        drawn += AreaOf(polygon);
        for (const Point& corner : polygon) {
            // The hole's centre in pixels: 60 + 0.165 m to the right, 118 + 0.095 m down.
            EXPECT_GT(std::hypot(corner.x - 478.0, corner.y - 358.667), 100.0);
        }
    }
    EXPECT_NEAR(drawn / area, 1.0, 1e-3);
}

TEST(FieldDrawing, SaysWhatIsShown)
{
    Model model = PlateModel({12, 8, 3, 7});
    model.title = "Fish & <chips>";
    std::vector<double> field(model.mesh.nodes.size(), 20.0);
    field[5] = 412.25;
    field[6] = 8.75;
    const std::string svg = DrawField(model, 3, 7.5, field);

    EXPECT_EQ(Count(svg, "<svg "), 1u);
    EXPECT_EQ(Count(svg, ">Fish &amp; &lt;chips&gt;</text>"), 1u);
    EXPECT_EQ(Count(svg, "temperature after 8 s (step 3 of 7)"), 1u);
    EXPECT_EQ(Count(svg, "160 nodes, 120 elements"), 1u);
    EXPECT_EQ(Count(svg, ">max 412.2</text>"), 1u);
    EXPECT_EQ(Count(svg, ">min 8.8</text>"), 1u);
    EXPECT_EQ(Count(svg, ">left edge: kept at 300 \xC2\xB0"
                         "C</text>"),
              1u);
    EXPECT_EQ(Count(svg, ">top edge: insulated</text>"), 1u);
    EXPECT_EQ(Count(svg, ">hole rim</text>"), 1u);
    EXPECT_EQ(Count(svg, ">50 mm</text>"), 1u);
    EXPECT_EQ(Count(svg, "<text "), Count(svg, "</text>"));
    EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
}

TEST(FieldDrawing, DrawsAFieldThatIsTheSameEverywhere)
{
    const Model model = PlateModel({12, 8, 3, 7});
    const std::string svg =
        DrawField(model, 0, 0.0, std::vector<double>(model.mesh.nodes.size(), 20.0));

    EXPECT_EQ(Count(svg, ">max 20.0</text>"), 1u);
    EXPECT_EQ(Count(svg, "nan"), 0u);
    EXPECT_EQ(Count(svg, "inf"), 0u);
}

TEST(FieldDrawing, RefusesNumbersThatAreNone)
{
    Model model = PlateModel({12, 8, 3, 7});
    std::vector<double> field(model.mesh.nodes.size(), 20.0);
    field[7] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(static_cast<void>(DrawField(model, 0, 0.0, field)), std::invalid_argument);
    field[7] = 20.0;
    model.mesh.nodes[9].y = std::numeric_limits<double>::infinity();
    EXPECT_THROW(static_cast<void>(DrawField(model, 0, 0.0, field)), std::invalid_argument);
}

TEST(FieldDrawing, RefusesAFieldOfAnotherMesh)
{
    const Model model = PlateModel({12, 8, 3, 7});
    EXPECT_THROW(static_cast<void>(DrawField(model, 0, 0.0, {1.0, 2.0})), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(DrawField(Model{}, 0, 0.0, {})), std::invalid_argument);
}

} // namespace
} // namespace heat
