#pragma once

#include "ConjugateGradient.h"
#include "HeatSystem.h"
#include "Model.h"

#include <vector>

namespace heat {

/// Transient heat conduction by linear finite elements and implicit Euler steps.
///
/// Heat capacity is lumped at the nodes: where a hot edge meets a cold plate, the field then shows
/// no temperature below the coldest or above the hottest that was given. A step depends on the
/// field before it and on nothing else, so a run can be picked up at any stored field.
class HeatSolver
{
public:
    /// \throws std::invalid_argument when the model contradicts itself (the text says how).
    explicit HeatSolver(const Model& model);

    HeatSolver(const HeatSolver&) = delete;
    HeatSolver& operator=(const HeatSolver&) = delete;

    /// One temperature for each node: the initial one, on fixed edges the fixed one.
    [[nodiscard]] std::vector<double> InitialField() const;

    /// Moves `field` one time step on and returns the iterations that this took.
    /// \throws std::invalid_argument when `field` does not hold one value for each node.
    unsigned Advance(std::vector<double>& field);

private:
    double mInitialTemperature;
    HeatSystem mSystem;
    ConjugateGradient mConjugateGradient; // works on mSystem's matrix
    std::vector<double> mRightSide;
};

} // namespace heat
