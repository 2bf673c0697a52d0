#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace heat {

/// A place in the plane, in metres.
struct Point
{
    double x = 0.0;
    double y = 0.0;

    bool operator==(const Point&) const = default;
};

/// Four-node element; `corner` holds node numbers, counter-clockwise.
struct Quad
{
    std::array<std::uint32_t, 4> corner{};

    bool operator==(const Quad&) const = default;
};

/// One side of an element that lies on the boundary.
struct Edge
{
    std::array<std::uint32_t, 2> end{};

    bool operator==(const Edge&) const = default;
};

/// A named part of the boundary, which conditions are given for.
struct Boundary
{
    std::string name;
    std::vector<Edge> edges;

    bool operator==(const Boundary&) const = default;
};

/// A plane region cut into quadrilaterals. Nodes are numbered from 0 in the order of `nodes`.
struct Mesh
{
    std::vector<Point> nodes;
    std::vector<Quad> elements;
    std::vector<Boundary> boundaries;

    bool operator==(const Mesh&) const = default;
};

/// A rectangle from (0, 0) to (width, height) with a round hole. Lengths in metres.
struct PlateShape
{
    double width = 0.0;
    double height = 0.0;
    Point holeCentre;
    double holeRadius = 0.0;
    unsigned cellsAlongWidth = 0;
    unsigned cellsAlongHeight = 0;
    unsigned cellsToHole = 0;   // between the outer edges and the hole
    double innermostCell = 1.0; // length of the cells at the hole, of those at the edges
};

/// Rays run from the outer edges to the hole, rings of elements around it.
/// Boundaries: bottom edge, right edge, top edge, left edge, hole rim.
/// \throws std::invalid_argument when there is nothing to cut or the hole is not inside.
[[nodiscard]] Mesh MeshPlateWithHole(const PlateShape& shape);

/// A strip from (0, 0) to (length, width). Boundaries: left end, right end.
/// \throws std::invalid_argument when there is nothing to cut.
[[nodiscard]] Mesh MeshStrip(double length, double width, unsigned cellsAlong,
                             unsigned cellsAcross);

/// In square metres; negative where corners run clockwise.
[[nodiscard]] double Area(const Mesh& mesh, const Quad& element);

} // namespace heat
