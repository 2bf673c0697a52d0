#include "Mesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace heat {
namespace {

PlateShape SmallShape()
{
    PlateShape shape;
    shape.width = 0.4;
    shape.height = 0.2;
    shape.holeCentre = {0.15, 0.1};
    shape.holeRadius = 0.05;
    shape.cellsAlongWidth = 4;
    shape.cellsAlongHeight = 2;
    shape.cellsToHole = 3;
    shape.innermostCell = 0.5;
    return shape;
}

TEST(Mesh, PlateHasARingOfNodesForEachLayerAndNamedBoundaries)
{
    const Mesh mesh = MeshPlateWithHole(SmallShape());

    EXPECT_EQ(mesh.nodes.size(), 48u);    // 12 around, 4 rings
    EXPECT_EQ(mesh.elements.size(), 36u); // 12 around, 3 layers
    ASSERT_EQ(mesh.boundaries.size(), 5u);
    EXPECT_EQ(mesh.boundaries[0].name, "bottom edge");
    EXPECT_EQ(mesh.boundaries[0].edges.size(), 4u);
    EXPECT_EQ(mesh.boundaries[1].name, "right edge");
    EXPECT_EQ(mesh.boundaries[1].edges.size(), 2u);
    EXPECT_EQ(mesh.boundaries[2].name, "top edge");
    EXPECT_EQ(mesh.boundaries[2].edges.size(), 4u);
    EXPECT_EQ(mesh.boundaries[3].name, "left edge");
    EXPECT_EQ(mesh.boundaries[3].edges.size(), 2u);
    EXPECT_EQ(mesh.boundaries[4].name, "hole rim");
    EXPECT_EQ(mesh.boundaries[4].edges.size(), 12u);
}

TEST(Mesh, PlateElementsRunCounterClockwise)
{
    const Mesh mesh = MeshPlateWithHole(SmallShape());

    for (const Quad& element : mesh.elements) {
        EXPECT_GT(Area(mesh, element), 0.0);
    }
}

TEST(Mesh, PlateCoversTheRectangleWithoutTheHole)
{
    PlateShape shape = SmallShape();
    shape.cellsAlongWidth = 120;
    shape.cellsAlongHeight = 60;
    const Mesh mesh = MeshPlateWithHole(shape);

    double area = 0.0;
    for (const Quad& element : mesh.elements) {
        area += Area(mesh, element);
    }
    EXPECT_NEAR(area, 0.08 - 0.00785398, 1e-5); // 0.4 * 0.2 - pi * 0.05^2
}

TEST(Mesh, PlateBoundariesLieOnTheSidesAndOnTheRim)
{
    const Mesh mesh = MeshPlateWithHole(SmallShape());

    const auto point = [&](const Edge& edge, std::size_t end) { return mesh.nodes[edge.end[end]]; };
    for (std::size_t end : {0u, 1u}) {
        for (const Edge& edge : mesh.boundaries[0].edges) {
            EXPECT_EQ(point(edge, end).y, 0.0);
        }
        for (const Edge& edge : mesh.boundaries[1].edges) {
            EXPECT_EQ(point(edge, end).x, 0.4);
        }
        for (const Edge& edge : mesh.boundaries[2].edges) {
            EXPECT_EQ(point(edge, end).y, 0.2);
        }
        for (const Edge& edge : mesh.boundaries[3].edges) {
            EXPECT_EQ(point(edge, end).x, 0.0);
        }
        for (const Edge& edge : mesh.boundaries[4].edges) {
            const Point rim = point(edge, end);
            EXPECT_NEAR(std::hypot(rim.x - 0.15, rim.y - 0.1), 0.05, 1e-15);
        }
    }
}

TEST(Mesh, PlateCellsShrinkTowardsTheHole)
{
    const Mesh mesh = MeshPlateWithHole(SmallShape());

    // Along the ray from the corner at (0, 0): the last of three steps is half the first.
    const auto step = [&](std::size_t layer) {
        const Point& a = mesh.nodes[12 * layer];
        const Point& b = mesh.nodes[12 * (layer + 1)];
        return std::hypot(b.x - a.x, b.y - a.y);
    };
    EXPECT_NEAR(step(2) / step(0), 0.5, 1e-12);
}

TEST(Mesh, PlateRefusesAHoleThatDoesNotLieInside)
{
    PlateShape shape = SmallShape();
    shape.holeCentre.x = 0.05; // the rim would touch the left edge
    EXPECT_THROW(static_cast<void>(MeshPlateWithHole(shape)), std::invalid_argument);
    shape.holeCentre.x = 0.36;
    EXPECT_THROW(static_cast<void>(MeshPlateWithHole(shape)), std::invalid_argument);
    shape = SmallShape();
    shape.holeRadius = 0.0;
    EXPECT_THROW(static_cast<void>(MeshPlateWithHole(shape)), std::invalid_argument);
}

TEST(Mesh, PlateRefusesToBeCutIntoNothing)
{
    PlateShape shape = SmallShape();
    shape.cellsToHole = 0;
    EXPECT_THROW(static_cast<void>(MeshPlateWithHole(shape)), std::invalid_argument);
}

TEST(Mesh, StripIsNumberedAcrossAndThenAlong)
{
    const Mesh mesh = MeshStrip(2.0, 1.0, 2, 1);

    const std::vector<Point> nodes{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}, {2, 1}};
    const std::vector<Quad> elements{{{0, 2, 3, 1}}, {{2, 4, 5, 3}}};
    EXPECT_EQ(mesh.nodes, nodes);
    EXPECT_EQ(mesh.elements, elements);
    ASSERT_EQ(mesh.boundaries.size(), 2u);
    EXPECT_EQ(mesh.boundaries[0], (Boundary{"left end", {{{1, 0}}}}));
    EXPECT_EQ(mesh.boundaries[1], (Boundary{"right end", {{{4, 5}}}}));
}

TEST(Mesh, StripRefusesToBeCutIntoNothing)
{
    EXPECT_THROW(static_cast<void>(MeshStrip(1.0, 1.0, 0, 1)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(MeshStrip(0.0, 1.0, 1, 1)), std::invalid_argument);
}

} // namespace
} // namespace heat
