#include "Mesh.h"

#include <cmath>
#include <stdexcept>

namespace heat {

namespace {

Point Between(Point from, Point to, double share)
{
    return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

void CheckShape(const PlateShape& shape)
{
    if (shape.cellsAlongWidth == 0 || shape.cellsAlongHeight == 0 || shape.cellsToHole == 0) {
        throw std::invalid_argument("plate: every direction needs at least one cell");
    }
    if (!(shape.holeRadius > 0.0) || !(shape.innermostCell > 0.0)) {
        throw std::invalid_argument("plate: the hole's radius and cells must be above zero");
    }
    const Point centre = shape.holeCentre;
    const double radius = shape.holeRadius;
    if (!(centre.x - radius > 0.0) || !(centre.x + radius < shape.width) ||
        !(centre.y - radius > 0.0) || !(centre.y + radius < shape.height)) {
        throw std::invalid_argument("plate: the hole does not lie inside");
    }
}

// Counter-clockwise from the corner at (0, 0); the corners are among the points.
std::vector<Point> OuterRing(const PlateShape& shape)
{
    const std::array<Point, 5> corners{Point{0.0, 0.0}, Point{shape.width, 0.0},
                                       Point{shape.width, shape.height}, Point{0.0, shape.height},
                                       Point{0.0, 0.0}};
    std::vector<Point> ring;
    for (std::size_t side = 0; side < 4; ++side) {
        const unsigned cells = side % 2 == 0 ? shape.cellsAlongWidth : shape.cellsAlongHeight;
        for (unsigned cell = 0; cell < cells; ++cell) {
            ring.push_back(Between(corners[side], corners[side + 1],
                                   static_cast<double>(cell) / static_cast<double>(cells)));
        }
    }
    return ring;
}

Point OnRim(const PlateShape& shape, Point outer)
{
    const double dx = outer.x - shape.holeCentre.x;
    const double dy = outer.y - shape.holeCentre.y;
    const double scale = shape.holeRadius / std::hypot(dx, dy);
    return {shape.holeCentre.x + dx * scale, shape.holeCentre.y + dy * scale};
}

// Shares of the way from the outer edge to the hole, 0 to 1; steps shrink in equal proportion.
std::vector<double> Layers(const PlateShape& shape)
{
    const unsigned cells = shape.cellsToHole;
    const double ratio = cells > 1 ? std::pow(shape.innermostCell, 1.0 / (cells - 1)) : 1.0;
    std::vector<double> layers{0.0};
    double step = 1.0;
    for (unsigned cell = 0; cell < cells; ++cell) {
        layers.push_back(layers.back() + step);
        step *= ratio;
    }
    const double whole = layers.back();
    for (double& layer : layers) {
        layer /= whole;
    }
    return layers;
}

std::vector<Boundary> PlateBoundaries(const PlateShape& shape, std::uint32_t around)
{
    std::vector<Boundary> boundaries{{"bottom edge", {}},
                                     {"right edge", {}},
                                     {"top edge", {}},
                                     {"left edge", {}},
                                     {"hole rim", {}}};
    std::uint32_t node = 0;
    for (std::size_t side = 0; side < 4; ++side) {
        const unsigned cells = side % 2 == 0 ? shape.cellsAlongWidth : shape.cellsAlongHeight;
        for (unsigned cell = 0; cell < cells; ++cell, ++node) {
            boundaries[side].edges.push_back({{node, (node + 1) % around}});
        }
    }
    const std::uint32_t rim = around * shape.cellsToHole;
    for (std::uint32_t i = 0; i < around; ++i) {
        boundaries[4].edges.push_back({{rim + i, rim + (i + 1) % around}});
    }
    return boundaries;
}

} // namespace

Mesh MeshPlateWithHole(const PlateShape& shape)
{
    CheckShape(shape);
    const std::vector<Point> outer = OuterRing(shape);
    const auto around = static_cast<std::uint32_t>(outer.size());

    Mesh mesh;
    for (const double layer : Layers(shape)) {
        for (const Point& point : outer) {
            mesh.nodes.push_back(Between(point, OnRim(shape, point), layer));
        }
    }
    for (std::uint32_t ring = 0; ring < shape.cellsToHole; ++ring) {
        const std::uint32_t first = ring * around;
        for (std::uint32_t i = 0; i < around; ++i) {
            const std::uint32_t next = (i + 1) % around;
            mesh.elements.push_back(
                {{first + i, first + next, first + around + next, first + around + i}});
        }
    }
    mesh.boundaries = PlateBoundaries(shape, around);
    return mesh;
}

Mesh MeshStrip(double length, double width, unsigned cellsAlong, unsigned cellsAcross)
{
    if (!(length > 0.0) || !(width > 0.0) || cellsAlong == 0 || cellsAcross == 0) {
        throw std::invalid_argument("strip: lengths and cells must be above zero");
    }
    const std::uint32_t rows = cellsAcross + 1;
    Mesh mesh;
    for (unsigned i = 0; i <= cellsAlong; ++i) {
        for (unsigned j = 0; j < rows; ++j) {
            mesh.nodes.push_back({length * i / cellsAlong, width * j / cellsAcross});
        }
    }
    for (std::uint32_t i = 0; i < cellsAlong; ++i) {
        for (std::uint32_t j = 0; j < cellsAcross; ++j) {
            const std::uint32_t node = i * rows + j;
            mesh.elements.push_back({{node, node + rows, node + rows + 1, node + 1}});
        }
    }
    mesh.boundaries = {{"left end", {}}, {"right end", {}}};
    const std::uint32_t last = cellsAlong * rows;
    for (std::uint32_t j = 0; j < cellsAcross; ++j) {
        mesh.boundaries[0].edges.push_back({{j + 1, j}});
        mesh.boundaries[1].edges.push_back({{last + j, last + j + 1}});
    }
    return mesh;
}

double Area(const Mesh& mesh, const Quad& element)
{
    double twice = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
        const Point& a = mesh.nodes[element.corner[i]];
        const Point& b = mesh.nodes[element.corner[(i + 1) % 4]];
        twice += a.x * b.y - b.x * a.y;
    }
    return twice / 2.0;
}

} // namespace heat
