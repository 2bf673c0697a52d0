#include "IsoLines.h"

namespace heat {

namespace {

// Between two places whose values lie on different sides of the level.
Point Crossing(const Point& a, double valueA, const Point& b, double valueB, double level)
{
    const double share = (level - valueA) / (valueB - valueA);
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

// Crossings of one element's sides with the level, in the order of the sides.
std::vector<Point> Crossings(const Mesh& mesh, const std::vector<double>& field, double level,
                             const Quad& element)
{
    std::vector<Point> crossings;
    for (std::size_t side = 0; side < 4; ++side) {
        const std::uint32_t i = element.corner[side];
        const std::uint32_t j = element.corner[(side + 1) % 4];
        // A corner at the level itself counts as above: no crossing is seen twice or missed.
        if ((field[i] < level) != (field[j] < level)) {
            crossings.push_back(Crossing(mesh.nodes[i], field[i], mesh.nodes[j], field[j], level));
        }
    }
    return crossings;
}

// Keeps what lies at the level or beyond it: above for a sign of 1, below for -1.
std::vector<ValuedPoint> Clip(const std::vector<ValuedPoint>& polygon, double level, double sign)
{
    std::vector<ValuedPoint> kept;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const ValuedPoint& a = polygon[i];
        const ValuedPoint& b = polygon[(i + 1) % polygon.size()];
        const bool aInside = (a.value - level) * sign >= 0.0;
        const bool bInside = (b.value - level) * sign >= 0.0;
        if (aInside) {
            kept.push_back(a);
        }
        if (aInside != bInside) {
            kept.push_back({Crossing(a.point, a.value, b.point, b.value, level), level});
        }
    }
    return kept;
}

} // namespace

std::vector<Segment> IsoLine(const Mesh& mesh, const std::vector<double>& field, double level)
{
    std::vector<Segment> segments;
    for (const Quad& element : mesh.elements) {
        const std::vector<Point> crossings = Crossings(mesh, field, level, element);
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
            segments.push_back({crossings[i], crossings[i + 1]});
        }
    }
    return segments;
}

std::vector<ValuedPoint> ClipToBand(const std::vector<ValuedPoint>& polygon, double low,
                                    double high)
{
    return Clip(Clip(polygon, low, 1.0), high, -1.0);
}

} // namespace heat
