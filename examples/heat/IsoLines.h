#pragma once

#include "Mesh.h"

#include <vector>

namespace heat {

/// A straight piece of a line of equal value, within one element.
struct Segment
{
    Point from;
    Point to;
};

/// Where the field, taken as linear along the sides of elements, equals `level`. Each element gives
/// no piece, one, or two at a saddle.
[[nodiscard]] std::vector<Segment> IsoLine(const Mesh& mesh, const std::vector<double>& field,
                                           double level);

/// A corner of a piece of an element, with the field there.
struct ValuedPoint
{
    Point point;
    double value = 0.0;
};

/// The part of a polygon where the field lies from `low` to `high`, its corners in the same order;
/// fewer than three when there is no such part. The field is taken as linear along the sides.
[[nodiscard]] std::vector<ValuedPoint> ClipToBand(const std::vector<ValuedPoint>& polygon,
                                                  double low, double high);

} // namespace heat
