#pragma once

#include "Model.h"
#include "SparseMatrix.h"

#include <vector>

namespace heat {

/// The equations of one implicit time step, one row for each node and metre of thickness:
/// matrix * next field = capacityRate * field + load.
struct HeatSystem
{
    SparseMatrix matrix;                  // W/K; unit rows where the temperature is fixed
    std::vector<double> capacityRate;     // W/K: heat capacity at the node over the time step
    std::vector<double> load;             // W: what comes in whatever the field is
    std::vector<bool> fixed;              // the node's temperature is given,
    std::vector<double> fixedTemperature; // namely this one
};

/// Bilinear elements; heat capacity and convection are lumped at the nodes.
/// \throws std::invalid_argument when the model contradicts itself (the text says how).
[[nodiscard]] HeatSystem Assemble(const Model& model);

} // namespace heat
