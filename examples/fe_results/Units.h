#pragma once

#include <string>
#include <string_view>

namespace fe {

/// What a component of a quantity is measured in: "length", "force/length^2", "degree", "1" for a
/// plain number, empty when it is not known.
///
/// The solver computes in any consistent set of units and its files name none; so a unit is told in
/// base quantities.
[[nodiscard]] std::string UnitOf(std::string_view quantity, std::string_view component);

} // namespace fe
