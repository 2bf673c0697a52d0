#pragma once

#include "Model.h"

#include <cstdint>
#include <string>
#include <vector>

namespace heat {

/// A picture of one field as the text of an SVG file: elements filled by colour, lines of equal
/// temperature, the hottest and the coldest node, what happens along each boundary, a scale with
/// the unit, the time. The picture's unit is a pixel at usual size; y runs downwards there.
/// \throws std::invalid_argument when `field` does not hold one value for each node, there are no
/// elements, or a number is not finite.
[[nodiscard]] std::string DrawField(const Model& model, std::uint32_t step, double time,
                                    const std::vector<double>& field);

} // namespace heat
